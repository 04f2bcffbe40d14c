// The conversion of arrays, sets and dictionaries.

#import "FaultMatrixObjects.h"
#import "FaultMatrixScene.h"

namespace matrix {

namespace {

const Aftermath nothing = gives("nil");

std::function<Act(Scene &)> conversion(std::function<id()> make) {
    return [make = std::move(make)](Scene &scene) { return converting(scene, make()); };
}

MatrixNumber *five() {
    MatrixNumber *number = [[[MatrixNumber alloc] init] autorelease];
    number->code = "q";
    return number;
}

Row creating() {
    return {"RuntimeArrayCreateSingleDimBoundedArray", nothing, passing(nothing)};
}

void addArrays(Operations &all) {
    all.push_back({.name = "array, empty",
                   .arrange = conversion([] { return @[]; }),
                   .present = gives("[]"),
                   .rows = {creating()}});

    const Aftermath whole = gives("[String(\"abc\"), Integer(5), nil]");
    const Aftermath untitled = gives("[String(nil), Integer(5), nil]");
    const Lines variants = {"Variant", "Variant"};
    all.push_back(
        {.name = "array",
         .arrange = conversion([] { return @[ @"abc", five(), [NSNull null] ]; }),
         .present = whole,
         .rows = {
             creating(),
             {"REALBuildString", untitled, mapped(untitled), true},
             {"REALSetStringEncoding", gives("[String(\"abc\" undeclared), Integer(5), nil]"),
              mapped(untitled), true},
             {"StringToVariant", gives("[nil, Integer(5), nil]"), passing(nothing)},
             {"REALUnlockString", whole.holding({"String"}), passing(nothing.holding({"String"}))},
             {"PluginObjectArrayInsertProc", gives("[]"), passing(nothing)},
             {"REALUnlockObject", whole.holding(variants),
              passing(nothing.holding({"Array", "Variant"}))},
             {"IntegerToVariant", gives("[String(\"abc\"), nil, nil]"), passing(nothing)}}});
    all.push_back(
        {.name = "array in an array",
         .arrange = conversion([] { return @[ @[ five() ] ]; }),
         .present = gives("[[Integer(5)]]"),
         .rows = {creating(),
                  {"IntegerToVariant", gives("[[nil]]"), passing(nothing)},
                  {"PluginObjectArrayInsertProc", gives("[]"), passing(nothing)},
                  {"REALUnlockObject", gives("[[Integer(5)]]").holding({"Variant", "Array"}),
                   passing(nothing.holding({"Array", "Array", "Variant"}))}}});
    const Aftermath set = gives("[Integer(5)]");
    all.push_back({.name = "set",
                   .arrange = conversion([] { return [NSSet setWithObject:five()]; }),
                   .present = set,
                   .rows = {creating(),
                            {"IntegerToVariant", gives("[nil]"), passing(nothing)},
                            {"PluginObjectArrayInsertProc", gives("[]"), passing(nothing)},
                            {"REALUnlockObject", set.holding({"Variant"}),
                             passing(nothing.holding({"Array", "Variant"}))}}});
}

Row making() {
    return {"PluginNewInstance", nothing, passing(nothing)};
}

void addDictionaries(Operations &all) {
    all.push_back({.name = "dictionary, empty",
                   .arrange = conversion([] { return @{}; }),
                   .present = gives("{}"),
                   .rows = {making()}});

    const Aftermath whole = gives("{String(\"k\"): Integer(5)}");
    const Aftermath untitled = gives("{String(nil): Integer(5)}");
    const Lines variants = {"Variant", "Variant"};
    all.push_back(
        {.name = "dictionary",
         .arrange = conversion([] { return @{@"k" : five()}; }),
         .present = whole,
         .rows = {
             making(),
             {"REALBuildString", untitled, mapped(untitled), true},
             {"REALSetStringEncoding", gives("{String(\"k\" undeclared): Integer(5)}"),
              mapped(untitled), true},
             {"StringToVariant", gives("{nil: Integer(5)}"), passing(nothing)},
             {"REALUnlockString", whole.holding({"String"}), passing(nothing.holding({"String"}))},
             {"IntegerToVariant", gives("{String(\"k\"): nil}"), passing(nothing)},
             {"REALLoadObjectMethod", gives("{}"), passing(nothing)},
             {"REALUnlockObject", whole.holding(variants),
              passing(nothing.holding({"Dictionary", "Variant", "Variant"}))}}});

    // The value is a dictionary too. It is filled before the outer one looks its methods up.
    const Aftermath nested = gives("{Integer(5): {Integer(5): Integer(5)}}");
    all.push_back({.name = "dictionary in a dictionary",
                   .arrange = conversion([] { return
                                                  @{five() : @{five() : five()}}; }),
                   .present = nested,
                   .rows = {making(),
                            {"IntegerToVariant", gives("{nil: {nil: nil}}"), passing(nothing)},
                            {"REALLoadObjectMethod", gives("{}"), passing(nothing)},
                            {"REALUnlockObject",
                             nested.holding({"Variant", "Variant", "Variant", "Dictionary"}),
                             passing(nothing.holding({"Dictionary", "Dictionary", "Variant",
                                                      "Variant", "Variant"}))}}});
}

} // namespace

const Operations &collectionOperations() {
    static const Operations all = [] {
        Operations operations;
        addArrays(operations);
        addDictionaries(operations);
        return operations;
    }();
    return all;
}

} // namespace matrix
