// What reading a property sends to the wrapped object, and what comes of failures on the way.

#include "LoadedPlugin.h"
#import "OwnObject.h"
#import "ProcessInfoDouble.h"
#include "Properties.h"

#include "host/family/Siblings.h"

#include <gmock/gmock.h>

#include <limits>

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

static NSException *trouble() {
    return [NSException exceptionWithName:@"Trouble" reason:@"on the way" userInfo:nil];
}

static void expectTrouble(host::Host &host, const host::Outcome &outcome) {
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "NSExceptionZKT");
    EXPECT_EQ(outcome.exception->cocoaName, "Trouble");
    EXPECT_EQ(outcome.exception->cocoaReason, "on the way");
    const std::string name = host.name(outcome.exception->object);
    EXPECT_THAT(host.calls(), ElementsAre("RuntimeRaiseException(" + name + ")",
                                          "REALUnlockObject(" + name + ")"));
}

static void expectNeutral(const host::Outcome &outcome, const PropertyRow &row) {
    EXPECT_EQ(outcome.value.index(), row.neutral.index());
    EXPECT_EQ(describe(outcome.value), describe(row.neutral));
}

namespace {

class EveryProperty : public testing::TestWithParam<PropertyRow> {
protected:
    LoadedPlugin loaded;
    OwnObject<ProcessInfoDouble> object;
    const PropertyRow &row = GetParam();
};

INSTANTIATE_TEST_SUITE_P(, EveryProperty, testing::ValuesIn(readProperties()),
                         [](const auto &parameter) { return parameter.param.name; });

} // namespace

TEST_P(EveryProperty, IsNeutralOnAnUnboundInstance) {
    const auto instance = loaded.host.newInstance(processInfoClass);
    const auto outcome = loaded.host.get(instance, row.name);
    EXPECT_FALSE(outcome.raised());
    expectNeutral(outcome, row);
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST_P(EveryProperty, IsReadByItsMessagesAndNothingElse) {
    const InstanceAround instance(loaded.host, object);
    EXPECT_FALSE(loaded.host.get(instance, row.name).raised());
    EXPECT_THAT(object->received, ElementsAreArray(row.messages));
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST_P(EveryProperty, IsAskedForOnEachReading) {
    const InstanceAround instance(loaded.host, object);
    loaded.host.get(instance, row.name);
    object->received.clear();
    loaded.host.get(instance, row.name);
    EXPECT_THAT(object->received, ElementsAreArray(row.messages));
}

TEST_P(EveryProperty, IsReadWhateverTheParameter) {
    const InstanceAround instance(loaded.host, object);
    for (const std::intptr_t parameter :
         {std::intptr_t{1}, std::intptr_t{-1}, std::intptr_t{48},
          std::numeric_limits<std::intptr_t>::min(), std::numeric_limits<std::intptr_t>::max()}) {
        object->received.clear();
        readDirectly<std::int64_t>(loaded.host, instance, row.name, parameter);
        EXPECT_THAT(object->received, ElementsAreArray(row.messages));
    }
}

TEST_P(EveryProperty, OfAnObjectThatDoesNotKnowIt) {
    const OwnObject<DumbObject> dumb;
    const InstanceAround instance(loaded.host, dumb);
    const auto outcome = loaded.host.get(instance, row.name);
    expectNeutral(outcome, row);
    if (std::string_view(row.name) == "thermalState") {
        EXPECT_FALSE(outcome.raised());
        EXPECT_THAT(dumb->received, ElementsAre("respondsToSelector:thermalState"));
        EXPECT_THAT(loaded.host.trace(), IsEmpty());
    } else {
        ASSERT_TRUE(outcome.raised());
        EXPECT_EQ(outcome.exception->className, "NSExceptionZKT");
        EXPECT_EQ(outcome.exception->cocoaName, "NSInvalidArgumentException");
        EXPECT_EQ(host::siblings::makeCount(), 1u);
    }
}

namespace {

// How an object or array answers one message that the doubles cannot be told about.
struct Answer {
    bool raises = false;
    bool boolean = true;
    std::uint64_t count = 0;
    std::vector<std::string> received;
};

} // namespace

/// Answers respondsToSelector: as it is told.
@interface ReticentObject : ProcessInfoDouble {
@public
    Answer answer;
}
@end

@implementation ReticentObject

- (BOOL)respondsToSelector:(SEL)selector {
    [super respondsToSelector:selector];
    if (answer.raises)
        [trouble() raise];
    return answer.boolean;
}

@end

/// An array that records what it is asked.
@interface CountedArray : NSArray {
@public
    Answer answer;
}
@end

@implementation CountedArray

- (NSUInteger)count {
    answer.received.emplace_back("count");
    if (answer.raises)
        [trouble() raise];
    return answer.count;
}

- (id)objectAtIndex:(NSUInteger)index {
    answer.received.emplace_back("objectAtIndex:");
    return [NSNumber numberWithUnsignedLong:index];
}

@end

TEST(ThermalState, IsUnknownAndSendsNothingElseWhenTheObjectSaysThatItHasNone) {
    LoadedPlugin loaded;
    const OwnObject<ReticentObject> object;
    object->answer.boolean = false;
    object->answers.thermalState = 3;
    const InstanceAround instance(loaded.host, object);
    EXPECT_EQ(loaded.host.get(instance, "thermalState").integer(), -1);
    EXPECT_THAT(object->received, ElementsAre("respondsToSelector:thermalState"));
}

TEST(ThermalState, IsUnknownWhenTheQuestionRaises) {
    LoadedPlugin loaded;
    const OwnObject<ReticentObject> object;
    object->answer.raises = true;
    const InstanceAround instance(loaded.host, object);
    const auto outcome = loaded.host.get(instance, "thermalState");
    expectTrouble(loaded.host, outcome);
    EXPECT_EQ(outcome.value.integer(), -1);
    EXPECT_THAT(object->received, ElementsAre("respondsToSelector:thermalState"));
}

TEST(ArgumentsCount, IsTheCountOfTheArrayAskedOnce) {
    LoadedPlugin loaded;
    const OwnObject<CountedArray> array;
    array->answer.count = 3;
    const OwnObject<ProcessInfoDouble> object;
    object->answers.arguments = array;
    const InstanceAround instance(loaded.host, object);
    EXPECT_EQ(loaded.host.get(instance, "argumentsCount").integer(), 3);
    EXPECT_THAT(array->answer.received, ElementsAre("count"));
    EXPECT_THAT(object->received, ElementsAre("arguments"));
}

TEST(ArgumentsCount, IsZeroWithoutAnArray) {
    LoadedPlugin loaded;
    const OwnObject<ProcessInfoDouble> object;
    const InstanceAround instance(loaded.host, object);
    const auto outcome = loaded.host.get(instance, "argumentsCount");
    EXPECT_EQ(outcome.integer(), 0);
    EXPECT_THAT(object->received, ElementsAre("arguments"));
}

TEST(ArgumentsCount, TakesAnyCountUnchanged) {
    LoadedPlugin loaded;
    const OwnObject<CountedArray> array;
    const OwnObject<ProcessInfoDouble> object;
    object->answers.arguments = array;
    const InstanceAround instance(loaded.host, object);
    for (const std::uint64_t count :
         {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{1} << 32, std::uint64_t{1} << 63,
          std::numeric_limits<std::uint64_t>::max()}) {
        array->answer.count = count;
        EXPECT_EQ(loaded.host.get(instance, "argumentsCount").integer(),
                  static_cast<std::int64_t>(count));
    }
}
