// A test that leaks, for the tests of the runner.

#include <gtest/gtest.h>

TEST(Leaking, ABlock) {
    static volatile std::size_t size = 77;
    EXPECT_NE(new char[size], nullptr);
}
