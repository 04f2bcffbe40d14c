#include "IsolatedRun.h"

#include "JUnitReport.h"
#include "System.h"

#include "host/crash/CrashHandler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <regex>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Names = std::vector<std::string>;

[[noreturn]] void fail(const char *what) {
    throw std::system_error(errno, std::generic_category(), what);
}

Names allTests() {
    Names names;
    const testing::UnitTest &tests = *testing::UnitTest::GetInstance();
    for (int i = 0; i < tests.total_test_suite_count(); ++i) {
        const testing::TestSuite &suite = *tests.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j)
            names.push_back(std::string(suite.name()) + '.' + suite.GetTestInfo(j)->name());
    }
    return names;
}

Names linesOf(const std::filesystem::path &file) {
    std::ifstream stream(file);
    if (!stream)
        throw std::system_error(errno, std::generic_category(), file.string());
    Names lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::regex expression(const char *option, const std::string &text) {
    try {
        return std::regex(text);
    } catch (const std::regex_error &error) {
        throw std::invalid_argument(std::string(option) + ' ' + text +
                                    ": is no regular expression: " + error.what());
    }
}

struct Selection {
    Names names;
    std::size_t leftOut = 0; ///< by --except
};

Selection testsOf(const IsolatedRun &run) {
    Selection selection{.names = run.order.empty() ? allTests() : linesOf(run.order)};
    const std::regex wanted = expression("--matching", run.matching);
    const std::regex unwanted = expression("--except", run.except);
    std::erase_if(selection.names,
                  [&](const std::string &name) { return !std::regex_search(name, wanted); });
    if (!run.except.empty())
        selection.leftOut = std::erase_if(selection.names, [&](const std::string &name) {
            return std::regex_search(name, unwanted);
        });
    return selection;
}

struct Child {
    std::string test;
    int output = -1; ///< a file in memory: a pipe would fill while the test runs
    Clock::time_point start = {};
};

/// Gives 0 in the new process, in which the test is to be run.
pid_t start(Child &child, unsigned seconds) {
    child.output = anonymousFile("output");
    if (child.output < 0)
        fail("a file for the output");
    child.start = Clock::now();
    std::fflush(nullptr);
    const pid_t process = fork();
    if (process < 0)
        fail("fork");
    if (process > 0)
        return process;
    setpgid(0, 0); // to be killed together with processes of its own
    endWithParent();
    alarm(seconds);
    dup2(child.output, STDOUT_FILENO);
    dup2(child.output, STDERR_FILENO);
    return 0;
}

std::string outputOf(const Child &child) {
    lseek(child.output, 0, SEEK_SET);
    std::string text;
    std::array<char, 4096> buffer;
    for (ssize_t count = 0; (count = read(child.output, buffer.data(), buffer.size())) > 0;)
        text.append(buffer.data(), static_cast<std::size_t>(count));
    return text;
}

std::string endOf(int status, unsigned seconds) {
    if (WIFSIGNALED(status))
        return WTERMSIG(status) == SIGALRM ? "did not end within " + std::to_string(seconds) + " s"
                                           : "died of signal " + std::to_string(WTERMSIG(status));
    return "ended with status " + std::to_string(WEXITSTATUS(status));
}

/// What has come of the tests so far.
class Tally {
public:
    Tally(const IsolatedRun &run, const Selection &selection)
        : run_(run), tests_(selection.names.size()), leftOut_(selection.leftOut) {
        if (!run.durations.empty())
            durations_.open(run.durations);
    }

    [[nodiscard]] bool goesOn() const { return failed_ == 0 || !run_.stopAtFirstFailure; }

    void add(const Child &child, int status) {
        const std::string output = outputOf(child);
        const std::chrono::duration<double> duration = Clock::now() - child.start;
        durations_ << duration.count() << ' ' << child.test
                   << std::endl; // forks copy what is buffered
        if (status != 0) {
            ++failed_;
            const std::string end = endOf(status, run_.secondsPerTest);
            junit_.addFailed(child.test, duration.count(), end, output);
            std::cout << output << "FAILED " << child.test << ' ' << end << std::endl;
        } else if (output.find("[  SKIPPED ]") != std::string::npos) {
            ++skipped_;
            junit_.addSkipped(child.test, duration.count());
            std::cout << "skipped " << child.test << std::endl;
        } else {
            ++passed_;
            junit_.addPassed(child.test, duration.count());
        }
        static const std::regex cells("(^|\n)([0-9]+) cells\n");
        for (std::sregex_iterator each(output.begin(), output.end(), cells), end; each != end;
             ++each)
            cells_ += std::stoul((*each)[2]);
        static const bool live = isatty(STDERR_FILENO) == 1;
        if (live)
            std::cerr << '\r' << passed_ + failed_ + skipped_ << " of " << tests_ << std::flush;
    }

    int report(const std::string &label) const {
        const std::chrono::duration<double> duration = Clock::now() - start_;
        std::cout << label << ": " << passed_ << " passed, " << failed_ << " failed, " << skipped_
                  << " skipped";
        if (leftOut_ > 0)
            std::cout << ", " << leftOut_ << " left out by --except " << run_.except;
        if (cells_ > 0)
            std::cout << ", " << cells_ << " cells of the matrices";
        std::cout << ", in " << static_cast<int>(duration.count()) << " s" << std::endl;
        if (!run_.junit.empty())
            junit_.write(run_.junit, label, duration.count());
        return failed_ == 0 && passed_ + skipped_ > 0 ? 0 : 1;
    }

private:
    const IsolatedRun &run_;
    std::size_t tests_;
    std::size_t leftOut_;
    Clock::time_point start_ = Clock::now();
    std::ofstream durations_;
    JUnitReport junit_;
    std::size_t passed_ = 0, failed_ = 0, skipped_ = 0, cells_ = 0;
};

/// Waits for one of the tests to end and counts it in.
void await(std::map<pid_t, Child> &running, Tally &tally) {
    int status = 0;
    const pid_t process = waitpid(-1, &status, 0);
    if (process < 0)
        fail("waitpid");
    const auto ended = running.extract(process);
    if (ended.empty())
        return;
    if (status != 0)
        kill(-process, SIGKILL);
    tally.add(ended.mapped(), status);
    close(ended.mapped().output);
}

int runOne(const std::string &test) {
    GTEST_FLAG_SET(filter, test);
    return RUN_ALL_TESTS();
}

} // namespace

