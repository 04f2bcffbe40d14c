// Text for terminals.

#include "host/zkthost/Columns.h"

#include <gtest/gtest.h>

using zkthost::displayWidth;
using zkthost::padded;
using zkthost::printable;

TEST(Columns, CountWhatATerminalTakes) {
    EXPECT_EQ(displayWidth(""), 0u);
    EXPECT_EQ(displayWidth("plain"), 5u);
    EXPECT_EQ(displayWidth("\xC3\x84\xC3\x96\xC3\x9C"), 3u);             // ÄÖÜ
    EXPECT_EQ(displayWidth("\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E"), 6u); // 日本語
    EXPECT_EQ(displayWidth("\xEF\xBC\xA1"), 2u);                         // a wide A
    EXPECT_EQ(displayWidth("e\xCC\x81"), 1u);                            // e and accent
    EXPECT_EQ(displayWidth("\xF0\x9F\x98\x80"), 2u);                     // a picture
    EXPECT_EQ(displayWidth("\xFF\xFE"), 2u) << "a replacement for each wrong byte";
}

TEST(Columns, ArePaddedByWidth) {
    EXPECT_EQ(padded("ab", 4), "ab  ");
    EXPECT_EQ(padded("abcde", 4), "abcde");
    EXPECT_EQ(padded("\xC3\x84", 3), "\xC3\x84  ");
    EXPECT_EQ(padded("\xE6\x97\xA5", 3), "\xE6\x97\xA5 ");
}

TEST(Columns, HoldOnlyWhatStaysInThem) {
    EXPECT_EQ(printable("a\tb\nc\033[1m"), "a b c [1m");
    EXPECT_EQ(printable("\x7F|\xC2\x80|\xC2\x9F|\xC2\xA0"), " | | |\xC2\xA0");
    EXPECT_EQ(printable("\xE2\x80\xA8|\xE2\x80\xA9"), " | ");
    EXPECT_EQ(printable("Gr\xC3\xBC\xC3\x9F"
                        "e \xF0\x9F\x98\x80"),
              "Gr\xC3\xBC\xC3\x9F"
              "e \xF0\x9F\x98\x80");
    EXPECT_EQ(printable("\xE9."), "\xEF\xBF\xBD.");
    EXPECT_EQ(printable(std::string_view("\0", 1)), " ");
}
