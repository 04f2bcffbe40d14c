// "argument" and "arguments" when an object raises, or the host lacks a service.

#import "ArgumentScene.h"

#include "Caught.h"
#include "host/family/Siblings.h"

#include <gmock/gmock.h>

#include <stdexcept>

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

void expectRefusal(const host::Outcome &outcome, const char *what) {
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "NSExceptionZKT");
    EXPECT_EQ(outcome.exception->cocoaName, "Refused");
    EXPECT_EQ(outcome.exception->cocoaReason, what);
    EXPECT_EQ(host::siblings::makeCount(), 1u);
}

std::size_t insertProcedureRequests;
std::vector<std::string> insertions;

// An insert procedure of the test's own, and one request in between that finds none.
void insert(host::ObjectHandle, std::int64_t index, host::StringHandle string) {
    insertions.push_back(std::to_string(index) + ' ' + host::Host::current().text(string));
}

void *insertProcedureExceptForTheSecond(host::ObjectHandle) {
    return ++insertProcedureRequests == 2 ? nullptr : reinterpret_cast<void *>(insert);
}

} // namespace

TEST(ArgumentsRefused, ByTheObjectAreAnEmptyArray) {
    ArgumentScene scene({@"a"});
    scene.own->onMessage = refusing("arguments");
    const host::Outcome outcome = scene.arguments();
    expectRefusal(outcome, "arguments");
    EXPECT_EQ(host::arrayCount(outcome.value.object()), 0u);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("RuntimeArrayCreateSingleDimBoundedArray(3, -1) = Array#2",
                            "[own arguments]", "RuntimeRaiseException(NSExceptionZKT#3)",
                            "REALUnlockObject(NSExceptionZKT#3)"));
}

TEST(ArgumentsRefused, ByTheListAreAnEmptyArray) {
    ArgumentScene scene({@"a"});
    scene.list->onMessage = refusing("objectEnumerator");
    const host::Outcome outcome = scene.arguments();
    expectRefusal(outcome, "objectEnumerator");
    EXPECT_EQ(host::arrayCount(outcome.value.object()), 0u);
}

TEST(ArgumentsRefused, InTheMiddleAreFilledAsFarAsTheyGot) {
    ArgumentScene scene({@"a", @"b", @"c"});
    scene.list->nextToRaise = 3;
    const host::Outcome outcome = scene.arguments();
    expectRefusal(outcome, "nextObject");
    EXPECT_THAT(scene.texts(outcome.value.object()), ElementsAre("a", "b"));
}

TEST(ArgumentsRefused, AtTheFirstAreAnEmptyArray) {
    ArgumentScene scene({@"a", @"b", @"c"});
    scene.list->nextToRaise = 1;
    const host::Outcome outcome = scene.arguments();
    expectRefusal(outcome, "nextObject");
    EXPECT_EQ(host::arrayCount(outcome.value.object()), 0u);
}

TEST(ArgumentsRefused, ByAnElementAreFilledAsFarAsTheyGot) {
    const OwnObject<RefusingElement> refusingElement;
    ArgumentScene scene({@"a", refusingElement, @"c"});
    const host::Outcome outcome = scene.arguments();
    expectRefusal(outcome, "length");
    EXPECT_THAT(scene.texts(outcome.value.object()), ElementsAre("a"));
}

TEST(ArgumentsRefused, ByTheHostBeforeThereIsAnArrayLetTheExceptionOut) {
    ArgumentScene scene({@"a"});
    scene.host.services().fail("RuntimeArrayCreateSingleDimBoundedArray",
                               [] { refusing("array")("array"); });
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.arguments(); }), "Refused: array");
    EXPECT_EQ(host::siblings::makeCount(), 0u) << "outside of the trap";
}

TEST(ArgumentsRefused, InAnotherWayThanCocoasLetItPass) {
    ArgumentScene scene({@"a"});
    scene.list->onMessage = [](std::string_view) { throw std::runtime_error("not Cocoa's"); };
    EXPECT_EQ(standardExceptionFrom([&] { scene.arguments(); }), "not Cocoa's");
    scene.host.shutDown();
    EXPECT_THAT(scene.host.violations(), IsEmpty());
}

TEST(ArgumentsWithout, TheArrayServiceAreNil) {
    ArgumentScene scene({@"a"});
    scene.host.services().hide("RuntimeArrayCreateSingleDimBoundedArray");
    EXPECT_TRUE(scene.arguments().isNil());
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("miss RuntimeArrayCreateSingleDimBoundedArray", "[own arguments]"));
}

TEST(ArgumentsWithout, AnArrayAreNil) {
    ArgumentScene scene({@"a"});
    scene.host.services().answerNull("RuntimeArrayCreateSingleDimBoundedArray");
    EXPECT_TRUE(scene.arguments().isNil());
    EXPECT_THAT(
        scene.host.calls(),
        ElementsAre("RuntimeArrayCreateSingleDimBoundedArray(3, -1) = nil", "[own arguments]"));
}

