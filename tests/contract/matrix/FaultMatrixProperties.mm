// The properties: each with an object that answers, with one that raises, and without one.

#import "FaultMatrixScene.h"

#include "Properties.h"

namespace matrix {

namespace {

struct NumberRow {
    const char *name;
    const char *answer;
    const char *neutral;
};

// With the answers that answerNumbers gives.
constexpr NumberRow numberRows[] = {
    {"thermalState", "2", "-1"},
    {"processIdentifier", "-7", "0"},
    {"operatingSystem", "5", "0"},
    {"activeProcessorCount", "3", "0"},
    {"processorCount", "4", "0"},
    {"argumentsCount", "2", "0"},
    {"physicalMemory", "4096", "0"},
    {"systemUptime", "1.5", "0"},
    {"automaticTerminationSupportEnabled", "true", "false"},
};

void answerNumbers(Scene &scene) {
    scene.object->answers.thermalState = 2;
    scene.object->answers.processIdentifier = -7;
    scene.object->answers.operatingSystem = 5;
    scene.object->answers.activeProcessorCount = 3;
    scene.object->answers.processorCount = 4;
    scene.object->answers.physicalMemory = 4096;
    scene.object->answers.systemUptime = 1.5;
    scene.object->answers.automaticTerminationSupportEnabled = 1;
}

Rows stringValue(const char *text) {
    const std::string quoted = '"' + std::string(text) + '"';
    return stringBuilding(gives("nil"), gives(quoted + " undeclared"));
}

/// A property whose object raises, and one without an object.
void addWithoutAnswer(Operations &all, const char *property, const char *neutral) {
    all.push_back({.name = std::string(property) + ", refused",
                   .arrange =
                       [property](Scene &scene) {
                           scene.refuse();
                           return reading(scene, property);
                       },
                   .present = troubled(gives(neutral)),
                   .rows = trapReport(gives(neutral)),
                   .handling = trapping(neutral)});
    all.push_back({.name = std::string(property) + ", without an object",
                   .arrange =
                       [property](Scene &scene) {
                           setHandle(scene.host, scene.info, nullptr);
                           return reading(scene, property);
                       },
                   .present = gives(neutral),
                   .handling = trapping(neutral)});
}

void addNumbers(Operations &all) {
    for (const auto &[name, answer, neutral] : numberRows) {
        all.push_back({.name = name,
                       .arrange =
                           [property = name](Scene &scene) {
                               answerNumbers(scene);
                               return reading(scene, property);
                           },
                       .present = gives(answer),
                       .handling = trapping(neutral)});
        addWithoutAnswer(all, name, neutral);
    }
}

void addStrings(Operations &all) {
    for (const char *property : stringProperties) {
        all.push_back({.name = property,
                       .arrange = [property](Scene &scene) { return reading(scene, property); },
                       .present = gives("\"abc\""),
                       .rows = stringValue("abc"),
                       .handling = trapping("nil")});
        addWithoutAnswer(all, property, "nil");
    }
    static const std::string longText(120, 'x');
    all.push_back({.name = "hostName, long",
                   .arrange =
                       [](Scene &scene) {
                           scene.object->answers.string =
                               [NSString stringWithUTF8String:longText.c_str()];
                           return reading(scene, "hostName");
                       },
                   .present = gives('"' + longText + '"'),
                   .rows = stringValue(longText.c_str()),
                   .handling = trapping("nil"),
                   .allocations = {720},
                   .unallocated = gives("nil")});
}

// One key with one value, both strings. The key is converted first, and then the value; only then
// the Dictionary's methods are looked for.
Rows environmentRows() {
    const Aftermath refused = gives("nil");
    const Lines variants{"Variant", "Variant"};
    const Aftermath unreleased = refused.holding({"Dictionary", "Variant", "Variant"});
    return inOrder(
        Rows{{"PluginNewInstance", refused, trapped(refused, refused)}},
        Rows{{"REALBuildString", gives("{String(nil): String(nil)}"),
              mapped(gives("{String(nil): String(\"v\")}")), true},
             {"REALSetStringEncoding",
              gives("{String(\"k\" undeclared): String(\"v\" undeclared)}"),
              mapped(gives("{String(nil): String(\"v\")}")), true}},
        Rows{{"StringToVariant", gives("{nil: nil}"), trapped(refused, refused)},
             {"REALUnlockString",
              gives("{String(\"k\"): String(\"v\")}").holding({"String", "String"}),
              trapped(refused.holding({"String"}), refused.holding({"String"}))},
             {"REALLoadObjectMethod", gives("{}"), trapped(refused, refused)},
             {"REALUnlockObject", gives("{String(\"k\"): String(\"v\")}").holding(variants),
              trappedUnreleased(unreleased, unreleased)}});
}

void addEnvironment(Operations &all) {
    all.push_back({.name = "environment",
                   .arrange = [](Scene &scene) { return reading(scene, "environment"); },
                   .present = gives("{String(\"k\"): String(\"v\")}"),
                   .rows = environmentRows(),
                   .handling = trapping("nil")});
    addWithoutAnswer(all, "environment", "nil");
}

// Setters. The new name goes to Foundation as the host hands it out, or else by its bytes.

Act settingName(Scene &scene, std::string bytes, std::uint32_t encoding) {
    scene.useOwn();
    const host::Value name(scene.host.makeString(bytes, encoding));
    return {[&scene, name] { return scene.seen(scene.host.set(scene.info, "processName", name)); }};
}

Aftermath named(const char *text) {
    return gives("nil").doing({"[own setProcessName:" + std::string(text) + "]"});
}

void addSetters(Operations &all) {
    const Aftermath nothing = gives("nil");
    all.push_back(
        {.name = "set processName",
         .arrange = [](Scene &scene) { return settingName(scene, "new", host::encoding::utf8); },
         .present = named("\"new\""),
         .rows = {{"REALGetStringEncoding", named("\"new\""), trapped(nothing, nothing)},
                  {"REALGetStringCFString", named("\"new\""), trapped(nothing, nothing)}},
         .handling = trapping("nil")});
    all.push_back({.name = "set processName to nil",
                   .arrange =
                       [](Scene &scene) {
                           scene.useOwn();
                           return Act{[&scene] {
                               return scene.seen(
                                   scene.host.set(scene.info, "processName", host::Value()));
                           }};
                       },
                   .present = named("nil"),
                   .handling = trapping("nil")});
    all.push_back(
        {.name = "set processName, refused",
         .arrange =
             [](Scene &scene) {
                 scene.refuse();
                 return settingName(scene, "new", host::encoding::utf8);
             },
         .present = troubled(named("\"new\"")),
         .rows = inOrder(
             Rows{{"REALGetStringEncoding", troubled(named("\"new\"")), trapped(nothing, nothing)},
                  {"REALGetStringCFString", troubled(named("\"new\"")), trapped(nothing, nothing)}},
             trapReport(named("\"new\""))),
         .handling = trapping("nil")});
    const Aftermath set = nothing.doing({"[own setAutomaticTerminationSupportEnabled:1]"});
    const auto enabling = [](Scene &scene) {
        scene.useOwn();
        return Act{[&scene] {
            return scene.seen(scene.host.set(scene.info, "automaticTerminationSupportEnabled",
                                             host::Value(true)));
        }};
    };
    all.push_back({.name = "set automaticTerminationSupportEnabled",
                   .arrange = enabling,
                   .present = set,
                   .handling = trapping("nil")});
    all.push_back({.name = "set automaticTerminationSupportEnabled, refused",
                   .arrange =
                       [enabling](Scene &scene) {
                           scene.refuse();
                           return enabling(scene);
                       },
                   .present = troubled(set),
                   .rows = trapReport(set),
                   .handling = trapping("nil")});
}

// A name without a declared encoding is read by its bytes, whatever else the host could give; any
// other when the host gives no CFString. A host that does not lock is not unlocked less: it is the
// caller's reference that goes then.
void addNamesByTheirBytes(Operations &all) {
    const Aftermath nothing = gives("nil");
    const Rule leaves = trapped(nothing, nothing);
    const Aftermath kept = nothing.holding({"String"});
    const Aftermath overReleased = named("\"new\"").complaining(
        "REALUnlockString: releases String#1, of which the plug-in holds no reference");
    const Rows reading = {
        {"REALLockString", overReleased, leaves},
        {"StringGetCString", named("nil"), leaves},
        {"REALLoadGlobalMethod", named("\"\""), leaves},
        {"REALUnlockString", named("\"new\"").holding({"String"}), trapped(kept, kept)}};
    all.push_back(
        {.name = "set processName, undeclared",
         .arrange = [](Scene &scene) { return settingName(scene, "new", host::encoding::unknown); },
         .present = named("\"new\""),
         .rows = inOrder(Rows{{"REALGetStringEncoding", named("\"new\""), leaves}}, reading),
         .handling = trapping("nil")});

    // Of no encoding that the host tells, the bytes are Mac Roman.
    struct Name {
        const char *operation;
        std::string bytes;
        std::uint32_t encoding;
        const char *inMacRoman;
    };
    const Name names[] = {
        {"set processName, without a CFString", "new", host::encoding::utf8, "\"new\""},
        {"set processName in UTF-16, without a CFString", std::string("n\0e\0w\0", 6),
         host::encoding::utf16, "\"n\\x00e\\x00w\\x00\""}};
    for (const Name &name : names)
        all.push_back(
            {.name = name.operation,
             .arrange =
                 [name](Scene &scene) {
                     scene.host.services().answerNull("REALGetStringCFString");
                     return settingName(scene, name.bytes, name.encoding);
                 },
             .present = named("\"new\""),
             .rows = inOrder(Rows{{"REALGetStringEncoding", named(name.inMacRoman), leaves},
                                  {"REALGetStringCFString", named("\"new\""), leaves}},
                             reading),
             .handling = trapping("nil")});
}

} // namespace

const Operations &propertyOperations() {
    static const Operations all = [] {
        Operations operations;
        addNumbers(operations);
        addStrings(operations);
        addEnvironment(operations);
        addSetters(operations);
        addNamesByTheirBytes(operations);
        return operations;
    }();
    return all;
}

} // namespace matrix
