#pragma once

// The fault matrix: every operation that the host can see, crossed with every host service in every
// state. Each run has a process of its own, in which no service is bound yet.
//
// What a run has to show is derived from a table. An operation's row names a service that it uses
// and what comes of it when the service is silent (missing, or answering null, zero or false) and
// when it throws. A service without a row changes nothing, whatever its state: these services share
// a run for each state, and the normal run shows that they are never asked for.
//
// References that an operation holds are given back when an exception passes, unless the instance
// is one that is abandoned on purpose, or the service that gives references back is the faulty one.

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace matrix {

enum class Fault { none, missing, null, badAlloc, outOfRange, lengthError, number, cocoa };

/// The states to try: all of them, or one of each kind once tryFewFaults was called. Which C++
/// exception passes makes no difference to memory.
std::span<const Fault> faults();
void tryFewFaults();

std::string_view nameOf(Fault fault);
/// Throws what a service in that state throws; returns for the states that do not.
void throwOf(Fault fault);
/// The same exception as leaving() names it.
std::string exceptionOf(Fault fault);

using Lines = std::vector<std::string>;

/// What is to be seen after an operation.
struct Aftermath {
    std::string value = {};    ///< of the result; "" where there is none
    Lines raised = {};         ///< host exceptions in order: "Class: message"
    Lines logged = {};         ///< the trap's log lines: "Name: reason"
    Lines held = {};           ///< classes of the references that the plug-in has not given back;
                               ///< of activities their fields too
    Lines effects = {};        ///< messages to the test's own objects
    std::string state = {};    ///< of the instance
    std::string left = {};     ///< the exception that left the operation
    Lines hostComplaints = {}; ///< of calls that the host takes for wrong

    [[nodiscard]] Aftermath giving(std::string newValue) const;
    [[nodiscard]] Aftermath raising(std::string exception) const;
    [[nodiscard]] Aftermath logging(std::string line) const;
    [[nodiscard]] Aftermath holding(Lines references) const;
    [[nodiscard]] Aftermath doing(Lines messages) const;
    [[nodiscard]] Aftermath in(std::string newState) const;
    [[nodiscard]] Aftermath leftBy(std::string exception) const;
    [[nodiscard]] Aftermath complaining(std::string complaint) const;

    /// Without what concerns more than one run: log, messages, references, the host's complaints.
    [[nodiscard]] Aftermath ofOneRun() const;
    /// For comparison and for messages.
    [[nodiscard]] std::string text() const;
};

Aftermath gives(std::string value);

/// What comes of an exception of that kind.
using Rule = std::function<Aftermath(Fault)>;

/// Every exception leaves the operation.
Rule passing(Aftermath after);
/// Cocoa's exceptions are logged and raised in the host, all others leave the operation.
Rule trapped(Aftermath caught, Aftermath passed);
/// The same where the host cannot release the exception that was just raised: the trap's own
/// failure leaves the operation.
Rule trappedUnreleased(Aftermath caught, Aftermath passed);
/// Every exception is raised in the host as one of its own classes, before anything else is.
Rule mapped(Aftermath caught);
/// std::bad_alloc is raised in the host with that message, all others leave the operation.
Rule outOfMemory(const std::string &message, Aftermath caught, Aftermath passed);

struct Row {
    std::string service;
    Aftermath silent;
    Rule thrown;
    /// The service fails the first time only: what reports the failure needs it as well.
    bool once = false;
    /// The service is asked in the first run only; if it is silent then, that is remembered.
    bool remembered = false;
};
using Rows = std::vector<Row>;

/// All of them, one behind the other.
template <class... Parts>
Rows inOrder(const Parts &...parts) {
    Rows all;
    (all.insert(all.end(), parts.begin(), parts.end()), ...);
    return all;
}

/// A string built from text: what is to be seen without it, and with it in no declared encoding.
Rows stringBuilding(const Aftermath &without, const Aftermath &undeclared);
/// The report of an exception that the plug-in raises itself; after is what is to be seen besides.
Rows raisingInHost(const std::string &className, const std::string &message,
                   const Aftermath &after);
/// The report of the NSException "Trouble" by the trap.
Rows trapReport(const Aftermath &after);
Aftermath troubled(const Aftermath &after);

struct Scene;

/// An operation, ready to be run in a cell.
struct Act {
    std::function<std::string()> run;             ///< gives the result as text
    std::function<std::string()> state = nullptr; ///< the instance's, afterwards
};

/// What comes of an exception in one of the messages that an operation sends.
struct Handling {
    /// The result after an NSException in the trap, by the messages sent, the failing one included.
    std::function<std::string(const Lines &sent)> fallback = nullptr; // none: there is no trap
    /// References that are not given back when an exception leaves the operation, or when the trap
    /// catches it.
    std::function<Lines(const Lines &sent, bool leaves)> kept = [](const Lines &, bool) {
        return Lines{};
    };
    /// The first messages, to which the trap does not reach.
    std::size_t untrapped = 0;
    /// The message whose NSException is dropped, and what the operation gives then.
    std::string dropped = {};
    std::string instead = {};
};

std::function<std::string(const Lines &)> always(std::string value);
/// These, whatever happens.
std::function<Lines(const Lines &, bool)> keeping(Lines references);
/// All messages are sent in the trap.
Handling trapping(std::string fallback);

struct Operation {
    std::string name;
    std::function<Act(Scene &)> arrange;
    Aftermath present; ///< with all services as they should be
    Rows rows = {};    ///< of all services used, in the order of their first use
    std::optional<double> hostVersion = 2013.04;
    bool withInstance = true; ///< off: nothing of the plug-in ran before
    Handling handling = {};
    std::vector<std::size_t> allocations = {}; ///< that the plug-in asks for itself, in bytes
    Aftermath unallocated = {};                ///< what is to be seen when one is refused
};
using Operations = std::vector<Operation>;

/// Operations as GoogleTest's parameters, which it copies, and destroys at the end of each test's
/// process. The operations stay where they are.
std::vector<const Operation *> each(const Operations &operations);

inline void PrintTo(const Operation *operation, std::ostream *out) {
    *out << operation->name;
}

/// For GoogleTest: the name's words together, each with a capital.
std::string testNameOf(const testing::TestParamInfo<const Operation *> &tested);

// Every operation, by kind.
const Operations &propertyOperations();
const Operations &methodOperations();
const Operations &lifeOperations();
const Operations &valueOperations();
const Operations &memoryOperations();
const Operations &collectionOperations();
const Operations &wrapperOperations();
const Operations &textOperations();
/// All of them.
const Operations &everyOperation();

/// The exception that leaves the body, as text; "" when it returns.
std::string leaving(const std::function<void()> &body);

/// What the body gives in a process of its own: a copy of this one, of which nothing stays behind.
/// "died of signal 11" and what it wrote to stderr when it does not come to its end.
std::string inChild(const std::function<std::string()> &body);

} // namespace matrix