TEST(ArgumentsWithout, TheInsertServiceAreLeftOutAndReleased) {
    ArgumentScene scene({@"a", @"b"});
    scene.host.services().hide("PluginStringArrayInsertProc");
    const auto array = scene.arguments().object();
    EXPECT_EQ(host::arrayCount(array), 0u);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("RuntimeArrayCreateSingleDimBoundedArray(3, -1) = Array#2",
                            "[own arguments]", "[list objectEnumerator]", "[enumerator nextObject]",
                            "REALBuildString(\"a\", 1) = String#1",
                            "REALSetStringEncoding(String#1, 0x08000100)",
                            "REALUnlockString(String#1)", "[enumerator nextObject]",
                            "REALBuildString(\"b\", 1) = String#2",
                            "REALSetStringEncoding(String#2, 0x08000100)",
                            "REALUnlockString(String#2)", "[enumerator nextObject]"));
    EXPECT_THAT(scene.host.lookups(),
                ElementsAre("find RuntimeArrayCreateSingleDimBoundedArray", "find REALBuildString",
                            "find REALSetStringEncoding", "miss PluginStringArrayInsertProc",
                            "find REALUnlockString", "miss PluginStringArrayInsertProc"));
    EXPECT_THAT(scene.host.liveStrings(), IsEmpty());
}

TEST(ArgumentsWithout, AnInsertProcedureForOneElementKeepTheOthersIndices) {
    ArgumentScene scene({@"a", @"b", @"c"});
    scene.host.services().replace("PluginStringArrayInsertProc", insertProcedureExceptForTheSecond);
    const auto array = scene.arguments().object();
    EXPECT_THAT(insertions, ElementsAre("0 a", "2 c"));
    EXPECT_EQ(insertProcedureRequests, 3u);
    EXPECT_THAT(scene.host.liveStrings(), IsEmpty());
}

TEST(ArgumentsWithout, REALUnlockStringKeepAReferenceTooMany) {
    ArgumentScene scene({@"a", @"b"});
    scene.host.services().hide("REALUnlockString");
    auto array = scene.arguments().object();
    EXPECT_THAT(scene.texts(array), ElementsAre("a", "b"));
    scene.host.release(std::move(array)).result();
    scene.host.shutDown();
    EXPECT_THAT(scene.host.violations(),
                ElementsAre(StartsWith("String#1 leaked, 1 reference never released"),
                            StartsWith("String#2 leaked, 1 reference never released")));
}

TEST(ArgumentsWithout, StringBuildingAreNilOneByOne) {
    ArgumentScene scene({@"a", @"b"});
    scene.host.services().hide("REALBuildString");
    const auto array = scene.arguments().object();
    ASSERT_EQ(host::arrayCount(array), 2u);
    EXPECT_TRUE(host::arrayElements(array)[0].isNil());
    EXPECT_TRUE(host::arrayElements(array)[1].isNil());
    EXPECT_EQ(scene.host.services().calls("REALUnlockString"), 0u);
}

TEST(ArgumentRefused, ByTheObjectIsNil) {
    ArgumentScene scene({@"a"});
    scene.own->onMessage = refusing("arguments");
    const host::Outcome outcome = scene.argument(0);
    expectRefusal(outcome, "arguments");
    EXPECT_TRUE(outcome.value.isNil());
}

TEST(ArgumentRefused, ByTheListIsNil) {
    ArgumentScene scene({@"a"});
    scene.list->onMessage = refusing("objectAtIndex:");
    const host::Outcome outcome = scene.argument(0);
    expectRefusal(outcome, "objectAtIndex:");
    EXPECT_TRUE(outcome.value.isNil());
}

TEST(ArgumentRefused, ByTheElementIsNil) {
    const OwnObject<RefusingElement> refusingElement;
    ArgumentScene scene({refusingElement});
    const host::Outcome outcome = scene.argument(0);
    expectRefusal(outcome, "length");
    EXPECT_TRUE(outcome.value.isNil());
}

TEST(ArgumentRefused, InAnotherWayThanCocoasLetsItPass) {
    ArgumentScene scene({@"a"});
    scene.list->onMessage = [](std::string_view) { throw std::runtime_error("not Cocoa's"); };
    EXPECT_EQ(standardExceptionFrom([&] { scene.argument(0); }), "not Cocoa's");
    EXPECT_THAT(scene.host.calls(), Each(Not(HasSubstr("RuntimeRaiseException"))));
}

TEST(ArgumentsCountRefused, IsZero) {
    ArgumentScene scene({@"a"});
    scene.list->onMessage = refusing("count");
    const host::Outcome outcome = scene.host.get(scene.info, "argumentsCount");
    expectRefusal(outcome, "count");
    EXPECT_EQ(outcome.value.integer(), 0);
}

TEST(ArgumentWithout, StringBuildingIsNil) {
    ArgumentScene scene({@"a"});
    scene.host.services().hide("REALBuildString");
    EXPECT_TRUE(scene.argument(0).isNil());
    EXPECT_THAT(scene.host.lookups(), ElementsAre("miss REALBuildString"));
}
