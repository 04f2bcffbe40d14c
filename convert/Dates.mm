#include "convert/Values.h"

#include "frame/HeldUntilReset.h"

// Calendar dates are deprecated since macOS 10.4, their fields since 10.10.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace {

using SetFields = void(REALobjectStruct *date, std::int64_t year, std::int64_t month,
                       std::int64_t day, std::int64_t hour, std::int64_t minute,
                       std::int64_t second);

constexpr const char *setFieldsDeclaration =
    "Year as Integer, Month as Integer = 1, Day as Integer = 1, hour as Integer = 0, "
    "minute as Integer = 0, second as Integer = 0";

} // namespace

REALobjectStruct *newHostDate(NSDate *date) {
    const NSTimeInterval moment = [date timeIntervalSinceReferenceDate];
    NSCalendarDate *fields =
        [[[NSCalendarDate alloc] initWithTimeIntervalSinceReferenceDate:moment] autorelease];
    if (fields == nil)
        return nullptr;
    // In this order: the date sees it.
    const std::int64_t year = [fields yearOfCommonEra];
    const std::int64_t month = [fields monthOfYear];
    const std::int64_t day = [fields dayOfMonth];
    const std::int64_t second = [fields secondOfMinute];
    const std::int64_t minute = [fields minuteOfHour];
    const std::int64_t hour = [fields hourOfDay];

    ObjectReference result{REALnewInstance("Date")};
    if (!result)
        return nullptr;
    auto *setFields =
        reinterpret_cast<SetFields *>(REALLoadObjectMethod(result.get(), setFieldsDeclaration));
    if (setFields != nullptr) {
        setFields(result.get(), year, month, day, hour, minute, second);
    } else {
        REALSetPropValueInteger(result.get(), "Year", year);
        REALSetPropValueInteger(result.get(), "Month", month);
        REALSetPropValueInteger(result.get(), "Day", day);
        REALSetPropValueInteger(result.get(), "Hour", hour);
        REALSetPropValueInteger(result.get(), "Minute", minute);
        REALSetPropValueInteger(result.get(), "Second", second);
    }
    return result.handOver();
}
