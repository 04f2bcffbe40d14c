// Sudden and automatic termination, steered through the instance's own object.

#import "TracedObject.h"

#include "LoadedPlugin.h"
#include "macos/standin/StandIn.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

struct TerminationScene : LoadedPlugin {
    Traced own{"own"};
    InstanceAround info{host, own};
};

/// One of the four methods, by its name in the host's language.
struct Operation {
    const char *method;
    bool takesReason;

    [[nodiscard]] std::string selector() const {
        return method + std::string(takesReason ? ":" : "");
    }
    [[nodiscard]] host::Values arguments() const {
        return takesReason ? host::Values{"why"} : host::Values{};
    }
    friend void PrintTo(const Operation &operation, std::ostream *out) { *out << operation.method; }
};

constexpr Operation operations[] = {{"disableSuddenTermination", false},
                                    {"enableSuddenTermination", false},
                                    {"disableAutomaticTermination", true},
                                    {"enableAutomaticTermination", true}};

class Termination : public testing::TestWithParam<Operation> {};
class AutomaticTermination : public testing::TestWithParam<Operation> {};

} // namespace

TEST_P(Termination, SendsOneMessageToTheInstancesOwnObject) {
    TerminationScene scene;
    scene.host.call(scene.info, GetParam().method, GetParam().arguments()).result();
    if (GetParam().takesReason)
        EXPECT_THAT(scene.host.calls(), ElementsAre("REALGetStringEncoding(String#1) = 0x08000100",
                                                    "REALGetStringCFString(String#1, 0) = pointer",
                                                    "[own " + GetParam().selector() + "\"why\"]"));
    else
        EXPECT_THAT(scene.host.trace(), ElementsAre("[own " + GetParam().selector() + "]"));
}

TEST_P(Termination, SendsAsOftenAsItIsCalled) {
    TerminationScene scene;
    for (int i = 0; i < 3; ++i)
        scene.host.call(scene.info, GetParam().method, GetParam().arguments()).result();
    std::vector<std::string> sent;
    for (const std::string &line : scene.host.calls())
        if (line.starts_with("[own"))
            sent.push_back(line);
    EXPECT_THAT(sent, testing::SizeIs(3));
}

TEST_P(Termination, OfAnUnboundInstanceDoesNothing) {
    LoadedPlugin loaded;
    const auto info = loaded.host.newInstance(processInfoClass);
    loaded.host.clearTrace();
    loaded.host.call(info, GetParam().method, GetParam().arguments()).result();
    if (GetParam().takesReason)
        EXPECT_THAT(loaded.host.calls(),
                    ElementsAre("REALGetStringEncoding(String#1) = 0x08000100",
                                "REALGetStringCFString(String#1, 0) = pointer"));
    else
        EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST_P(Termination, IsNotProbedFor) {
    LoadedPlugin loaded;
    const OwnObject<NSObject> dumb;
    const InstanceAround info(loaded.host, dumb);
    const host::Outcome outcome = loaded.host.call(info, GetParam().method, GetParam().arguments());
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->cocoaName, "NSInvalidArgumentException");
    EXPECT_THAT(outcome.exception->cocoaReason, HasSubstr(GetParam().selector()));
}

INSTANTIATE_TEST_SUITE_P(Of, Termination, testing::ValuesIn(operations),
                         [](const auto &tested) { return tested.param.method; });

TEST_P(AutomaticTermination, WithoutAReasonSendsNil) {
    TerminationScene scene;
    scene.host.call(scene.info, GetParam().method, {host::Value()}).result();
    scene.host.call(scene.info, GetParam().method, {""}).result();
    const std::string message = "[own " + GetParam().selector() + "nil]";
    EXPECT_THAT(scene.host.trace(), ElementsAre(message, message));
}

TEST_P(AutomaticTermination, BorrowsTheReason) {
    TerminationScene scene;
    const host::Value reason = "why";
    const auto before = scene.host.references(reason.string().handle());
    scene.host.call(scene.info, GetParam().method, {reason}).result();
    EXPECT_EQ(scene.host.references(reason.string().handle()), before);
}

INSTANTIATE_TEST_SUITE_P(Of, AutomaticTermination, testing::Values(operations[2], operations[3]),
                         [](const auto &tested) { return tested.param.method; });

TEST(TerminationOfTheProcess, IsCountedByTheSystem) {
    LoadedPlugin loaded;
    const auto info = loaded.host.callShared(processInfoClass, "processInfo").object();
    loaded.host.call(info, "disableSuddenTermination").result();
    loaded.host.call(info, "disableSuddenTermination").result();
    EXPECT_EQ(standin::suddenTerminationDisableCount(), 2);
    EXPECT_EQ(standin::automaticTerminationDisableCount(), 0);
    loaded.host.call(info, "enableSuddenTermination").result();
    EXPECT_EQ(standin::suddenTerminationDisableCount(), 1);
    loaded.host.call(info, "disableAutomaticTermination", {"why"}).result();
    EXPECT_EQ(standin::automaticTerminationDisableCount(), 1);
    loaded.host.call(info, "enableAutomaticTermination", {"why"}).result();
    EXPECT_EQ(standin::automaticTerminationDisableCount(), 0);
    EXPECT_EQ(standin::suddenTerminationDisableCount(), 1);
}
