// Binding as the host sees it: each service that an operation reaches, through the operation.

#include "ActingScene.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

struct Stage : ActingScene {
    explicit Stage(host::Siblings siblings)
        : ActingScene(
              [this] {
                  if (raising)
                      raiseNSException("N", "R");
              },
              siblings) {}

    bool raising = false;
    host::ObjectRef shared; // while an operation needs one
};

struct ReachedService {
    std::string name;
    std::function<void(Stage &)> operation; // reaches the service once
    host::Siblings siblings = host::Siblings::all;
    bool leaksWithout = false; // the service releases something
};

void PrintTo(const ReachedService &service, std::ostream *out) {
    *out << service.name;
}

void makeInstance(Stage &stage) {
    stage.host.callShared(processInfoClass, "processInfo");
}

// The instance is in the family's registry. Called by address: without the service the result is no
// reference that the host may take.
void askForTheSharedInstance(Stage &stage) {
    if (stage.shared.handle() == nullptr)
        stage.shared = stage.host.callShared(processInfoClass, "processInfo").object();
    auto *processInfo = reinterpret_cast<host::ObjectHandle (*)()>(
        stage.host.sharedMethodOf(processInfoClass, "processInfo"));
    const std::int64_t before = stage.host.references(stage.shared.handle());
    EXPECT_EQ(processInfo(), stage.shared.handle());
    if (stage.host.references(stage.shared.handle()) > before)
        host::ObjectRef::adopt(stage.shared.handle());
}

void getText(Stage &stage) {
    stage.host.get(stage.info, "hostName");
}

void raiseInAGetter(Stage &stage) {
    stage.raising = true;
    stage.host.get(stage.info, "processIdentifier");
}

void constructAgain(Stage &stage) {
    stage.host.call(stage.info, "Constructor");
}

void buildUtf16(Stage &stage) {
    using Build = REALstringStruct *(const char *, std::int64_t, std::uint32_t);
    auto *build = imageFunction<Build>(stage.image, "REALBuildUnicodeString");
    host::StringRef::adopt(build("A\0", 2, host::encoding::utf16));
}

void listArguments(Stage &stage) {
    stage.host.call(stage.info, "arguments");
}

// Text of a known encoding is asked for as a Core Foundation string.
void passText(Stage &stage) {
    stage.host.call(stage.info, "disableAutomaticTermination", {"reason"});
}

const ReachedService reachedServices[] = {
    {"PluginNewInstance", makeInstance, host::Siblings::exceptions},
    {"REALLockObject", askForTheSharedInstance},
    {"REALBuildString", getText},
    {"REALSetStringEncoding", getText},
    {"RuntimeRaiseException", raiseInAGetter},
    {.name = "REALUnlockObject", .operation = raiseInAGetter, .leaksWithout = true},
    {"REALSetPropValueString", constructAgain},
    {"REALSetPropValueInteger", constructAgain},
    {.name = "REALUnlockString", .operation = constructAgain, .leaksWithout = true},
    {"REALBuildStringWithEncoding", buildUtf16},
    {"REALConvertString", buildUtf16},
    {"RuntimeArrayCreateSingleDimBoundedArray", listArguments},
    {"PluginStringArrayInsertProc", listArguments},
    {"REALGetStringEncoding", passText},
};

class LazyBinding : public testing::TestWithParam<ReachedService> {
protected:
    [[nodiscard]] const std::string &service() const { return GetParam().name; }
    void run() { GetParam().operation(stage_); }

    [[nodiscard]] std::vector<std::string> lookups() const {
        auto all = stage_.host.lookups();
        std::erase_if(all,
                      [&](const std::string &line) { return !line.ends_with(" " + service()); });
        return all;
    }

    Stage stage_{GetParam().siblings};
};

} // namespace

TEST_P(LazyBinding, WaitsForTheFirstUse) {
    EXPECT_EQ(stage_.host.services().lookups(service()), 0u);
}

TEST_P(LazyBinding, LooksAFoundServiceUpOnce) {
    for (int i = 0; i < 3; ++i)
        run();
    EXPECT_THAT(lookups(), ElementsAre("find " + service()));
    EXPECT_EQ(stage_.host.services().calls(service()), 3u);
}

TEST_P(LazyBinding, LooksAMissingServiceUpAtEachUse) {
    stage_.host.services().hide(service());
    for (int i = 0; i < 3; ++i)
        run();
    EXPECT_THAT(lookups(), SizeIs(3));
    EXPECT_THAT(lookups(), Each("miss " + service()));
    EXPECT_EQ(stage_.host.services().calls(service()), 0u);

    if (GetParam().leaksWithout) {
        stage_.info = {};
        stage_.host.shutDown();
        EXPECT_THAT(stage_.host.violations(), SizeIs(3));
        EXPECT_THAT(stage_.host.violations(), Each(HasSubstr("leaked, 1 reference ")));
    }
}

TEST_P(LazyBinding, BindsAServiceThatAppears) {
    stage_.host.services().hide(service());
    run();
    stage_.host.services().restore(service());
    run();
    run();
    EXPECT_THAT(lookups(), ElementsAre("miss " + service(), "find " + service()));
    EXPECT_EQ(stage_.host.services().calls(service()), 2u);

    if (GetParam().leaksWithout) {
        stage_.info = {};
        stage_.host.shutDown();
        EXPECT_THAT(stage_.host.violations(), SizeIs(1));
    }
}

TEST_P(LazyBinding, KeepsAServiceThatTheHostNoLongerGivesOut) {
    run();
    stage_.host.services().hide(service());
    run();
    EXPECT_THAT(lookups(), ElementsAre("find " + service()));
    EXPECT_EQ(stage_.host.services().calls(service()), 2u);
}

INSTANTIATE_TEST_SUITE_P(Of, LazyBinding, testing::ValuesIn(reachedServices),
                         [](const auto &tested) { return tested.param.name; });

// What is missing makes only its own step quiet.
