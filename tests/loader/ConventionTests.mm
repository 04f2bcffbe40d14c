#import "tests/loader/HostClasses.h"

#include "tests/loader/TestImages.h"

#include <cstdlib>
#include <string>

namespace {

/// What each function of the image that formats makes of its arguments.
constexpr const char *everyKind = "-1 two 3 4 5 6 7 8 9 10|1.25 2 3.5 4 5 6 7 8 9 10";

class Conventions : public testing::TestWithParam<const char *> {
protected:
    Conventions() : pool_([NSAutoreleasePool new]), image_(GetParam(), "Conventions") {}
    ~Conventions() override { [pool_ release]; }

    template <class Function>
    Function *function(const char *name) const {
        return image_.function<Function>(name);
    }

    NSAutoreleasePool *pool_;
    LoadedImage image_;
};
INSTANTIATE_TEST_SUITE_P(, Conventions, testing::ValuesIn(allVariants), variantName);

TEST_P(Conventions, variableArgumentsArrive) {
    char buffer[200] = {};
    EXPECT_EQ(function<int(char *, unsigned long)>("formats")(buffer, sizeof buffer),
              std::string(everyKind).size());
    EXPECT_STREQ(buffer, everyKind);
    EXPECT_EQ(function<int(char *, unsigned long)>("formats")(buffer, 7),
              std::string(everyKind).size());
    EXPECT_STREQ(buffer, "-1 two");
    for (const char *name : {"formatsWithoutASize", "formatsList", "formatsListWithoutASize"}) {
        buffer[0] = '\0';
        EXPECT_EQ(function<int(char *)>(name)(buffer), std::string(everyKind).size()) << name;
        EXPECT_STREQ(buffer, everyKind) << name;
    }
    for (const char *name : {"formatsToNewMemory", "formatsListToNewMemory"}) {
        char *text = nullptr;
        EXPECT_EQ(function<int(char **)>(name)(&text), std::string(everyKind).size()) << name;
        EXPECT_STREQ(text, everyKind) << name;
        std::free(text);
    }
}

TEST_P(Conventions, variableArgumentsArePrinted) {
    for (const char *name : {"prints", "printsList"}) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(function<int()>(name)(), std::string(everyKind).size()) << name;
        std::fflush(stdout);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), everyKind) << name;
    }
}

std::string logged; // NOLINT(cert-err58-cpp)

void noteLogLine(NSString *line) {
    logged = [line UTF8String];
}

TEST_P(Conventions, variableArgumentsAreLogged) {
    _NSLog_printf_handler = noteLogLine;
    function<void(id)>("logs")(@"two");
    EXPECT_NE(logged.find(" 1 two 2.50 four 5 6 7 8 9 10"), std::string::npos) << logged;
}

TEST_P(Conventions, smallAnswersAreWidened) {
    TestAnswerer *const target = [[[TestAnswerer alloc] init] autorelease];
    const auto answer = [&](const char *name, int value) {
        return function<int(id, int)>(name)(target, value);
    };
    for (int i = 0; i < 3; ++i) { // what is asked again may be remembered
        EXPECT_EQ(answer("byteOf", 0x7654327f), 127);
        EXPECT_EQ(answer("byteOf", 0x76543280), -128);
        EXPECT_EQ(answer("unsignedByteOf", 0x76543280), 128);
        EXPECT_EQ(answer("halfOf", 0x76548000), -32768);
        EXPECT_EQ(answer("unsignedHalfOf", 0x76548000), 32768);
        EXPECT_EQ(function<int(int)>("byteOfClass")(0x765432ff), -1);
    }
    EXPECT_EQ(function<int(id)>("byteOfManyArguments")(target), -2);
    EXPECT_EQ(answer("byteOf", 0x100), 0);
    EXPECT_EQ(function<int(id, int)>("byteOf")(nil, 0x1ff), 0);
}

} // namespace
