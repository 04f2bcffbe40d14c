// The five string properties: the answer of the wrapped object as a host string.

#include "LoadedPlugin.h"
#import "OwnObject.h"
#import "ProcessInfoDouble.h"
#include "Properties.h"

#include <gmock/gmock.h>

#include <memory>
#include <new>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class StringProperty : public testing::TestWithParam<const char *> {
protected:
    host::Outcome read() { return loaded.host.get(instance, GetParam()); }

    LoadedPlugin loaded;
    OwnObject<ProcessInfoDouble> object;
    InstanceAround instance{loaded.host, object};
};

INSTANTIATE_TEST_SUITE_P(, StringProperty, testing::ValuesIn(stringProperties),
                         [](const auto &parameter) { return parameter.param; });

// Throws once, so that the exception's own message can be built.
std::function<void()> failingOnce() {
    return [failed = std::make_shared<bool>(false)] {
        if (!std::exchange(*failed, true))
            throw std::bad_alloc();
    };
}

} // namespace

TEST_P(StringProperty, IsNilForNil) {
    EXPECT_TRUE(read().isNil());
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST_P(StringProperty, IsNilForTheEmptyString) {
    object->answers.string = @"";
    EXPECT_TRUE(read().isNil());
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST_P(StringProperty, IsBuiltByTheseHostCallsAlone) {
    object->answers.string = @"name";
    read();
    EXPECT_THAT(loaded.host.calls(), ElementsAre(R"(REALBuildString("name", 4) = String#1)",
                                                 "REALSetStringEncoding(String#1, 0x08000100)"));
}

TEST_P(StringProperty, HasTheTextInUTF8) {
    object->answers.string = [NSString stringWithUTF8String:"Grüße, 世界 \xF0\x9F\x98\x80"];
    const auto string = read().string();
    EXPECT_EQ(loaded.host.bytes(string), "Gr\xC3\xBC\xC3\x9F"
                                         "e, \xE4\xB8\x96\xE7\x95\x8C \xF0\x9F\x98\x80");
    EXPECT_EQ(loaded.host.encodingOf(string), host::encoding::utf8);
}

TEST_P(StringProperty, IsDeclaredUTF8EvenWhenAllIsASCII) {
    object->answers.string = @"name";
    EXPECT_EQ(loaded.host.encodingOf(read().string()), host::encoding::utf8);
}

TEST_P(StringProperty, HandsOverOneReference) {
    object->answers.string = @"name";
    const auto handle = readDirectly<host::StringHandle>(loaded.host, instance, GetParam());
    EXPECT_EQ(loaded.host.references(handle), 1);
    const auto owner = host::StringRef::adopt(handle);
}

TEST_P(StringProperty, IsANewStringOnEachReading) {
    object->answers.string = @"name";
    const auto first = read().string();
    const auto second = read().string();
    EXPECT_NE(second.handle(), first.handle());
    EXPECT_EQ(loaded.host.text(second), "name");
}

TEST_P(StringProperty, IsNilWhileTheHostCannotBuildStrings) {
    object->answers.string = @"name";
    loaded.host.services().hide("REALBuildString");
    EXPECT_TRUE(read().isNil());
    EXPECT_TRUE(read().isNil());
    EXPECT_THAT(loaded.host.trace(), ElementsAre("miss REALBuildString", "miss REALBuildString"));
}

TEST_P(StringProperty, IsNilWhenTheHostBuildsNone) {
    object->answers.string = @"name";
    loaded.host.services().answerNull("REALBuildString");
    EXPECT_TRUE(read().isNil());
    EXPECT_THAT(loaded.host.calls(), ElementsAre(R"(REALBuildString("name", 4) = nil)"));
}

TEST_P(StringProperty, HasItsBytesWhenTheHostCannotDeclareEncodings) {
    object->answers.string = @"name";
    loaded.host.services().hide("REALSetStringEncoding");
    EXPECT_EQ(loaded.host.bytes(read().string()), "name");
    EXPECT_THAT(loaded.host.calls(), ElementsAre(R"(REALBuildString("name", 4) = String#1)"));
}

TEST_P(StringProperty, IsNilWithTheHostsExceptionWhenBuildingFails) {
    object->answers.string = @"name";
    loaded.host.services().fail("REALBuildString", failingOnce());
    const auto outcome = read();
    EXPECT_TRUE(outcome.value.isNil());
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "OutOfMemoryException");
    EXPECT_EQ(outcome.exception->message, "Failed to allocate memory.");
}
