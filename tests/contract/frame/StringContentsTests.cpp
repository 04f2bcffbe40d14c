// A string's bytes come from two places that are bound apart: a service, and a global method of the
// host that another service finds. What was bound stays bound, so the tests that bind nothing come
// first; CTest runs each in a process of its own anyway.

#include "frame/HostServices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using testing::ElementsAre;

namespace {

constexpr char bytes[] = "some bytes";
const auto string = reinterpret_cast<REALstringStruct *>(0x8000000000000001);

bool offersCString, offersLoader, offersLength;
std::vector<std::string> events;

const char *cString(REALstringStruct *asked) {
    events.emplace_back("StringGetCString");
    return asked == string ? bytes : nullptr;
}

std::int64_t lengthInBytes(REALstringStruct *asked) {
    events.emplace_back("LenB");
    return asked == string ? 0x123456789ABCDEF0 : -1;
}

void *loadGlobalMethod(void *module, const char *declaration) {
    events.push_back(std::string("load ") + declaration +
                     (module == nullptr ? "" : " of a module"));
    return offersLength ? reinterpret_cast<void *>(lengthInBytes) : nullptr;
}

void *resolve(const char *name) {
    const std::string service = name;
    events.push_back("find " + service);
    if (service == "StringGetCString" && offersCString)
        return reinterpret_cast<void *>(cString);
    if (service == "REALLoadGlobalMethod" && offersLoader)
        return reinterpret_cast<void *>(loadGlobalMethod);
    return nullptr;
}

class StringContentsOfAHost : public testing::Test {
protected:
    void SetUp() override {
        hostResolver = resolve;
        offersCString = offersLoader = offersLength = false;
        events.clear();
        REALGetStringCString = unboundCString;
        REALLoadFrameworkMethod = unboundLoader;
    }

private:
    static inline const auto unboundCString = REALGetStringCString;
    static inline const auto unboundLoader = REALLoadFrameworkMethod;
};

constexpr auto load = "load LenB( s as string ) as integer";

} // namespace

TEST_F(StringContentsOfAHost, AreEmptyWhenTheHostOffersNothing) {
    const StringContents contents = REALGetStringContents(string);
    EXPECT_EQ(contents.bytes, nullptr);
    EXPECT_EQ(contents.length, 0);
    EXPECT_THAT(events, ElementsAre("find StringGetCString", "find REALLoadGlobalMethod"));
}

TEST_F(StringContentsOfAHost, AreLookedUpAgainWhileTheHostOffersNothing) {
    REALGetStringContents(string);
    REALGetStringContents(string);
    EXPECT_THAT(events, ElementsAre("find StringGetCString", "find REALLoadGlobalMethod",
                                    "find StringGetCString", "find REALLoadGlobalMethod"));
}

TEST_F(StringContentsOfAHost, HaveBytesAndNoLengthWithoutLenB) {
    offersCString = offersLoader = true;
    const StringContents contents = REALGetStringContents(string);
    EXPECT_EQ(contents.bytes, bytes);
    EXPECT_EQ(contents.length, 0);
}

TEST_F(StringContentsOfAHost, LookAMissingLenBUpAgain) {
    offersCString = offersLoader = true;
    REALGetStringContents(string);
    REALGetStringContents(string);
    EXPECT_THAT(events, ElementsAre("find StringGetCString", "StringGetCString",
                                    "find REALLoadGlobalMethod", load, "StringGetCString", load));
}

// Binds LenB for the rest of the process.
TEST_F(StringContentsOfAHost, BindLenBOnceItAppears) {
    offersLoader = true;
    REALGetStringContents(string);
    offersCString = offersLength = true;
    events.clear();

    const StringContents first = REALGetStringContents(string);
    const StringContents second = REALGetStringContents(string);
    EXPECT_EQ(first.bytes, bytes);
    EXPECT_EQ(first.length, 0x123456789ABCDEF0);
    EXPECT_EQ(second.bytes, bytes);
    EXPECT_EQ(second.length, 0x123456789ABCDEF0);
    EXPECT_THAT(events, ElementsAre("find StringGetCString", "StringGetCString", load, "LenB",
                                    "StringGetCString", "LenB"));
}
