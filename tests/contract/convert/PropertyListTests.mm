// Whole property lists, made at random, compared with what a walk of the test's own expects.

#import "ValueScene.h"

#include "host/classes/Inspect.h"
#include "host/core/Text.h"

#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>

#include <chrono>
#include <cmath>
#include <random>
#include <string>

namespace {

// Printed when a test fails; another one makes other lists.
constexpr std::uint32_t seed = 20130412;

// Longer than what the plug-in converts without allocating.
constexpr const char *longText =
    "0123456789 0123456789 0123456789 0123456789 0123456789 0123456789 0123456789 0123456789 "
    "0123456789 0123456789";
constexpr const char *texts[] = {
    "", "a", "Grüße", "\xE4\xB8\x96\xE7\x95\x8C", "\xF0\x9F\x98\x80 smile", longText};

/// Makes property lists of all kinds of values and counts them.
class RandomList {
public:
    explicit RandomList(std::uint32_t start) : engine_(start) {}

    id value(int depth) {
        ++count;
        const int kind = below(depth > 0 ? 13 : 10);
        switch (kind) {
        case 0:
            return [NSNumber numberWithInt:below(2'000'000) - 1'000'000];
        case 1:
            return [NSNumber numberWithLongLong:(below(1000) - 500) * 10'000'000'000];
        case 2:
            return [NSNumber numberWithUnsignedLongLong:(1ULL << 63) + below32()];
        case 3:
            return [NSNumber numberWithDouble:(below(1000) - 500) / 7.0];
        case 4:
            return [NSNumber numberWithFloat:static_cast<float>(below(1000)) / 8.0F];
        case 5:
            return [NSNumber numberWithBool:below(2) == 1];
        case 6:
            return [NSDate dateWithTimeIntervalSinceReferenceDate:below(2'000'000'000) - 1e9];
        case 7:
            return [NSData dataWithBytes:"0123456789" length:static_cast<NSUInteger>(below(10))];
        case 8:
            return [NSNull null];
        case 9:
            return text();
        case 10:
            return array(depth);
        case 11:
            return [NSSet setWithArray:array(depth)];
        default:
            return dictionary(depth);
        }
    }

    int count = 0;

private:
    int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(engine_); }
    std::uint32_t below32() { return static_cast<std::uint32_t>(engine_()); }

    NSString *text() { return [NSString stringWithUTF8String:texts[below(std::size(texts))]]; }

    NSArray *array(int depth) {
        NSMutableArray *const result = [NSMutableArray array];
        for (int i = below(9); i > 0; --i)
            [result addObject:value(depth - 1)];
        return result;
    }

    NSDictionary *dictionary(int depth) {
        NSMutableDictionary *const result = [NSMutableDictionary dictionary];
        for (int i = below(9); i > 0; --i)
            [result setObject:value(depth - 1)
                       forKey:[NSString stringWithFormat:@"%@ %d", text(), i]];
        return result;
    }

    std::mt19937 engine_;
};

// What each kind of object is to become, as text. Nothing here asks the plug-in.

std::string expectedText(NSString *string) {
    return [string length] == 0 ? "String(nil)"
                                : std::string("String(\"") + [string UTF8String] + "\")";
}

std::string expected(id object);

std::string expectedElements(NSArray *array) {
    std::string result;
    for (NSUInteger i = 0; i < [array count]; ++i)
        result += (i == 0 ? "" : ", ") + expected([array objectAtIndex:i]);
    return '[' + result + ']';
}

std::string expectedEntries(NSDictionary *dictionary) {
    NSArray *const keys = [dictionary allKeys];
    std::string result;
    for (NSUInteger i = 0; i < [keys count]; ++i) {
        id const key = [keys objectAtIndex:i];
        result +=
            (i == 0 ? "" : ", ") + expected(key) + ": " + expected([dictionary objectForKey:key]);
    }
    return '{' + result + '}';
}

std::string expectedNumber(NSNumber *number) {
    if (number == (id)kCFBooleanTrue || number == (id)kCFBooleanFalse)
        return [number boolValue] ? "Boolean(true)" : "Boolean(false)";
    switch (*[number objCType]) {
    case 'i':
    case 'q':
        return "Integer(" + std::to_string([number longLongValue]) + ')';
    case 'Q':
        return "UInt32(" + std::to_string([number unsignedLongLongValue] % (1ULL << 32)) + ')';
    case 'f':
        return "Single(" + host::shortest([number doubleValue]) + ')';
    default:
        return "Double(" + host::shortest([number doubleValue]) + ')';
    }
}

std::string expectedDate(NSDate *date) {
    using namespace std::chrono;
    const double whole = std::floor([date timeIntervalSinceReferenceDate]);
    const sys_seconds moment =
        sys_days{2001y / January / 1} + seconds{static_cast<std::int64_t>(whole)};
    const sys_days midnight = floor<days>(moment);
    const year_month_day day{midnight};
    const hh_mm_ss time{moment - midnight};
    return "Date(" +
           describe(host::DateParts{int{day.year()}, unsigned{day.month()}, unsigned{day.day()},
                                    time.hours().count(), time.minutes().count(),
                                    time.seconds().count()}) +
           ')';
}

std::string expectedData(NSData *data) {
    return [data length] == 0
               ? "nil"
               : "MemoryBlock(" +
                     host::inQuotes({static_cast<const char *>([data bytes]), [data length]}) + ')';
}

std::string expected(id object) {
    if ([object isKindOfClass:[NSString class]])
        return expectedText(object);
    if ([object isKindOfClass:[NSNumber class]])
        return expectedNumber(object);
    if ([object isKindOfClass:[NSDate class]])
        return expectedDate(object);
    if ([object isKindOfClass:[NSData class]])
        return expectedData(object);
    if ([object isKindOfClass:[NSArray class]])
        return expectedElements(object);
    if ([object isKindOfClass:[NSSet class]])
        return expectedElements([object allObjects]);
    if ([object isKindOfClass:[NSDictionary class]])
        return expectedEntries(object);
    return "nil";
}

} // namespace

TEST(PropertyList, IsConvertedWhole) {
    [NSTimeZone setDefaultTimeZone:[NSTimeZone timeZoneForSecondsFromGMT:0]];
    ValueScene scene({.tracing = false});
    RandomList random(seed);
    for (int i = 0; random.count < 3000 && !HasFailure(); ++i) {
        SCOPED_TRACE("seed " + std::to_string(seed) + ", list " + std::to_string(i));
        NSAutoreleasePool *const pool = [[NSAutoreleasePool alloc] init];
        id const list = random.value(6);
        EXPECT_EQ(describeDeep(scene.convert(list)), expected(list));
        [pool drain];
    }
    EXPECT_EQ(scene.host.account().liveObjects, 0u);
    EXPECT_EQ(scene.host.account().liveStrings, 0u);
}

TEST(PropertyList, OfHundredsOfValuesIsConvertedInOnePiece) {
    [NSTimeZone setDefaultTimeZone:[NSTimeZone timeZoneForSecondsFromGMT:0]];
    ValueScene scene({.tracing = false});
    RandomList random(seed);
    NSMutableDictionary *const list = [NSMutableDictionary dictionary];
    for (int i = 0; random.count < 800; ++i)
        [list setObject:random.value(5) forKey:[NSString stringWithFormat:@"branch %d", i]];
    EXPECT_EQ(describeDeep(scene.convertDictionary(list)), expected(list));
}
