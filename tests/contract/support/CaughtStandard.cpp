#include "Caught.h"

#include "host/family/Siblings.h"

#include <gtest/gtest.h>

#include <exception>

std::optional<std::string> standardExceptionFrom(const std::function<void()> &body) {
    try {
        body();
    } catch (const std::exception &exception) {
        return exception.what();
    }
    return std::nullopt;
}

void expectRaised(const host::Outcome &outcome, std::string_view name, std::string_view reason) {
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "NSExceptionZKT");
    EXPECT_EQ(outcome.exception->cocoaName, name);
    EXPECT_EQ(outcome.exception->cocoaReason, reason);
    EXPECT_EQ(host::siblings::makeCount(), 1u);
}
