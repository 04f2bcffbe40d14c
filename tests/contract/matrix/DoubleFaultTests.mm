// The matrix of double failures: in every operation, each call that the plug-in makes fails in
// turn, be it of a host service, of Core Foundation or a message, and from then on each release
// fails too, the host's and Core Foundation's. The first exception goes on, and what fails while it
// passes is dropped: to be seen is what is to be seen when these releases do nothing. Where the
// first failure was raised in the host, it does not pass any longer: then the release of what it
// was raised with fails by itself, and leaves the operation.

#include "ActingScene.h"
#include "CoreFoundationCalls.h"
#import "FaultMatrixScene.h"
#include "MessageSpy.h"

#include "host/services/Services.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <optional>
#include <ostream>
#include <sstream>
#include <stdexcept>

namespace {

using namespace matrix;

enum class Caller { service, message, coreFoundation };
constexpr Caller callers[] = {Caller::service, Caller::message, Caller::coreFoundation};
constexpr const char *nouns[] = {"host service", "message", "call of Core Foundation"};

/// What the releases do from the first failure on.
enum class Releases { doNothing, throwStandard, throwCocoa };

constexpr const char *releaseServices[] = {"REALUnlockObject", "REALUnlockString"};

void throwSecond(Releases releases) {
    if (releases == Releases::throwStandard)
        throw std::length_error("second");
    raiseNSException("Second", "failure");
}

std::string secondExceptionOf(Releases releases) {
    return releases == Releases::throwStandard ? "std::length_error: second"
                                               : "NSException Second: failure";
}

/// The n-th call of that kind, counted from 1, and what it throws.
struct FirstFailure {
    Caller caller;
    std::size_t n;
    Fault fault;
};

/// What came of them.
struct Seen {
    bool failed = false;      ///< the operation made that many calls
    std::size_t releases = 0; ///< that were asked for behind the first failure
    Aftermath after = {};
};

/// While it lives, the calls fail as told.
class Failures {
public:
    Failures(Scene &scene, FirstFailure first, Releases releases, Seen &seen)
        : scene_(scene), first_(first), releases_(releases), seen_(seen),
          messages_(scene.image, first.caller == Caller::message
                                     ? MessageSpy::Interruptions{{first.n, [this] { fail(); }}}
                                     : MessageSpy::Interruptions{}),
          coreFoundation_(scene.image, [this](std::string_view function) {
              countCall(Caller::coreFoundation);
              return function != "CFRelease" || release();
          }) {
        for (const std::string_view service : host::Services::names())
            services().fail(service, [this] { countCall(Caller::service); });
    }
    ~Failures() {
        for (const std::string_view service : host::Services::names())
            services().restore(service);
        if (seen_.failed)
            seen_.releases += releasesOfHost();
    }
    Failures(const Failures &) = delete;
    Failures &operator=(const Failures &) = delete;

private:
    host::Services &services() { return scene_.host.services(); }

    void countCall(Caller caller) {
        if (caller == first_.caller && !seen_.failed && ++calls_ == first_.n)
            fail();
    }
    void fail() {
        seen_.failed = true;
        releasesBefore_ = 0;
        releasesBefore_ = releasesOfHost();
        for (const char *service : releaseServices)
            if (releases_ == Releases::doNothing)
                services().answerNull(service);
            else
                services().fail(service, [this] { throwSecond(releases_); });
        throwOf(first_.fault);
    }
    /// Whether Core Foundation's release is to be run.
    bool release() {
        if (!seen_.failed)
            return true;
        ++seen_.releases;
        if (releases_ != Releases::doNothing)
            throwSecond(releases_);
        return false;
    }
    std::size_t releasesOfHost() {
        std::size_t calls = 0;
        for (const char *service : releaseServices)
            calls += services().calls(service);
        return calls - releasesBefore_;
    }

    Scene &scene_;
    FirstFailure first_;
    Releases releases_;
    Seen &seen_;
    std::size_t calls_ = 0;
    std::size_t releasesBefore_ = 0;
    MessageSpy messages_;
    CoreFoundationCalls coreFoundation_;
};

class DoubleFault : public testing::TestWithParam<const Operation *> {
protected:
    /// In this process.
    Seen run(FirstFailure first, Releases releases) {
        Seen seen;
        const Act failing{.run =
                              [&] {
                                  const Failures failures(scene, first, releases, seen);
                                  return act.run();
                              },
                          .state = act.state};
        seen.after = scene.run(failing, {}, Fault::none);
        return seen;
    }

