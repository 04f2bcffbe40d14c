#include "host/classes/Builtins.h"
#include "host/classes/CallLine.h"
#include "host/classes/ClassTable.h"
#include "host/core/Core.h"

#include <chrono>

namespace host {

namespace {

/// Fields past their range carry into the next, as in the host's language: month 13 is January.
DateParts normalized(const DateParts &parts) {
    using namespace std::chrono;
    const std::int64_t months = parts.year * 12 + parts.month - 1;
    const std::int64_t firstYear = months >= 0 ? months / 12 : (months - 11) / 12;
    const sys_days firstDay{year{static_cast<int>(firstYear)} /
                            month{static_cast<unsigned>(months - firstYear * 12 + 1)} / day{1}};
    const sys_seconds moment = firstDay + days{parts.day - 1} + hours{parts.hour} +
                               minutes{parts.minute} + seconds{parts.second};
    const sys_days midnight = floor<days>(moment);
    const year_month_day date{midnight};
    const hh_mm_ss time{moment - midnight};
    return {int{date.year()},     unsigned{date.month()}, unsigned{date.day()},
            time.hours().count(), time.minutes().count(), time.seconds().count()};
}

void construct(Core &core, ObjectHandle handle, std::int64_t year, std::int64_t month,
               std::int64_t day, std::int64_t hour, std::int64_t minute, std::int64_t second) {
    if (auto *parts = payloadOf<DateParts>(core.heap, handle, "Date"))
        *parts = normalized({year, month, day, hour, minute, second});
}

template <std::int64_t DateParts::*Field>
Property field(const char *name) {
    return {.name = name,
            .type = parseType("Integer"),
            .read = [](const Object &object) -> Value {
                return std::any_cast<const DateParts &>(object.payload).*Field;
            },
            .write =
                [](Object &object, const Value &value) {
                    auto &parts = std::any_cast<DateParts &>(object.payload);
                    parts.*Field = value.integer();
                    parts = normalized(parts);
                }};
}

} // namespace

void addDate(ClassTable &classes) {
    HostClass type{.name = "Date",
                   .makePayload = [] { return std::any(DateParts{2000, 1, 1, 0, 0, 0}); }};
    type.methods = {
        nativeMethod("Year As Integer, Month As Integer = 1, Day As Integer = 1, "
                     "Hour As Integer = 0, Minute As Integer = 0, Second As Integer = 0",
                     hostMethod<"Date.Constructor", construct>())};
    type.properties = {field<&DateParts::year>("Year"),     field<&DateParts::month>("Month"),
                       field<&DateParts::day>("Day"),       field<&DateParts::hour>("Hour"),
                       field<&DateParts::minute>("Minute"), field<&DateParts::second>("Second")};
    classes.add(std::move(type));
}

DateParts dateParts(ObjectHandle date) {
    return inspected<DateParts>(Core::current().heap, date, "Date");
}

} // namespace host
