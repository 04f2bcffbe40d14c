// "argument" and "arguments" when an object raises, or the host lacks a service.

#import "ArgumentScene.h"

#include "Caught.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

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

TEST(ArgumentsRefused, ByAnElementAreFilledAsFarAsTheyGot) {
    const OwnObject<RefusingElement> refusingElement;
    ArgumentScene scene({@"a", refusingElement, @"c"});
    const host::Outcome outcome = scene.arguments();
    expectRaised(outcome, "Refused", "length");
    EXPECT_THAT(scene.texts(outcome.value.object()), ElementsAre("a"));
}

TEST(ArgumentsWithout, AnArrayAreNil) {
    ArgumentScene scene({@"a"});
    scene.host.services().answerNull("RuntimeArrayCreateSingleDimBoundedArray");
    EXPECT_TRUE(scene.arguments().isNil());
    EXPECT_THAT(
        scene.host.calls(),
        ElementsAre("RuntimeArrayCreateSingleDimBoundedArray(3, -1) = nil", "[own arguments]"));
}

TEST(ArgumentsWithout, AnInsertProcedureForOneElementKeepTheOthersIndices) {
    ArgumentScene scene({@"a", @"b", @"c"});
    scene.host.services().replace("PluginStringArrayInsertProc", insertProcedureExceptForTheSecond);
    const auto array = scene.arguments().object();
    EXPECT_THAT(insertions, ElementsAre("0 a", "2 c"));
    EXPECT_EQ(insertProcedureRequests, 3u);
    EXPECT_THAT(scene.host.liveStrings(), IsEmpty());
}

TEST(ArgumentRefused, ByTheElementIsNil) {
    const OwnObject<RefusingElement> refusingElement;
    ArgumentScene scene({refusingElement});
    const host::Outcome outcome = scene.argument(0);
    expectRaised(outcome, "Refused", "length");
    EXPECT_TRUE(outcome.value.isNil());
}
