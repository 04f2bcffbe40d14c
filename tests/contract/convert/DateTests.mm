// Dates as the host's Date objects.

#include "Caught.h"
#import "DateScene.h"
#import "MethodSubstitute.h"
#import "OwnObject.h"
#include "TraceLines.h"

#include "host/classes/Inspect.h"
#include "host/core/Text.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using host::DateParts;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char *constructor =
    "Year as Integer, Month as Integer = 1, Day as Integer = 1, hour as Integer = 0, "
    "minute as Integer = 0, second as Integer = 0";

std::string constructorRequest(const char *found) {
    return R"(REALLoadObjectMethod(Date#1, ")" + std::string(constructor).substr(0, 64) +
           R"("...) = )" + found;
}

} // namespace

/// A date whose only answer is a line of the host's trace.
@interface TracedDate : NSDate
@end

@implementation TracedDate

- (id)initWithTimeIntervalSinceReferenceDate:(NSTimeInterval)seconds {
    static_cast<void>(seconds);
    return self;
}
- (NSTimeInterval)timeIntervalSinceReferenceDate {
    noteInTrace("[date timeIntervalSinceReferenceDate]");
    return 1234.75;
}

@end

/// Stands for a calendar date. Its messages are lines of the host's trace.
@interface TracedCalendarDate : NSObject
@end

@implementation TracedCalendarDate

static NSInteger field(SEL selector, NSInteger value) {
    noteInTrace("[calendar " + std::string([NSStringFromSelector(selector) UTF8String]) + ']');
    return value;
}

- (id)autorelease {
    noteInTrace("[calendar autorelease]");
    return [super autorelease];
}
- (NSInteger)yearOfCommonEra {
    return field(_cmd, 2013);
}
- (NSInteger)monthOfYear {
    return field(_cmd, 11);
}
- (NSInteger)dayOfMonth {
    return field(_cmd, 4);
}
- (NSInteger)secondOfMinute {
    return field(_cmd, 53);
}
- (NSInteger)minuteOfHour {
    return field(_cmd, 52);
}
- (NSInteger)hourOfDay {
    return field(_cmd, 21);
}

@end

namespace {

// What making a calendar date gives.
id calendarDate;

id makeCalendarDate(id self, SEL, NSTimeInterval seconds) {
    noteInTrace("[calendar initWithTimeIntervalSinceReferenceDate:" + host::shortest(seconds) +
                ']');
    [self release];
    return [calendarDate retain];
}

/// Calendar dates are what the test says.
class CalendarDates {
public:
    explicit CalendarDates(id date) { calendarDate = date; }

private:
    MethodSubstitute substitute_ {
        [NSCalendarDate class], @selector(initWithTimeIntervalSinceReferenceDate:), makeCalendarDate
    };
};

} // namespace

TEST(Date, IsMadeByTheseCallsAlone) {
    const OwnObject<TracedDate> date;
    const OwnObject<TracedCalendarDate> calendar;
    ValueScene scene;
    const CalendarDates dates(calendar);
    const host::ObjectRef converted = scene.convert(date);
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("[date timeIntervalSinceReferenceDate]",
                            "[calendar initWithTimeIntervalSinceReferenceDate:1234.75]",
                            "[calendar autorelease]", "[calendar yearOfCommonEra]",
                            "[calendar monthOfYear]", "[calendar dayOfMonth]",
                            "[calendar secondOfMinute]", "[calendar minuteOfHour]",
                            "[calendar hourOfDay]", "find PluginNewInstance",
                            R"(PluginNewInstance("Date") = Date#1)", "find REALLoadObjectMethod",
                            constructorRequest("pointer"),
                            "Date.Constructor(Date#1, 2013, 11, 4, 21, 52, 53)"));
    EXPECT_EQ(host::dateParts(converted), (DateParts{2013, 11, 4, 21, 52, 53}));
}

namespace {

std::vector<std::string> declarations; // that were asked for

void *noteDeclaration(host::ObjectHandle, const char *declaration) {
    declarations.emplace_back(declaration);
    return nullptr;
}

} // namespace

TEST(Date, AsksForItsMethodByThisDeclaration) {
    ValueScene scene;
    scene.host.services().replace("REALLoadObjectMethod", noteDeclaration);
    const host::ObjectRef converted = scene.convert(dateAt(0));
    EXPECT_THAT(declarations, ElementsAre(constructor));
}