void IsolatedRun::addOptionsTo(CLI::App &app) {
    app.add_flag("--isolate", wanted, "each test in a process of its own");
    app.add_option("--jobs", jobs, "isolated tests at a time (default: one a processor)");
    app.add_option("--seconds-per-test", secondsPerTest, "time limit of an isolated test");
    app.add_option("--matching", matching, "only isolated tests whose name matches this regex");
    app.add_option("--except", except, "no isolated tests whose name matches this regex");
    app.add_option("--junit", junit, "file to write the isolated tests' results to, as XML");
    app.add_option("--order", order, "file with the names of the tests to run isolated");
    app.add_option("--durations", durations, "file to write the isolated tests' seconds to");
    app.add_flag("--stop-at-first-failure", stopAtFirstFailure);
}

int runTests(const IsolatedRun &run, const std::string &label) {
    // A death test may start the program again, with these options, to run itself alone.
    if (!GTEST_FLAG_GET(internal_run_death_test).empty())
        return RUN_ALL_TESTS();
    // A crash loses what waits to be written.
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    static std::string program;
    program = label;
    crash::handleCrashes({.program = program.c_str()});
    if (!run.wanted)
        return RUN_ALL_TESTS();

    const Selection selection = testsOf(run);
    const std::size_t jobs = run.jobs > 0 ? run.jobs : std::thread::hardware_concurrency();
    Tally tally(run, selection);
    std::map<pid_t, Child> running;
    for (const std::string &test : selection.names) {
        Child child{.test = test};
        const pid_t process = start(child, run.secondsPerTest);
        if (process == 0)
            endNow(runOne(test));
        running.emplace(process, std::move(child));
        if (running.size() == jobs)
            await(running, tally);
        if (!tally.goesOn())
            break;
    }
    if (!tally.goesOn())
        for (const auto &[process, child] : running)
            kill(-process, SIGKILL);
    else
        while (!running.empty())
            await(running, tally);
    return tally.report(label);
}
