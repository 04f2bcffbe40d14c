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
#include <ostream>

namespace {

using namespace matrix;

/// What comes of an exception in one of an operation's messages.
struct Handling {
    /// After an exception in the trap; by the messages sent, the failing one included.
    std::function<std::string(const Lines &sent)> fallback = nullptr; // none: there is no trap
    /// References that are not given back when an exception leaves the operation, or when the trap
    /// catches it.
    std::function<Lines(const Lines &sent, bool leaves)> held = [](const Lines &, bool) {
        return Lines{};
    };
    /// The first messages, to which the trap does not reach.
    std::size_t untrapped = 0;
    /// The message whose NSException is dropped, and what the operation gives then.
    std::string dropped = {};
    std::string instead = {};
};

struct Case {
    Operation operation;
    Handling handling;
};

void PrintTo(const Case &tested, std::ostream *out) {
    *out << tested.operation.name;
}

std::function<std::string(const Lines &)> always(std::string value) {
    return [value = std::move(value)](const Lines &) { return value; };
}

/// The elements that were inserted before the failing message asked for the next one.
std::string argumentsSoFar(const Lines &sent) {
    const auto requests = std::ranges::count(sent, "nextObject");
    return requests <= 1 ? "[]" : requests == 2 ? "[\"abc\"]" : "[\"abc\", \"def\"]";
}

Handling handlingOf(const std::string &operation) {
    const std::string name = operation.substr(0, operation.find(','));
    static const std::map<std::string, std::string> numbers = {
        {"thermalState", "-1"},
        {"processIdentifier", "0"},
        {"operatingSystem", "0"},
        {"activeProcessorCount", "0"},
        {"processorCount", "0"},
        {"argumentsCount", "0"},
        {"physicalMemory", "0"},
        {"systemUptime", "0"},
        {"automaticTerminationSupportEnabled", "false"}};
    if (const auto number = numbers.find(name); number != numbers.end())
        return {.fallback = always(number->second)};
    if (name == "arguments")
        return {.fallback = argumentsSoFar};
    // The instance is made behind the first two messages, and abandoned from then on.
    if (name == "beginActivity")
        return {.fallback = always("nil"), .held = [](const Lines &sent, bool) {
                    return sent.size() > 2 ? Lines{"NSProcessInfoActivityZKT"} : Lines{};
                }};
    // The activity's reason is its own until it is destroyed.
    if (name == "endActivity")
        return {.fallback = always("nil"),
                .held = [](const Lines &, bool) { return Lines{"String"}; }};
    if (name == "activity Destructor")
        return {.fallback = always("nil"), .held = [](const Lines &, bool leaves) {
                    return leaves ? Lines{"String"} : Lines{};
                }};
    // The family's support is set up outside of the trap: two questions, two requests.
    if (operation == "class constructor, first of all")
        return {};
    if (operation == "processInfo, first of all")
        return {.fallback = always("nil"), .untrapped = 4};
    return {.fallback = always("nil")};
}

Handling conversionOf(const std::string &name) {
    // The test's host object, which the plug-in was to hand on.
    if (name.ends_with("hooked") || name == "view that a sibling takes" ||
        name == "boxed host object")
        return {.held = [](const Lines &, bool) { return Lines{"Variant"}; }};
    if (name.starts_with("Core Foundation object"))
        return {.dropped = "_cfTypeID", .instead = "NSObjectZKT(the object), retained 1"};
    return {};
}

std::vector<Case> everyCase() {
    std::vector<Case> cases;
    for (const Operations *operations :
         {&propertyOperations(), &methodOperations(), &lifeOperations()})
        for (const Operation &operation : *operations)
            cases.push_back({operation, handlingOf(operation.name)});
    for (const Operations *operations :
         {&valueOperations(), &memoryOperations(), &collectionOperations(), &wrapperOperations(),
          &textOperations()})
        for (const Operation &operation : *operations)
            cases.push_back({operation, conversionOf(operation.name)});
    return cases;
}

bool reportsException(const std::string &selector) {
    return selector == "name" || selector == "reason" || selector == "userInfo" ||
           selector == "NewNSExceptionZKT:";
}

constexpr Fault kinds[] = {Fault::cocoa, Fault::outOfRange};

class MessageMatrix : public testing::TestWithParam<Case> {
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
            if (visible(after).text() != visible(tested.operation.present).text())
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
        const Aftermath &normal = tested.operation.present;
        const Fault fault = failing.rbegin()->second;
        const bool reporting = !normal.logged.empty() && reportsException(last);
        if (failing.size() > 1 || reporting) { // the report itself is left
            Aftermath after{.left = exceptionOf(fault)};
            if (last == "NewNSExceptionZKT:")
                after.logged = failing.size() > 1 ? Lines{"Fault: raised"} : normal.logged;
            return after.holding(tested.handling.held(sent, true));
        }
        if (fault == Fault::cocoa && sent.back() == tested.handling.dropped)
            return gives(tested.handling.instead);
        if (fault == Fault::cocoa && tested.handling.fallback &&
            sent.size() > tested.handling.untrapped)
            return gives(tested.handling.fallback(sent))
                .logging("Fault: raised")
                .raising("NSExceptionZKT: Fault: raised")
                .holding(tested.handling.held(sent, false));
        return Aftermath{.left = exceptionOf(fault)}.holding(tested.handling.held(sent, true));
    }

    bool isTrapped(std::size_t message) {
        return !inChild([&]() -> std::string {
                    interrupted({{message, Fault::cocoa}});
                    return MessageSpy::sent().size() == message + 4 ? "trapped" : "";
                }).empty();
    }

    const Case &tested = GetParam();
    Scene scene{tested.operation.hostVersion, tested.operation.withInstance};
    Act act = tested.operation.arrange(scene);
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
            << tested.operation.name << ", message " << failing.begin()->first << ' '
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

INSTANTIATE_TEST_SUITE_P(Of, MessageMatrix, testing::ValuesIn(everyCase()),
                         [](const auto &tested) { return testNameOf(tested.param.operation); });
