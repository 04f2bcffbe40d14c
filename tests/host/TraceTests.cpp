#include "host/classes/Inspect.h"
#include "tests/host/FakePlugin.h"

#include <cmath>
#include <limits>
#include <stdexcept>

namespace {

using namespace host;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(Trace, CallsWithArgumentsAndResults) {
    Host host;
    const ObjectHandle object = pluginNewInstance("Date");
    lockObject(object);
    unlockObject(object);
    unlockObject(object);
    EXPECT_EQ(pluginNewInstance("NoSuchClass"), nullptr);
    EXPECT_THAT(host.calls(),
                ElementsAre("PluginNewInstance(\"Date\") = Date#1", "REALLockObject(Date#1)",
                            "REALUnlockObject(Date#1)", "REALUnlockObject(Date#1)",
                            "PluginNewInstance(\"NoSuchClass\") = nil"));
}

TEST(Trace, ObjectsShareANumberingAndStringsHaveTheirOwn) {
    Host host;
    unlockString(buildString("a"));
    unlockObject(integerVariant(1));
    unlockString(buildString("b"));
    unlockObject(pluginNewInstance("Date"));
    EXPECT_THAT(host.calls(),
                ElementsAre("REALBuildString(\"a\", 1) = String#1", "REALUnlockString(String#1)",
                            "IntegerToVariant(1) = Variant#1", "REALUnlockObject(Variant#1)",
                            "REALBuildString(\"b\", 1) = String#2", "REALUnlockString(String#2)",
                            "PluginNewInstance(\"Date\") = Date#2", "REALUnlockObject(Date#2)"));
}

TEST(Trace, BytesAreEscapedAndCut) {
    Host host;
    unlockString(buildString("\"\\\n\x7F\xC3 ~\0"s));
    unlockString(buildString(std::string(64, 'x')));
    unlockString(buildString(std::string(65, 'x')));
    const std::vector<std::string> calls = host.calls();
    EXPECT_EQ(calls[0], R"(REALBuildString("\"\\\x0A\x7F\xC3 ~\x00", 8) = String#1)");
    EXPECT_EQ(calls[2], "REALBuildString(\"" + std::string(64, 'x') + "\", 64) = String#2");
    EXPECT_EQ(calls[4], "REALBuildString(\"" + std::string(64, 'x') + "\"..., 65) = String#3");
}

TEST(Trace, NumbersOfEveryKind) {
    Host host;
    unlockObject(integerVariant(INT64_MIN));
    const auto real = service<ObjectHandle(double)>("DoubleToVariant");
    unlockObject(real(0.1));
    unlockObject(real(1.0));
    unlockObject(real(std::nan("")));
    unlockObject(real(-std::numeric_limits<double>::infinity()));
    unlockObject(service<ObjectHandle(float)>("SingleToVariant")(0.5F));
    unlockObject(service<ObjectHandle(std::uint32_t)>("UInt32ToVariant")(UINT32_MAX));
    unlockObject(service<ObjectHandle(bool)>("BooleanToVariant")(true));
    service<double()>("REALGetRBVersion")();
    std::vector<std::string> calls = host.calls();
    std::erase_if(calls, [](const std::string &call) { return call.starts_with("REALUnlock"); });
    EXPECT_THAT(calls,
                ElementsAre("IntegerToVariant(-9223372036854775808) = Variant#1",
                            "DoubleToVariant(0.1) = Variant#2", "DoubleToVariant(1) = Variant#3",
                            "DoubleToVariant(nan) = Variant#4", "DoubleToVariant(-inf) = Variant#5",
                            "SingleToVariant(0.5) = Variant#6",
                            "UInt32ToVariant(4294967295) = Variant#7",
                            "BooleanToVariant(true) = Variant#8", "REALGetRBVersion() = 2013.04"));
}

TEST(Trace, PointersEncodingsAndFlags) {
    Host host;
    const StringHandle string = buildString("a");
    service<void(StringHandle, std::uint32_t)>("REALSetStringEncoding")(string, encoding::utf8);
    service<std::uint32_t(StringHandle)>("REALGetStringEncoding")(string);
    service<const char *(StringHandle)>("StringGetCString")(string);
    service<void *(void *, const char *)>("REALLoadGlobalMethod")(nullptr, "Nothing");
    unlockString(string);
    EXPECT_THAT(host.calls(), ElementsAre("REALBuildString(\"a\", 1) = String#1",
                                          "REALSetStringEncoding(String#1, 0x08000100)",
                                          "REALGetStringEncoding(String#1) = 0x08000100",
                                          "StringGetCString(String#1) = pointer",
                                          "REALLoadGlobalMethod(nil, \"Nothing\") = nil",
                                          "REALUnlockString(String#1)"));
}

TEST(Trace, HostMethodsAreCalls) {
    Host host;
    const ObjectHandle array = service<ObjectHandle(std::int32_t, std::int32_t)>(
        "RuntimeArrayCreateSingleDimBoundedArray")(stringElements, -1);
    auto *insert = reinterpret_cast<void (*)(ObjectHandle, std::int64_t, StringHandle)>(
        service<void *(ObjectHandle)>("PluginStringArrayInsertProc")(array));
    const StringHandle string = buildString("a");
    insert(array, 0, string);
    unlockString(string);
    unlockObject(array);
    EXPECT_THAT(host.calls(),
                ElementsAre("RuntimeArrayCreateSingleDimBoundedArray(3, -1) = Array#1",
                            "PluginStringArrayInsertProc(Array#1) = pointer",
                            "REALBuildString(\"a\", 1) = String#1",
                            "StringArray.Insert(Array#1, 0, String#1)",
                            "REALUnlockString(String#1)", "REALUnlockObject(Array#1)"));
}

TEST(Trace, LookupsSayWhetherTheyFound) {
    Host host;
    const Resolver resolve = Host::resolver();
    EXPECT_NE(resolve("REALLockObject"), nullptr);
    EXPECT_EQ(resolve("NoSuchService"), nullptr);
    host.services().hide("newMemoryBlock");
    EXPECT_EQ(resolve("newMemoryBlock"), nullptr);
    EXPECT_THAT(host.lookups(),
                ElementsAre("find REALLockObject", "miss NoSuchService", "miss newMemoryBlock"));
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST(Trace, LookupsAndCallsAreInOneOrder) {
    Host host;
    auto *unlock = reinterpret_cast<void (*)(StringHandle)>(Host::resolver()("REALUnlockString"));
    const StringHandle string = buildString("a");
    unlock(string);
    EXPECT_THAT(host.trace(),
                ElementsAre("find REALUnlockString", "REALBuildString(\"a\", 1) = String#1",
                            "REALUnlockString(String#1)"));
}

void constructorThatCalls(ObjectHandle object) {
    lockObject(object);
    unlockObject(object);
}

TEST(Trace, CallsInsideACallFollowIt) {
    FakeClass type("NoisyZKT");
    Host host;
    type.record.constructor = constructorThatCalls;
    type.registerClass();
    host.clearTrace();
    unlockObject(pluginNewInstance("NoisyZKT"));
    EXPECT_THAT(host.calls(),
                ElementsAre("PluginNewInstance(\"NoisyZKT\") = NoisyZKT#1",
                            "REALLockObject(NoisyZKT#1)", "REALUnlockObject(NoisyZKT#1)",
                            "REALUnlockObject(NoisyZKT#1)"));
}

TEST(Trace, CallsLeftByAnExceptionSaySo) {
    Host host;
    host.services().fail("REALBuildString", [] { throw std::out_of_range("far"); });
    EXPECT_THROW(buildString("a"), std::out_of_range);
    EXPECT_THAT(host.calls(), ElementsAre("REALBuildString(\"a\", 1) threw"));
}

TEST(Trace, BadHandlesAreNamedAsFarAsKnown) {
    Host host;
    const StringHandle freed = buildString("a");
    unlockString(freed);
    lockString(freed);
    int wild = 0;
    lockString(reinterpret_cast<StringHandle>(&wild));
    lockObject(nullptr);
    const std::vector<std::string> calls = host.calls();
    EXPECT_EQ(calls[2], "REALLockString(String#1)");
    EXPECT_EQ(calls[3], "REALLockString(invalid)");
    EXPECT_EQ(calls[4], "REALLockObject(nil)");
    EXPECT_THAT(host.violations(), testing::SizeIs(3));
}

TEST(Trace, CanBeClearedAndSwitchedOff) {
    Host host;
    unlockString(buildString("a"));
    host.clearTrace();
    EXPECT_THAT(host.trace(), IsEmpty());
    host.setTracing(false);
    const StringHandle string = buildString("b");
    Host::resolver()("REALLockObject");
    host.setTracing(true);
    unlockString(string);
    EXPECT_THAT(host.trace(), ElementsAre("REALUnlockString(String#2)"));
    EXPECT_EQ(host.account().calls, 4U);
}

void clearing(ObjectHandle) {
    Host::current().clearTrace();
}

TEST(Trace, ClearingInsideACallDropsItsResult) {
    FakeClass type("ClearingZKT");
    Host host;
    type.record.constructor = clearing;
    type.registerClass();
    const ObjectHandle object = pluginNewInstance("ClearingZKT");
    EXPECT_THAT(host.trace(), IsEmpty());
    unlockObject(object);
    EXPECT_THAT(host.trace(), ElementsAre("REALUnlockObject(ClearingZKT#1)"));
}

TEST(Trace, RecordsAreShownByTheirName) {
    FakeClass type("NamedZKT");
    Host host;
    type.registerClass();
    EXPECT_THAT(host.calls(),
                ElementsAre("RegisterPluginVersion(13)", "PluginRegisterClass(\"NamedZKT\")"));
}

} // namespace
