// The message matrix: in every operation, each message that the plug-in sends raises an NSException
// in turn, and throws a C++ exception. Inside the trap an NSException is logged and raised in the
// host, and the operation gives its fallback; a second exception on that way leaves the operation.
// Outside of the trap, and of any other kind, exceptions leave it.

#import "FaultMatrixScene.h"
#include "MessageSpy.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iostream>
#include <map>

namespace {

using namespace matrix;

bool reportsException(const std::string &selector) {
    return selector == "name" || selector == "reason" || selector == "userInfo" ||
           selector == "NewNSExceptionZKT:";
}

constexpr Fault kinds[] = {Fault::cocoa, Fault::outOfRange};

class MessageMatrix : public testing::TestWithParam<const Operation *> {
protected:
    /// The operation with exceptions in the place of some of its messages: nothing if it does not
    /// send that many, else the difference from what is expected, or "as expected".
    std::string seenWith(const std::map<std::size_t, Fault> &failing) {
        return inChild([&]() -> std::string {
            const Aftermath after = interrupted(failing);
            Lines sent = MessageSpy::sent();
            if (sent.size() < failing.rbegin()->first)
                return {};
            const auto first = static_cast<std::ptrdiff_t>(failing.begin()->first);
            const Lines upTo(sent.begin(), sent.begin() + first);
            const std::string &last = failing.size() > 1 ? sent.back() : upTo.back();
            const std::string wanted = expected(upTo, last, failing).text();
            const std::string seen = visible(after).text();
            return seen == wanted
                       ? "as expected"
                       : "at " + upTo.back() + " gave\n" + seen + "instead of\n" + wanted;
        });
    }

    Aftermath interrupted(const std::map<std::size_t, Fault> &failing) {
        MessageSpy::Interruptions interruptions;
        for (const auto &[message, fault] : failing)
            interruptions[message] = [fault = fault] { throwOf(fault); };
        const Act spied{[&] {
            const MessageSpy spy(scene.image, interruptions);
            return act.run();
        }};
        return scene.run(spied, {}, Fault::none);
    }

    /// How many messages the operation sends when none of them fails; fails itself when it does not
    /// give what it should.
    std::size_t messages() {
        return std::stoul(inChild([&] {
            const Aftermath after = interrupted({});
            if (visible(after).text() != visible(tested.present).text())
                return "999, and gave\n" + after.text();
            return std::to_string(MessageSpy::sent().size());
        }));
    }

    /// Messages to the test's objects and states differ with every step: other tests' business.
    static Aftermath visible(Aftermath after) {
        after.effects.clear();
        after.state.clear();
        return after;
    }

    [[nodiscard]] Aftermath expected(const Lines &sent, const std::string &last,
                                     const std::map<std::size_t, Fault> &failing) const {
        const Aftermath &normal = tested.present;
        const Fault fault = failing.rbegin()->second;
        const bool reporting = !normal.logged.empty() && reportsException(last);
        if (failing.size() > 1 || reporting) { // the report itself is left
            Aftermath after{.left = exceptionOf(fault)};
            if (last == "NewNSExceptionZKT:")
                after.logged = failing.size() > 1 ? Lines{"Fault: raised"} : normal.logged;
            return after.holding(tested.handling.kept(sent, true));
        }
        if (fault == Fault::cocoa && sent.back() == tested.handling.dropped)
            return gives(tested.handling.instead);
        if (fault == Fault::cocoa && tested.handling.fallback &&
            sent.size() > tested.handling.untrapped)
            return gives(tested.handling.fallback(sent))
                .logging("Fault: raised")
                .raising("NSExceptionZKT: Fault: raised")
                .holding(tested.handling.kept(sent, false));
        return Aftermath{.left = exceptionOf(fault)}.holding(tested.handling.kept(sent, true));
    }

    bool isTrapped(std::size_t message) {
        return !inChild([&]() -> std::string {
                    interrupted({{message, Fault::cocoa}});
                    return MessageSpy::sent().size() == message + 4 ? "trapped" : "";
                }).empty();
    }

    const Operation &tested = *GetParam();
    Scene scene{tested.hostVersion, tested.withInstance};
    Act act = tested.arrange(scene);
};

constexpr std::size_t messagesOfReport = 4;

} // namespace

TEST_P(MessageMatrix, ShowsOfEveryMessageWhatBecomesOfItsException) {
    scene.host.clearTrace();
    int cells = 0;
    const auto check = [&](const std::map<std::size_t, Fault> &failing) {
        const std::string seen = seenWith(failing);
        if (seen.empty())
            return false;
        ++cells;
        EXPECT_EQ(seen, "as expected")
            << tested.name << ", message " << failing.begin()->first << ' '
            << nameOf(failing.begin()->second)
            << (failing.size() > 1
                    ? ", then the report's message " +
                          std::to_string(failing.rbegin()->first - failing.begin()->first) + ' ' +
                          std::string(nameOf(failing.rbegin()->second))
                    : "");
        return true;
    };
    const std::size_t count = messages();
    for (std::size_t message = 1; message <= count; ++message) {
        for (const Fault kind : kinds)
            EXPECT_TRUE(check({{message, kind}})) << "message " << message << " of " << count;
        if (!tested.handling.fallback || !isTrapped(message))
            continue;
        for (std::size_t step = 1; step <= messagesOfReport; ++step)
            for (const Fault kind : kinds)
                EXPECT_TRUE(check({{message, Fault::cocoa}, {message + step, kind}}));
    }
    RecordProperty("cells", cells);
    std::cout << cells << " cells\n";
}

INSTANTIATE_TEST_SUITE_P(Of, MessageMatrix, testing::ValuesIn(each(everyOperation())), testNameOf);
