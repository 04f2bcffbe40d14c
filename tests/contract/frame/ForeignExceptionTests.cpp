// What an object behind "Handle" throws that is no Objective-C object: not the trap's business.

#include "ActingScene.h"

#include "host/family/Siblings.h"

#include <gmock/gmock.h>

#include <exception>
#include <stdexcept>
#include <string>

using testing::IsEmpty;

namespace {

// What no trap may look at leaves no trace.
void expectUntouched(const ActingScene &scene, const std::string &log) {
    EXPECT_EQ(log, "");
    EXPECT_EQ(host::siblings::makeCount(), 0u);
    EXPECT_THAT(scene.host.trace(), IsEmpty());
    EXPECT_FALSE(scene.host.hasPendingException());
}

struct Plain {
    const void *identity;
};

} // namespace

TEST(ForeignException, OfTheStandardFamilyPassesThroughUnchanged) {
    std::exception_ptr original = std::make_exception_ptr(std::runtime_error("as it was thrown"));
    ActingScene scene([&] { std::rethrow_exception(original); });
    std::string caught;
    testing::internal::CaptureStderr();
    try {
        scene.host.get(scene.info, "processIdentifier");
    } catch (const std::runtime_error &error) {
        caught = error.what();
        EXPECT_EQ(std::current_exception(), original) << "the same object, not a copy";
    }
    expectUntouched(scene, testing::internal::GetCapturedStderr());
    EXPECT_EQ(caught, "as it was thrown");
}

TEST(ForeignException, OfANumberPassesThroughUnchanged) {
    ActingScene scene([] { throw 42; });
    int caught = 0;
    testing::internal::CaptureStderr();
    try {
        scene.host.get(scene.info, "processIdentifier");
    } catch (int number) {
        caught = number;
    }
    expectUntouched(scene, testing::internal::GetCapturedStderr());
    EXPECT_EQ(caught, 42);
}

TEST(ForeignException, OfAnotherClassPassesThroughUnchanged) {
    ActingScene scene([&] { throw Plain{&scene}; });
    const void *caught = nullptr;
    testing::internal::CaptureStderr();
    try {
        scene.host.get(scene.info, "processIdentifier");
    } catch (const Plain &plain) {
        caught = plain.identity;
    }
    expectUntouched(scene, testing::internal::GetCapturedStderr());
    EXPECT_EQ(caught, &scene);
}

TEST(ForeignException, LeavesEveryKindOfOperation) {
    ActingScene scene([] { throw std::logic_error("out"); });
    for (const char *property : {"thermalState", "hostName", "processIdentifier", "systemUptime"}) {
        SCOPED_TRACE(property);
        EXPECT_THROW(scene.host.get(scene.info, property), std::logic_error);
    }
}

TEST(ForeignException, LeavesTheTrapWorking) {
    bool foreign = true;
    ActingScene scene([&] {
        if (foreign)
            throw 42;
        raiseNSException("N", "R");
    });
    EXPECT_THROW(scene.host.get(scene.info, "processIdentifier"), int);
    foreign = false;
    EXPECT_TRUE(scene.host.get(scene.info, "processIdentifier").raised());
    foreign = true;
    EXPECT_THROW(scene.host.get(scene.info, "processIdentifier"), int);
}
