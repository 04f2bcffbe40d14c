#pragma once

#import "ValueScene.h"

#include <gtest/gtest.h>

#include <chrono>

/// Seconds from the reference date to a moment of universal time.
constexpr double moment(int year, unsigned month, unsigned day, int hour, int minute,
                        double second) {
    using namespace std::chrono;
    const auto midnight = [](int y, unsigned m, unsigned d) {
        return sys_days{std::chrono::year{y} / std::chrono::month{m} / std::chrono::day{d}};
    };
    const auto days = midnight(year, month, day) - midnight(2001, 1, 1);
    return static_cast<double>(days.count()) * 86400 + hour * 3600 + minute * 60 + second;
}

inline NSDate *dateAt(double seconds) {
    return [NSDate dateWithTimeIntervalSinceReferenceDate:seconds];
}

inline void setDefaultTimeZone(const char *name) {
    NSTimeZone *const zone = [NSTimeZone timeZoneWithName:[NSString stringWithUTF8String:name]];
    ASSERT_NE(zone, nil) << name;
    [NSTimeZone setDefaultTimeZone:zone];
}
