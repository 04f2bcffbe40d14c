// The five string properties: the answer of the wrapped object as a host string.

#include "LoadedPlugin.h"
#import "OwnObject.h"
#import "ProcessInfoDouble.h"
#include "Properties.h"

#include <gmock/gmock.h>

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
