// How far two names are from each other.

#include "host/language/EditDistance.h"

#include <gtest/gtest.h>

namespace {

using host::editDistance;

TEST(EditDistance, CountsWhatHasToChange) {
    EXPECT_EQ(editDistance("", ""), 0U);
    EXPECT_EQ(editDistance("hostname", "hostname"), 0U);
    EXPECT_EQ(editDistance("hostname", "hosname"), 1U) << "one left out";
    EXPECT_EQ(editDistance("hosname", "hostname"), 1U) << "one too many";
    EXPECT_EQ(editDistance("hostname", "hastname"), 1U) << "one replaced";
    EXPECT_EQ(editDistance("ab", "ba"), 2U) << "exchanged";
    EXPECT_EQ(editDistance("", "abc"), 3U);
    EXPECT_EQ(editDistance("abc", ""), 3U);
    EXPECT_EQ(editDistance("kitten", "sitting"), 3U);
}

} // namespace