TEST(Date, LeavesTheCalendarDateToTheAutoreleasePool) {
    const OwnObject<TracedDate> date;
    const OwnObject<TracedCalendarDate> calendar;
    ValueScene scene;
    const CalendarDates dates(calendar);
    NSAutoreleasePool *const pool = [[NSAutoreleasePool alloc] init];
    const host::ObjectRef converted = scene.convert(date);
    EXPECT_EQ([calendar retainCount], 2u);
    [pool drain];
    EXPECT_EQ([calendar retainCount], 1u);
}

TEST(Date, HandsOverOneReference) {
    ValueScene scene;
    const host::ObjectHandle converted = scene.convertObject(dateAt(0));
    EXPECT_EQ(scene.host.references(converted), 1);
    const host::ObjectRef owner = host::ObjectRef::adopt(converted);
}

TEST(Date, WithoutACalendarDateIsNil) {
    ValueScene scene;
    const CalendarDates dates(nil);
    EXPECT_EQ(scene.convertObject(dateAt(0)), nullptr);
    EXPECT_THAT(scene.host.trace(),
                ElementsAre("[calendar initWithTimeIntervalSinceReferenceDate:0]"));
}

TEST(Date, IsNilWhenTheHostDoesNotKnowTheClass) {
    ValueScene scene;
    scene.host.hideClass("Date");
    EXPECT_EQ(scene.convertObject(dateAt(0)), nullptr);
    EXPECT_THAT(scene.host.calls(), ElementsAre(R"(PluginNewInstance("Date") = nil)"));
}

TEST(DateWithoutItsMethod, GetsItsPropertiesInOrder) {
    const OwnObject<TracedCalendarDate> calendar;
    ValueScene scene;
    scene.host.hideMethod(constructor);
    NSDate *const date = dateAt(0);
    const CalendarDates dates(calendar);
    const host::ObjectHandle converted = scene.convertObject(date);
    EXPECT_EQ(scene.host.references(converted), 1);
    const host::ObjectRef owner = host::ObjectRef::adopt(converted);
    const auto trace = scene.host.trace();
    ASSERT_GT(trace.size(), 8u);
    EXPECT_THAT(std::vector(trace.begin() + 8, trace.end()),
                ElementsAre("find PluginNewInstance", R"(PluginNewInstance("Date") = Date#1)",
                            "find REALLoadObjectMethod", constructorRequest("nil"),
                            "find REALSetPropValueInteger",
                            R"(REALSetPropValueInteger(Date#1, "Year", 2013) = true)",
                            R"(REALSetPropValueInteger(Date#1, "Month", 11) = true)",
                            R"(REALSetPropValueInteger(Date#1, "Day", 4) = true)",
                            R"(REALSetPropValueInteger(Date#1, "Hour", 21) = true)",
                            R"(REALSetPropValueInteger(Date#1, "Minute", 52) = true)",
                            R"(REALSetPropValueInteger(Date#1, "Second", 53) = true)"));
    EXPECT_EQ(host::dateParts(owner), (DateParts{2013, 11, 4, 21, 52, 53}));
}

TEST(DateWithItsMethod, LooksItUpForEachDate) {
    ValueScene scene;
    const host::ObjectRef first = scene.convert(dateAt(0));
    const host::ObjectRef second = scene.convert(dateAt(0));
    EXPECT_NE(first.handle(), second.handle());
    EXPECT_EQ(scene.host.services().calls("REALLoadObjectMethod"), 2u);
    EXPECT_EQ(scene.host.services().calls("REALSetPropValueInteger"), 0u);
}

TEST(DateLeftByAnException, LeavesNothingBehind) {
    ValueScene scene;
    const MethodSubstitute raising(
        [NSCalendarDate class], @selector(initWithTimeIntervalSinceReferenceDate:),
        +[](id self, SEL, NSTimeInterval) -> id {
            [self release];
            [NSException raise:@"Refused" format:@"date"];
            return nil;
        });
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.convertObject(dateAt(0)); }), "Refused: date");
    EXPECT_THAT(scene.host.liveObjects(), IsEmpty());
}