    /// What is to be seen when the releases do nothing: how many there are, whether the first
    /// failure leaves the operation, whether something was raised in the host, and all of it.
    struct Expected {
        std::size_t releases;
        bool passes;
        bool raised;
        std::string text;
    };
    std::optional<Expected> expected(FirstFailure first) {
        std::istringstream text(inChild([&]() -> std::string {
            const Seen seen = run(first, Releases::doNothing);
            if (!seen.failed)
                return "-1";
            std::ostringstream line;
            line << seen.releases << ' ' << (seen.after.left == exceptionOf(first.fault)) << ' '
                 << !seen.after.raised.empty() << '\n'
                 << seen.after.text();
            return line.str();
        }));
        long releases = 0;
        Expected result{};
        if (!(text >> releases)) {
            ADD_FAILURE() << text.str();
            return std::nullopt;
        }
        if (releases < 0)
            return std::nullopt;
        text >> result.passes >> result.raised;
        result.releases = static_cast<std::size_t>(releases);
        result.text = text.str().substr(text.str().find('\n') + 1);
        return result;
    }

    /// One cell: "as expected", or what there was instead.
    std::string seenWith(FirstFailure first, Releases releases, const Expected &expected) {
        return inChild([&]() -> std::string {
            const Aftermath after = run(first, releases).after;
            const bool secondLeaves = after.left == secondExceptionOf(releases);
            if (expected.passes || !expected.raised ? after.text() == expected.text : secondLeaves)
                return "as expected";
            // Its own failure of a release that nothing made pass.
            if (!expected.passes && secondLeaves)
                return "as expected";
            return after.text() + "instead of\n" + expected.text;
        });
    }

    const Operation &operation = *GetParam();
    Scene scene{operation.hostVersion, operation.withInstance};
    Act act = operation.arrange(scene);
};

// A block's making answers to the one of C++ by itself.
constexpr Fault firstFaults[] = {Fault::cocoa, Fault::badAlloc};
constexpr Releases failingReleases[] = {Releases::throwCocoa, Releases::throwStandard};

} // namespace

TEST_P(DoubleFault, LetsTheFirstFailureGoOnAndNeverEndsTheProcess) {
    scene.host.clearTrace();
    int cells = 0;
    for (const Caller caller : callers)
        for (const Fault fault : firstFaults)
            for (std::size_t n = 1;; ++n) {
                const FirstFailure first{caller, n, fault};
                const auto wanted = expected(first);
                if (!wanted)
                    break;
                if (wanted->releases == 0)
                    continue; // nothing that could fail as well
                for (const Releases releases : failingReleases) {
                    ++cells;
                    EXPECT_EQ(seenWith(first, releases, *wanted), "as expected")
                        << operation.name << ", " << nouns[static_cast<std::size_t>(caller)] << ' '
                        << n << ' ' << nameOf(fault) << ", releases throwing "
                        << secondExceptionOf(releases);
                }
            }
    RecordProperty("cells", cells);
    std::cout << cells << " cells\n";
}

INSTANTIATE_TEST_SUITE_P(OfProperty, DoubleFault, testing::ValuesIn(each(propertyOperations())),
                         testNameOf);
INSTANTIATE_TEST_SUITE_P(OfMethod, DoubleFault, testing::ValuesIn(each(methodOperations())),
                         testNameOf);
INSTANTIATE_TEST_SUITE_P(OfLife, DoubleFault, testing::ValuesIn(each(lifeOperations())),
                         testNameOf);
INSTANTIATE_TEST_SUITE_P(OfValue, DoubleFault, testing::ValuesIn(each(valueOperations())),
                         testNameOf);
INSTANTIATE_TEST_SUITE_P(OfMemory, DoubleFault, testing::ValuesIn(each(memoryOperations())),
                         testNameOf);
INSTANTIATE_TEST_SUITE_P(OfCollection, DoubleFault, testing::ValuesIn(each(collectionOperations())),
                         testNameOf);
INSTANTIATE_TEST_SUITE_P(OfWrapper, DoubleFault, testing::ValuesIn(each(wrapperOperations())),
                         testNameOf);
INSTANTIATE_TEST_SUITE_P(OfText, DoubleFault, testing::ValuesIn(each(textOperations())),
                         testNameOf);
