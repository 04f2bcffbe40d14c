// The fields of the host's dates: time zones, years and fractions.

#import "DateScene.h"

#include "host/classes/Inspect.h"

#include <string>

using host::DateParts;

namespace {

struct ZoneRow {
    const char *zone;
    double moment;
    DateParts parts;
};

constexpr ZoneRow zoneRows[] = {
    {"UTC", moment(2001, 1, 1, 0, 0, 0), {2001, 1, 1, 0, 0, 0}},
    {"UTC", moment(2012, 2, 29, 23, 59, 59), {2012, 2, 29, 23, 59, 59}},
    // Two summer times begin and end.
    {"Europe/Berlin", moment(2001, 3, 25, 0, 59, 59), {2001, 3, 25, 1, 59, 59}},
    {"Europe/Berlin", moment(2001, 3, 25, 1, 0, 0), {2001, 3, 25, 3, 0, 0}},
    {"Europe/Berlin", moment(2001, 10, 28, 0, 59, 59), {2001, 10, 28, 2, 59, 59}},
    {"Europe/Berlin", moment(2001, 10, 28, 1, 0, 0), {2001, 10, 28, 2, 0, 0}},
    {"America/New_York", moment(2013, 3, 10, 6, 59, 59), {2013, 3, 10, 1, 59, 59}},
    {"America/New_York", moment(2013, 3, 10, 7, 0, 0), {2013, 3, 10, 3, 0, 0}},
    {"America/New_York", moment(2013, 11, 3, 6, 0, 0), {2013, 11, 3, 1, 0, 0}},
    // Zones that are off by half hours; another day, month and year.
    {"Asia/Kolkata", moment(2013, 12, 31, 18, 30, 0), {2014, 1, 1, 0, 0, 0}},
    {"America/St_Johns", moment(2013, 1, 1, 3, 29, 59), {2012, 12, 31, 23, 59, 59}},
};

constexpr ZoneRow rangeRows[] = {
    {"UTC", moment(1, 1, 1, 0, 0, 0), {1, 1, 1, 0, 0, 0}},
    {"UTC", moment(1, 12, 31, 23, 59, 59), {1, 12, 31, 23, 59, 59}},
    {"UTC", moment(1600, 2, 29, 12, 30, 15), {1600, 2, 29, 12, 30, 15}},
    {"UTC", moment(1899, 12, 31, 23, 59, 59), {1899, 12, 31, 23, 59, 59}},
    {"UTC", moment(1904, 1, 1, 0, 0, 0), {1904, 1, 1, 0, 0, 0}},
    {"UTC", moment(1969, 12, 31, 23, 59, 59), {1969, 12, 31, 23, 59, 59}},
    {"UTC", moment(1970, 1, 1, 0, 0, 0), {1970, 1, 1, 0, 0, 0}},
    {"UTC", moment(2038, 1, 19, 3, 14, 8), {2038, 1, 19, 3, 14, 8}},
    {"UTC", moment(2100, 2, 28, 23, 59, 59), {2100, 2, 28, 23, 59, 59}},
    {"UTC", moment(9999, 12, 31, 23, 59, 59), {9999, 12, 31, 23, 59, 59}},
};

constexpr ZoneRow fractionRows[] = {
    {"UTC", moment(2001, 1, 1, 0, 0, 0.75), {2001, 1, 1, 0, 0, 0}},
    {"UTC", moment(2001, 1, 1, 0, 0, 59.999), {2001, 1, 1, 0, 0, 59}},
    {"UTC", moment(2013, 4, 5, 6, 7, 8.5), {2013, 4, 5, 6, 7, 8}},
    // Before the reference date, where the interval is negative, and before 1970.
    {"UTC", moment(2000, 12, 31, 23, 59, 59.25), {2000, 12, 31, 23, 59, 59}},
    {"UTC", moment(1969, 12, 31, 23, 59, 59.75), {1969, 12, 31, 23, 59, 59}},
    {"UTC", moment(1901, 2, 3, 4, 5, 6.5), {1901, 2, 3, 4, 5, 6}},
};

template <class Rows>
void expectParts(const Rows &rows) {
    ValueScene scene;
    for (const ZoneRow &row : rows) {
        SCOPED_TRACE(std::string(row.zone) + ' ' + std::to_string(row.moment));
        setDefaultTimeZone(row.zone);
        scene.host.clearTrace();
        const host::ObjectRef converted = scene.convert(dateAt(row.moment));
        const DateParts parts = host::dateParts(converted);
        EXPECT_EQ(parts, row.parts) << parts.year << '-' << parts.month << '-' << parts.day << ' '
                                    << parts.hour << ':' << parts.minute << ':' << parts.second;
    }
}

} // namespace

TEST(DateFields, AreThoseOfTheDefaultTimeZone) {
    expectParts(zoneRows);
}

TEST(DateFields, ReachFromYearOneToYear9999) {
    expectParts(rangeRows);
}

TEST(DateFields, DropFractionsOfASecond) {
    expectParts(fractionRows);
}

TEST(DateFields, OfADateWithAnotherTimeZoneAreThoseOfTheDefaultOne) {
    setDefaultTimeZone("Europe/Berlin");
    ValueScene scene;
    NSCalendarDate *const date =
        [NSCalendarDate dateWithTimeIntervalSinceReferenceDate:moment(2013, 7, 1, 12, 0, 0)];
    // By its name: the method is deprecated.
    [date performSelector:@selector(setTimeZone:)
               withObject:[NSTimeZone timeZoneWithName:@"America/New_York"]];
    EXPECT_EQ(host::dateParts(scene.convert(date)), (DateParts{2013, 7, 1, 14, 0, 0}));
}
