// "argument" and "arguments" of lists as they should be.

#import "ArgumentScene.h"

#include "host/family/Siblings.h"

#include <gmock/gmock.h>

#include <limits>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

NSMutableArray *numbered(std::size_t count) {
    NSMutableArray *list = [NSMutableArray arrayWithCapacity:count];
    for (std::size_t i = 0; i < count; ++i)
        [list addObject:[NSString stringWithFormat:@"%lu", i]];
    return list;
}

} // namespace

TEST(Arguments, AreInsertedOneAfterTheOther) {
    ArgumentScene scene({@"program", @"-x"});
    const auto array = scene.arguments().object();
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("RuntimeArrayCreateSingleDimBoundedArray(3, -1) = Array#2",
                            "[own arguments]", "[list objectEnumerator]", "[enumerator nextObject]",
                            "REALBuildString(\"program\", 7) = String#1",
                            "REALSetStringEncoding(String#1, 0x08000100)",
                            "PluginStringArrayInsertProc(Array#2) = pointer",
                            "StringArray.Insert(Array#2, 0, String#1)",
                            "REALUnlockString(String#1)", "[enumerator nextObject]",
                            "REALBuildString(\"-x\", 2) = String#2",
                            "REALSetStringEncoding(String#2, 0x08000100)",
                            "PluginStringArrayInsertProc(Array#2) = pointer",
                            "StringArray.Insert(Array#2, 1, String#2)",
                            "REALUnlockString(String#2)", "[enumerator nextObject]"));
}

TEST(Arguments, KeepOrderAndBounds) {
    ArgumentScene scene({@"c", @"a", @"b", @"a"});
    const auto array = scene.arguments().object();
    EXPECT_EQ(host::elementType(array), host::stringElements);
    EXPECT_THAT(scene.texts(array), ElementsAre("c", "a", "b", "a"));
}

TEST(Arguments, AreOneFewerThanTheirCountInUpperBound) {
    ArgumentScene scene({@"a", @"b", @"c"});
    const auto array = scene.arguments().object();
    EXPECT_EQ(static_cast<std::int64_t>(host::arrayCount(array)),
              scene.host.get(scene.info, "argumentsCount").integer());
}

TEST(Arguments, AreUTF8) {
    ArgumentScene scene({@"Gr\u00FC\u00DFe", @"\U0001F600"});
    const auto array = scene.arguments().object();
    for (const host::Value &element : host::arrayElements(array))
        EXPECT_EQ(scene.host.encodingOf(element.string()), host::encoding::utf8);
    EXPECT_THAT(scene.texts(array), ElementsAre("Gr\xC3\xBC\xC3\x9F"
                                                "e",
                                                "\xF0\x9F\x98\x80"));
}

TEST(Arguments, GiveAnArrayThatIsTheCallersAlone) {
    ArgumentScene scene({@"a", @"b"});
    auto array = scene.arguments().object();
    EXPECT_EQ(scene.host.references(array.handle()), 1);
    for (const host::Value &element : host::arrayElements(array))
        EXPECT_EQ(scene.host.references(element.string().handle()), 3)
            << "the array's, the vector's and this one's";
    scene.host.release(std::move(array)).result();
    EXPECT_THAT(scene.host.liveStrings(), IsEmpty());
}

TEST(Arguments, WithoutTextAreInsertedAsNil) {
    ArgumentScene scene({@"", @"b", @""});
    const auto array = scene.arguments().object();
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("RuntimeArrayCreateSingleDimBoundedArray(3, -1) = Array#2",
                            "[own arguments]", "[list objectEnumerator]", "[enumerator nextObject]",
                            "PluginStringArrayInsertProc(Array#2) = pointer",
                            "StringArray.Insert(Array#2, 0, nil)", "[enumerator nextObject]",
                            "REALBuildString(\"b\", 1) = String#1",
                            "REALSetStringEncoding(String#1, 0x08000100)",
                            "PluginStringArrayInsertProc(Array#2) = pointer",
                            "StringArray.Insert(Array#2, 1, String#1)",
                            "REALUnlockString(String#1)", "[enumerator nextObject]",
                            "PluginStringArrayInsertProc(Array#2) = pointer",
                            "StringArray.Insert(Array#2, 2, nil)", "[enumerator nextObject]"));
    EXPECT_TRUE(host::arrayElements(array)[0].isNil());
    EXPECT_TRUE(host::arrayElements(array)[2].isNil());
}

