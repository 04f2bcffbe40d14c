// The conversion of values: text, URLs, booleans, numbers, dates, structures.

#import "FaultMatrixObjects.h"
#import "FaultMatrixScene.h"

#include "host/classes/Inspect.h"

#include <filesystem>

namespace matrix {

namespace {

const Aftermath nothing = gives("nil");

/// The conversion of what make gives, borrowed from the autorelease pool.
std::function<Act(Scene &)> conversion(std::function<id()> make) {
    return [make = std::move(make)](Scene &scene) { return converting(scene, make()); };
}

// Text. The host string goes when the Variant has it.
Rows textRows(const std::string &text) {
    const std::string quoted = '"' + text + '"';
    const Aftermath unreleased = nothing.holding({"String"});
    return inOrder(stringBuilding(gives("String(nil)"), gives("String(" + quoted + " undeclared)")),
                   Rows{{"StringToVariant", nothing, passing(nothing)},
                        {"REALUnlockString", gives("String(" + quoted + ')').holding({"String"}),
                         passing(unreleased)}});
}

void addText(Operations &all) {
    all.push_back({.name = "string",
                   .arrange = conversion([] { return @"abc"; }),
                   .present = gives("String(\"abc\")"),
                   .rows = textRows("abc")});
    static const std::string longText(120, 'x');
    all.push_back(
        {.name = "string, long",
         .arrange = conversion([] { return [NSString stringWithUTF8String:longText.c_str()]; }),
         .present = gives("String(\"" + longText + "\")"),
         .rows = textRows(longText),
         .allocations = {720},
         .unallocated = gives("String(nil)")});
    all.push_back({.name = "string, empty",
                   .arrange = conversion([] { return @""; }),
                   .present = gives("String(nil)"),
                   .rows = {{"StringToVariant", nothing, passing(nothing)}}});
    all.push_back(
        {.name = "web URL",
         .arrange = conversion([] { return [NSURL URLWithString:@"http://example.org/a"]; }),
         .present = gives("String(\"http://example.org/a\")"),
         .rows = textRows("http://example.org/a")});
    all.push_back(
        {.name = "null", .arrange = conversion([] { return [NSNull null]; }), .present = nothing});
    all.push_back({.name = "nil", .arrange = conversion([] { return nil; }), .present = nothing});
}

// File URLs. What gives no folder item is converted as text.

NSURL *fileUrl(const std::filesystem::path &path) {
    return [NSURL fileURLWithPath:[NSString stringWithUTF8String:path.c_str()]];
}

void addFile(Operations &all, const std::string &name, const std::filesystem::path &path) {
    all.push_back(
        {.name = name,
         .arrange = [path](Scene &scene) { return converting(scene, fileUrl(path)); },
         .present = gives("FolderItem(" + path.string() + ')'),
         .rows = {{"REALFolderItemFromParentFSRef",
                   gives("String(\"file://" + path.string() + "\")"), passing(nothing)}}});
}

// The root of a volume has no parent: its folder item is made by its path. A null path is passed on
// like any other, which the host takes for wrong.
void addRoot(Operations &all) {
    const Aftermath item = gives("FolderItem(/, by path)");
    const Aftermath text = gives("String(\"file:///\")");
    const char *nullPath = "GetTrueFolderItem: got nil where a live string is needed";
    all.push_back(
        {.name = "file URL of a volume's root",
         .arrange = conversion([] { return fileUrl("/"); }),
         .present = item,
         .rows = {{"REALBuildString", gives("String(nil)").complaining(nullPath),
                   mapped(text.complaining(nullPath)), true},
                  {"REALSetStringEncoding", item, mapped(text.complaining(nullPath)), true},
                  {.service = "REALLoadGlobalMethod",
                   .silent = text,
                   .thrown = passing(nothing),
                   .remembered = true},
                  {"REALUnlockString", item.holding({"String"}),
                   passing(nothing.holding({"String"}))}}});
}

// Booleans and numbers: one service each.

void addNumber(Operations &all, const std::string &name, std::function<id()> make,
               const char *service, const char *value) {
    all.push_back({.name = name,
                   .arrange = conversion(std::move(make)),
                   .present = gives(value),
                   .rows = {{service, nothing, passing(nothing)}}});
}

void addNumbers(Operations &all) {
    addNumber(all, "true", [] { return (id)kCFBooleanTrue; }, "BooleanToVariant", "Boolean(true)");
    addNumber(
        all, "false", [] { return (id)kCFBooleanFalse; }, "BooleanToVariant", "Boolean(false)");
    struct Code {
        const char *name;
        const char *code;
        const char *service;
        const char *value;
    };
    constexpr Code codes[] = {
        {"char", "c", "BooleanToVariant", "Boolean(true)"},
        {"unsigned char", "C", "IntegerToVariant", "Integer(5)"},
        {"short", "s", "IntegerToVariant", "Integer(5)"},
        {"unsigned short", "S", "IntegerToVariant", "Integer(5)"},
        {"int", "i", "IntegerToVariant", "Integer(5)"},
        {"unsigned int", "I", "UInt32ToVariant", "UInt32(5)"},
        {"long long", "q", "IntegerToVariant", "Integer(5)"},
        {"unsigned long long", "Q", "UInt32ToVariant", "UInt32(5)"},
        {"float", "f", "SingleToVariant", "Single(5)"},
        {"double", "d", "DoubleToVariant", "Double(5)"},
        {"long", "l", "DoubleToVariant", "Double(5)"},
        {"unsigned long", "L", "DoubleToVariant", "Double(5)"},
        {"bool", "B", "DoubleToVariant", "Double(5)"},
        {"long code", "cc", "DoubleToVariant", "Double(5)"},
    };
    for (const Code &row : codes)
        addNumber(
            all, "number, " + std::string(row.name),
            [code = row.code]() -> id {
                MatrixNumber *number = [[[MatrixNumber alloc] init] autorelease];
                number->code = code;
                return number;
            },
            row.service, row.value);
}

// Dates. In the default time zone, which the test sets.

id someDate() {
    [NSTimeZone setDefaultTimeZone:[NSTimeZone timeZoneForSecondsFromGMT:0]];
    return [NSDate dateWithTimeIntervalSinceReferenceDate:86400 + 3723.75];
}

void addDates(Operations &all) {
    const Aftermath whole = gives("Date(2001-01-02 01:02:03)");
    const Row making{"PluginNewInstance", nothing, passing(nothing)};
    all.push_back({.name = "date",
                   .arrange = conversion(someDate),
                   .present = whole,
                   .rows = {making, {"REALLoadObjectMethod", whole, passing(nothing)}}});
    all.push_back({.name = "date, without its constructor",
                   .arrange =
                       [](Scene &scene) {
                           scene.host.hideMethod(
                               "Year as Integer, Month as Integer = 1, Day as Integer = 1, hour as "
                               "Integer = 0, minute as Integer = 0, second as Integer = 0");
                           return converting(scene, someDate());
                       },
                   .present = whole,
                   .rows = {making,
                            {"REALLoadObjectMethod", whole, passing(nothing)},
                            {"REALSetPropValueInteger", gives("Date(2000-01-01 00:00:00)"),
                             passing(nothing)}}});
}

// Structures, and the hooks for times.

MatrixValue *valueOf(const char *code) {
    MatrixValue *value = [[[MatrixValue alloc] init] autorelease];
    value->code = code;
    return value;
}

Act convertingStructure(Scene &scene, const char *code) {
    scene.host.addClass({.name = "NSRectZKT", .dataSize = 32});
    scene.host.addClass({.name = "NSSizeZKT"});
    scene.host.addClass({.name = "NSPointZKT"});
    scene.host.addClass({.name = "NSRangeZKT"});
    scene.host.addClass({.name = "MatrixValueZKT"}); // which no structure may become
    return converting(scene, valueOf(code));
}

void addStructures(Operations &all) {
    struct Structure {
        const char *code;
        const char *value;
    };
    constexpr Structure structures[] = {
        {"{CGRect={CGPoint=dd}{CGSize=dd}}", "NSRectZKT(1, 2, 3, 4)"},
        {"{CGSize=dd}", "NSSizeZKT(3, 4)"},
        {"{_NSRange=QQ}", "NSRangeZKT(1, 2)"},
        {"{CGPoint=dd}", "NSPointZKT(1, 2)"},
    };
    for (const Structure &row : structures)
        all.push_back({.name = "structure " + std::string(row.value),
                       .arrange = [code = row.code](
                                      Scene &scene) { return convertingStructure(scene, code); },
                       .present = gives(row.value),
                       .rows = {{"PluginNewInstance", nothing, passing(nothing)}}});

    constexpr const char *times[] = {"{?=qqq}", "{?={?=qqq}{?=qqq}}", "{?=qiIq}",
                                     "{?={?=qiIq}{?=qiIq}}",
                                     "{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}"};
    for (std::size_t i = 0; i != std::size(times); ++i) {
        all.push_back({.name = "time " + std::to_string(i) + ", hooked",
                       .arrange =
                           [code = times[i]](Scene &scene) {
                               MatrixValue *value = valueOf(code);
                               value->knowsHooks = YES;
                               return handingOver(converting(scene, value), host::box("hooked"),
                                                  &value->hookAnswer);
                           },
                       .present = gives("String(\"hooked\")"),
                       .handling = {.kept = keeping({"Variant"})}});
        all.push_back({.name = "time " + std::to_string(i) + ", without a hook",
                       .arrange = [code = times[i]](
                                      Scene &scene) { return convertingStructure(scene, code); },
                       .present = nothing});
    }
    all.push_back({.name = "structure of another kind",
                   .arrange = [](Scene &scene) { return convertingStructure(scene, "{?=dd}"); },
                   .present = nothing});
}

} // namespace

const Operations &valueOperations() {
    static const Operations all = [] {
        Operations operations;
        addText(operations);
        // Neither is read or made.
        addFile(operations, "file URL of a file", "/dev/null");
        addFile(operations, "file URL of a file to be made", "/dev/no-such-file");
        addRoot(operations);
        addNumbers(operations);
        addDates(operations);
        addStructures(operations);
        return operations;
    }();
    return all;
}

} // namespace matrix
