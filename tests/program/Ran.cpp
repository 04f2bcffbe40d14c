#include "Ran.h"

#include "host/Host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace host;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

std::vector<std::string> asTexts(const std::vector<program::Diagnostic> &errors) {
    std::vector<std::string> texts;
    for (const auto &[at, text] : errors)
        texts.push_back(std::to_string(at.line) + ':' + std::to_string(at.column) + ": " + text);
    return texts;
}

} // namespace

Ran runProgram(std::string_view text) {
    Ran result;
    Host host({.tracing = false, .memoryBlockLimit = 1 << 24});
    {
        program::Session session(host, program::Form::file, {.print = [&](std::string_view line) {
                                     result.printed += line;
                                     result.liveObjects.push_back(host.account().liveObjects);
                                 }});
        result.errors = asTexts(session.load(text).errors);
        if (!result.errors.empty())
            return result;
        result.uncaught = session.run();
        const auto atTheEnd = session.finish();
        if (!result.uncaught)
            result.uncaught = atTheEnd;
    }
    host.shutDown();
    result.circles = program::circles();
    result.violations = host.violations();
    result.account = host.account();
    return result;
}

void expectPrints(std::string_view text, std::string_view printed) {
    SCOPED_TRACE(text);
    const Ran ran = runProgram(text);
    EXPECT_THAT(ran.errors, IsEmpty());
    EXPECT_EQ(ran.printed, printed);
    EXPECT_FALSE(ran.uncaught) << ran.uncaught->exception.className;
    EXPECT_THAT(ran.violations, IsEmpty());
    EXPECT_EQ(ran.account.liveObjects, 0U);
    EXPECT_EQ(ran.account.liveStrings, 0U);
}

void expectErrors(std::string_view text, const std::vector<std::string> &errors) {
    SCOPED_TRACE(text);
    const Ran ran = runProgram(text);
    EXPECT_THAT(ran.errors, ElementsAreArray(errors));
    EXPECT_EQ(ran.printed, "");
}

void expectUncaught(std::string_view text, std::string_view exception) {
    SCOPED_TRACE(text);
    const Ran ran = runProgram(text);
    EXPECT_THAT(ran.errors, IsEmpty());
    ASSERT_TRUE(ran.uncaught);
    EXPECT_EQ(ran.uncaught->exception.className + ": " +
                  ran.uncaught->exception.message.value_or(""),
              exception);
    EXPECT_THAT(ran.violations, IsEmpty());
    EXPECT_EQ(ran.account.liveObjects, 0U);
}
