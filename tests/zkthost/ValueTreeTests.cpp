// Host values as trees: what no property list can hold.

#include "host/zkthost/ValueTree.h"

#include "host/GoogleTest.h"
#include "host/Host.h"
#include "host/classes/Inspect.h"

#include <cmath>
#include <limits>
#include <string>

namespace {

using namespace host;
using zkthost::treeAsJson;
using zkthost::treeAsText;

std::string jsonOf(const Value &value) {
    return host::jsonLine(treeAsJson(value));
}

ObjectRef folderItemOf(const char *path) {
    using Load = void *(void *, const char *);
    using Make = ObjectHandle(StringHandle, std::int64_t);
    Host &host = Host::current();
    auto *const load = reinterpret_cast<Load *>(host.services().entry("REALLoadGlobalMethod"));
    auto *const make = reinterpret_cast<Make *>(
        load(nullptr, "GetTrueFolderItem(path As String, pathMode As Integer) As FolderItem"));
    return ObjectRef::adopt(make(host.makeString(path), 3));
}

} // namespace

TEST(ValueTree, NamesTheKindOfANumber) {
    Host host;
    struct Row {
        VariantType type;
        Value value;
        const char *text;
        const char *json;
    };
    const Row rows[] = {
        {VariantType::integer, std::numeric_limits<std::int64_t>::min(),
         "Integer -9223372036854775808", R"({"type":"Integer","value":-9223372036854775808})"},
        {VariantType::uint32, std::uint64_t{4294967295}, "UInt32 4294967295",
         R"({"type":"UInt32","value":4294967295})"},
        {VariantType::real, 0.1, "Double 0.1", R"({"type":"Double","value":0.1})"},
        {VariantType::single, double{0.1F}, "Single 0.1",
         R"({"type":"Single","value":0.10000000149011612})"},
        {VariantType::single, 1.5, "Single 1.5", R"({"type":"Single","value":1.5})"},
        {VariantType::real, std::nan(""), "Double nan",
         R"({"type":"Double","value":null,"text":"nan"})"},
        {VariantType::real, -HUGE_VAL, "Double -inf",
         R"({"type":"Double","value":null,"text":"-inf"})"},
        {VariantType::boolean, true, "Boolean true", R"({"type":"Boolean","value":true})"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.text);
        const Value boxed = box(row.value, row.type);
        EXPECT_EQ(treeAsText(boxed), row.text);
        EXPECT_EQ(jsonOf(boxed), row.json);
    }
}

TEST(ValueTree, TellsTheNullStringFromNil) {
    Host host;
    const Value nullString = box(Value(), VariantType::string);
    EXPECT_EQ(treeAsText(nullString), "\"\"");
    EXPECT_EQ(jsonOf(nullString), R"({"type":"String","value":""})");
    EXPECT_EQ(treeAsText(Value()), "nil");
    EXPECT_EQ(jsonOf(Value()), "null");
}

TEST(ValueTree, ShowsAFolderItemsPath) {
    Host host;
    const Value item = folderItemOf("/a \"b\"/c");
    EXPECT_EQ(treeAsText(item), "FolderItem \"/a \\\"b\\\"/c\"");
    EXPECT_EQ(jsonOf(item), R"({"type":"FolderItem","path":"/a \"b\"/c"})");
}

TEST(ValueTree, ShowsADate) {
    Host host;
    const ObjectRef date = host.newInstance("Date");
    for (const auto &[property, value] : {std::pair{"Year", 33},
                                          {"Month", 4},
                                          {"Day", 3},
                                          {"Hour", 15},
                                          {"Minute", 0},
                                          {"Second", 9}})
        host.set(date, property, Value(value)).result();
    EXPECT_EQ(treeAsText(date), "Date 0033-04-03 15:00:09");
    EXPECT_EQ(jsonOf(date), R"({"type":"Date","value":"0033-04-03 15:00:09"})");
}

TEST(ValueTree, ShowsAnEmptyBlock) {
    Host host;
    const ObjectRef block = host.newInstance("MemoryBlock");
    EXPECT_EQ(treeAsText(block), "MemoryBlock, 0 bytes");
    EXPECT_EQ(jsonOf(block), R"({"type":"MemoryBlock","size":0,"bytes":""})");
}

TEST(ValueTree, ShowsAnotherObjectByItsClass) {
    Host host;
    host.addClass({.name = "NSFontZKT"});
    const ObjectRef object = host.newInstance("NSFontZKT");
    EXPECT_EQ(treeAsText(object), "NSFontZKT");
    EXPECT_EQ(jsonOf(object), R"({"type":"NSFontZKT"})");
}
