// The conversion of data to memory blocks.

#import "FaultMatrixObjects.h"
#import "FaultMatrixScene.h"

namespace matrix {

namespace {

const Aftermath nothing = gives("nil");

std::string outOfMemoryMessage(const char *size) {
    return "Failed to allocate a memoryblock with " + std::string(size) + " bytes in size.";
}
const std::string small = outOfMemoryMessage("3");
const std::string large = outOfMemoryMessage("2147483647");

Aftermath told(const Aftermath &after, const std::string &message) {
    return after.raising("OutOfMemoryException: " + message);
}

/// std::bad_alloc is reported, and the service fails in the report too: it leaves the operation,
/// with what the second attempt came to.
Rule failingTwice(Aftermath second, Aftermath others) {
    return [second = std::move(second), others = std::move(others)](Fault fault) {
        return (fault == Fault::badAlloc ? second : others).leftBy(exceptionOf(fault));
    };
}

/// The report that no memory is to be had, which is guarded like the attempt to get it.
Rows guardedReport(const std::string &message, const Aftermath &after) {
    const Aftermath raised = told(after, message);
    const Aftermath untitled = after.raising("OutOfMemoryException: nil");
    const Aftermath twice = told(raised, message);
    const Lines exceptions = {"OutOfMemoryException", "OutOfMemoryException"};
    return {
        {"REALBuildString", untitled, mapped(untitled), true},
        {"REALSetStringEncoding", raised, mapped(untitled), true},
        {"PluginNewInstance", after, failingTwice(after, after)},
        {"REALSetPropValueString", untitled, failingTwice(after, after)},
        {"REALSetPropValueInteger", raised, failingTwice(after, after)},
        {"RuntimeRaiseException", after, failingTwice(after, after)},
        {"REALUnlockObject", raised.holding({"OutOfMemoryException"}),
         failingTwice(twice.holding(exceptions), raised.holding({"OutOfMemoryException"}))},
        {"REALUnlockString", raised.holding({"String"}),
         failingTwice(twice.holding({"String", "String"}), raised.holding({"String"}))},
    };
}

id threeBytes() {
    return [NSData dataWithBytes:"abc" length:3];
}

void addSmall(Operations &all) {
    const Aftermath block = gives("MemoryBlock(\"abc\")");
    const Rule reported = outOfMemory(small, nothing, nothing);
    const Lines both = {"MemoryBlock", "MemoryBlock"};
    const Lines all3 = {"MemoryBlock", "MemoryBlock", "OutOfMemoryException"};
    all.push_back(
        {.name = "data",
         .arrange = [](Scene &scene) { return converting(scene, threeBytes()); },
         .present = block,
         .rows = {{"newMemoryBlock", told(nothing, small), reported},
                  {"REALLoadObjectMethod", block, reported},
                  {"REALUnlockObject", block.holding({"MemoryBlock"}), // the scratch one
                   failingTwice(told(nothing, small).holding(all3), nothing.holding(both))}}});
    all.push_back(
        {.name = "data, without the pointer's method",
         .arrange =
             [](Scene &scene) {
                 scene.host.hideMethod("Operator_Convert() As Ptr");
                 return converting(scene, threeBytes());
             },
         .present = block,
         .rows = {{"newMemoryBlock", told(nothing, small), reported},
                  {"REALLoadObjectMethod", block, reported},
                  {"REALUnlockObject", block.holding({"MemoryBlock"}),
                   failingTwice(told(nothing, small).holding(all3), nothing.holding(both))},
                  {"memoryBlockGetPtr", told(nothing, small), reported}}});
    all.push_back({.name = "data, empty",
                   .arrange = [](Scene &scene) { return converting(scene, [NSData data]); },
                   .present = nothing});
    Rows refused = {{"newMemoryBlock", told(nothing, small), reported}};
    all.push_back({.name = "data, without memory for it",
                   .arrange =
                       [](Scene &scene) {
                           scene.host.setMemoryBlockLimit(0);
                           return converting(scene, threeBytes());
                       },
                   .present = told(nothing, small),
                   .rows = inOrder(refused, guardedReport(small, nothing))});
}

// Large data takes the class's constructor, under the host's guard. Here it raises, so that no
// block of that size has to be filled. An exception that passes the guard leaves the constructor's
// behind.
void addLarge(Operations &all) {
    const std::string hosts = "OutOfMemoryException: no memory for a block of 2147483647 bytes";
    const Aftermath pending = nothing.raising(hosts);
    const Aftermath raised = told(nothing, large);
    Rows report = guardedReport(large, nothing);
    const auto reportRow = [&](const char *service) {
        for (const Row &row : report)
            if (row.service == service)
                return row;
        return Row{};
    };
    Row making = reportRow("PluginNewInstance");
    Row releasing{
        "REALUnlockObject",
        raised.holding({"MemoryBlock", "OutOfMemoryException", "OutOfMemoryException"}),
        failingTwice(told(pending, large).holding({"MemoryBlock", "OutOfMemoryException"}),
                     pending.holding({"MemoryBlock"}))};
    all.push_back(
        {.name = "data, large, without memory for it",
         .arrange =
             [](Scene &scene) {
                 scene.host.setMemoryBlockLimit(1000);
                 MatrixData *data = [[[MatrixData alloc] init] autorelease];
                 data->size = 0x7FFFFFFF;
                 return converting(scene, data);
             },
         .present = raised,
         .rows = {{"PluginCallFunctionWithExceptionHandler", raised,
                   outOfMemory(large, nothing, nothing)},
                  making,
                  {"REALLoadObjectMethod", raised, outOfMemory(large, nothing, nothing)},
                  {"REALGetPropValueInteger", raised, outOfMemory(large, pending, pending)},
                  releasing,
                  reportRow("REALBuildString"),
                  reportRow("REALSetStringEncoding"),
                  reportRow("REALSetPropValueString"),
                  reportRow("REALSetPropValueInteger"),
                  reportRow("RuntimeRaiseException"),
                  reportRow("REALUnlockString")}});
}

// What runs under the guard, by itself and with few bytes.
struct Request {
    std::int64_t size;
    host::ObjectHandle block;
};

Act working(Scene &scene, std::int64_t size) {
    auto *work = imageFunction<void(void *)>(scene.image, "REALNewMemoryBlockWork(void*)");
    return {[&scene, work, size] {
        Request request{size, nullptr};
        work(&request);
        return scene.taken(request.block);
    }};
}

void addWork(Operations &all) {
    const Aftermath block = gives("MemoryBlock(\"\\x00\\x00\\x00\")");
    all.push_back({.name = "memory block by its constructor",
                   .arrange = [](Scene &scene) { return working(scene, 3); },
                   .present = block,
                   .rows = {{"PluginNewInstance", nothing, passing(nothing)},
                            {.service = "REALLoadObjectMethod",
                             .silent = nothing,
                             .thrown = passing(nothing),
                             .remembered = true},
                            {"REALGetPropValueInteger", block, passing(nothing)}}});
    const std::string hosts = "OutOfMemoryException: no memory for a block of 3 bytes";
    const Aftermath refused = nothing.raising(hosts);
    all.push_back({.name = "memory block by its constructor, without memory for it",
                   .arrange =
                       [](Scene &scene) {
                           scene.host.setMemoryBlockLimit(0);
                           return working(scene, 3);
                       },
                   .present = refused,
                   .rows = {{"PluginNewInstance", nothing, passing(nothing)},
                            {.service = "REALLoadObjectMethod",
                             .silent = nothing,
                             .thrown = passing(nothing),
                             .remembered = true},
                            {"REALGetPropValueInteger", refused, passing(refused)},
                            {"REALUnlockObject", refused.holding({"MemoryBlock"}),
                             passing(refused.holding({"MemoryBlock"}))}}});
}

} // namespace

const Operations &memoryOperations() {
    static const Operations all = [] {
        Operations operations;
        addSmall(operations);
        addLarge(operations);
        addWork(operations);
        return operations;
    }();
    return all;
}

} // namespace matrix