TEST(Arguments, OfAnUnboundInstanceAreAnEmptyArray) {
    LoadedPlugin loaded;
    const auto info = loaded.host.newInstance(processInfoClass);
    const auto array = loaded.host.call(info, "arguments").object();
    EXPECT_THAT(loaded.host.trace(),
                ElementsAre("find RuntimeArrayCreateSingleDimBoundedArray",
                            "RuntimeArrayCreateSingleDimBoundedArray(3, -1) = Array#2"));
    EXPECT_EQ(host::arrayCount(array), 0u);
    EXPECT_EQ(host::elementType(array), host::stringElements);
}

TEST(Arguments, OfAnObjectWithoutAListAreAnEmptyArray) {
    ArgumentScene scene({});
    scene.own->arguments = nil;
    const auto array = scene.arguments().object();
    EXPECT_EQ(host::arrayCount(array), 0u);
    EXPECT_THAT(
        scene.host.calls(),
        ElementsAre("RuntimeArrayCreateSingleDimBoundedArray(3, -1) = Array#2", "[own arguments]"));
}

TEST(Arguments, OfAnEmptyListAreAnEmptyArray) {
    ArgumentScene scene({});
    const auto array = scene.arguments().object();
    EXPECT_EQ(host::arrayCount(array), 0u);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("RuntimeArrayCreateSingleDimBoundedArray(3, -1) = Array#2",
                            "[own arguments]", "[list objectEnumerator]",
                            "[enumerator nextObject]"));
}

TEST(Arguments, AreReadAfreshEachTime) {
    ArgumentScene scene({@"before"});
    const auto first = scene.arguments().object();
    scene.list->elements = {@"after", @"that"};
    const auto second = scene.arguments().object();
    EXPECT_THAT(scene.texts(first), ElementsAre("before"));
    EXPECT_THAT(scene.texts(second), ElementsAre("after", "that"));
    EXPECT_NE(first.handle(), second.handle());
}

TEST(Arguments, OfTheProcessAreThoseOfItsCommandLine) {
    LoadedPlugin loaded;
    const auto info = loaded.host.newObject(processInfoClass).object();
    const auto array = loaded.host.call(info, "arguments").object();
    NSArray *expected = [[NSProcessInfo processInfo] arguments];
    ASSERT_GE([expected count], 2u);
    ASSERT_EQ(host::arrayCount(array), [expected count]);
    for (std::size_t i = 0; i < [expected count]; ++i) {
        EXPECT_EQ(host::arrayElements(array)[i].text(), [[expected objectAtIndex:i] UTF8String]);
        EXPECT_EQ(loaded.host.call(info, "argument", {std::int64_t(i)}).text(),
                  [[expected objectAtIndex:i] UTF8String]);
    }
    EXPECT_EQ(loaded.host.get(info, "argumentsCount").integer(),
              static_cast<std::int64_t>([expected count]));
}

class ManyArguments : public testing::TestWithParam<std::size_t> {};

TEST_P(ManyArguments, AllArriveAndLeaveNothingBehind) {
    host::Host host({.tracing = false, .quarantineLimit = 10});
    host.loadPlugin(imageUnderTest());
    const Traced own("own");
    own->arguments = numbered(GetParam());
    const InstanceAround info(host, own);
    const auto before = host.account();
    {
        const auto array = host.call(info, "arguments").object();
        const auto elements = host::arrayElements(array);
        ASSERT_EQ(elements.size(), GetParam());
        for (std::size_t i = 0; i < elements.size(); ++i)
            ASSERT_EQ(elements[i].text(), std::to_string(i));
        EXPECT_EQ(host.get(info, "argumentsCount").integer(),
                  static_cast<std::int64_t>(GetParam()));
    }
    EXPECT_EQ(host.account().liveObjects, before.liveObjects);
    EXPECT_EQ(host.account().liveStrings, before.liveStrings);
}

INSTANTIATE_TEST_SUITE_P(Count, ManyArguments, testing::Values(0, 1, 100'000),
                         testing::PrintToStringParamName());

TEST(Argument, IsTheElementAtTheIndex) {
    ArgumentScene scene({@"zero", @"one", @"two"});
    EXPECT_EQ(scene.argument(1).text(), "one");
    EXPECT_THAT(scene.host.calls(), ElementsAre("[own arguments]", "[list objectAtIndex:1]",
                                                "REALBuildString(\"one\", 3) = String#1",
                                                "REALSetStringEncoding(String#1, 0x08000100)"));
    EXPECT_EQ(scene.argument(0).text(), "zero");
    EXPECT_EQ(scene.argument(2).text(), "two");
}

TEST(Argument, IsTheCallersAlone) {
    ArgumentScene scene({@"zero"});
    const host::StringRef argument = scene.argument(0).string();
    EXPECT_EQ(scene.host.references(argument.handle()), 1);
    EXPECT_EQ(scene.host.encodingOf(argument), host::encoding::utf8);
}

TEST(Argument, PassesTheIndexOnUnchanged) {
    ArgumentScene scene({});
    const std::pair<std::int64_t, const char *> indices[] = {
        {0, "0"},
        {1, "1"},
        {0x123456789ABCDEF, "81985529216486895"},
        {std::numeric_limits<std::int64_t>::max(), "9223372036854775807"},
        {-1, "18446744073709551615"},
        {std::numeric_limits<std::int64_t>::min(), "9223372036854775808"},
    };
    for (const auto &[index, received] : indices) {
        scene.host.clearTrace();
        EXPECT_TRUE(scene.argument(index).isNil());
        EXPECT_THAT(
            scene.host.trace(),
            ElementsAre("[own arguments]", "[list objectAtIndex:" + std::string(received) + "]"));
    }
}

TEST(Argument, OfAnUnboundInstanceIsNil) {
    LoadedPlugin loaded;
    const auto info = loaded.host.newInstance(processInfoClass);
    EXPECT_TRUE(loaded.host.call(info, "argument", {0}).isNil());
    EXPECT_TRUE(loaded.host.call(info, "argument", {-1}).isNil());
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST(Argument, OfAnObjectWithoutAListIsNil) {
    ArgumentScene scene({});
    scene.own->arguments = nil;
    EXPECT_TRUE(scene.argument(0).isNil());
    EXPECT_THAT(scene.host.trace(), ElementsAre("[own arguments]"));
}

TEST(Argument, WithoutTextIsNil) {
    ArgumentScene scene({@""});
    EXPECT_TRUE(scene.argument(0).isNil());
}

TEST(ArgumentsCount, IsThatOfTheList) {
    ArgumentScene scene({@"a", @"b"});
    EXPECT_EQ(scene.host.get(scene.info, "argumentsCount").integer(), 2);
    EXPECT_THAT(scene.host.trace(), ElementsAre("[own arguments]", "[list count]"));
}

TEST(ArgumentsCount, OfAnUnboundInstanceIsZero) {
    LoadedPlugin loaded;
    const auto info = loaded.host.newInstance(processInfoClass);
    EXPECT_EQ(loaded.host.get(info, "argumentsCount").integer(), 0);
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

class ArgumentOutside : public testing::TestWithParam<std::int64_t> {};

TEST_P(ArgumentOutside, RaisesFoundationsRangeException) {
    ArgumentScene scene({});
    scene.own->arguments = [NSArray arrayWithObjects:@"a", @"b", nil];
    const host::Outcome outcome = scene.argument(GetParam());
    EXPECT_TRUE(outcome.value.isNil());
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "NSExceptionZKT");
    EXPECT_EQ(outcome.exception->cocoaName, "NSRangeException");
    EXPECT_EQ(host::siblings::makeCount(), 1u);
    EXPECT_THAT(scene.host.strayExceptions(), IsEmpty());
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("[own arguments]", "RuntimeRaiseException(NSExceptionZKT#2)",
                            "REALUnlockObject(NSExceptionZKT#2)"));
}

INSTANTIATE_TEST_SUITE_P(Of, ArgumentOutside,
                         testing::Values(2, -1, std::numeric_limits<std::int64_t>::min(),
                                         std::numeric_limits<std::int64_t>::max()));

TEST(ArgumentOutsideOfTheProcess, IsTheOneAtTheirCount) {
    LoadedPlugin loaded;
    const auto info = loaded.host.newObject(processInfoClass).object();
    const std::int64_t count = loaded.host.get(info, "argumentsCount").integer();
    EXPECT_FALSE(loaded.host.call(info, "argument", {count - 1}).raised());
    const host::Outcome outcome = loaded.host.call(info, "argument", {count});
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->cocoaName, "NSRangeException");
}
