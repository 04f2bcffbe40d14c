#pragma once

#import "SharedScene.h"

#include <array>
#include <cstring>
#include <utility>

inline constexpr const char *activityClass = "NSProcessInfoActivityZKT";

/// An activity's instance data, as it lies in memory.
struct ActivityFields {
    const void *token = nullptr;
    host::StringHandle reason = nullptr;
    std::int64_t options = 0;
    unsigned char active = 0;
    std::array<unsigned char, 7> rest = {};

    bool operator==(const ActivityFields &) const = default;
};
static_assert(sizeof(ActivityFields) == 32);

inline ActivityFields fieldsOf(const host::Host &host, host::ObjectHandle activity) {
    ActivityFields fields;
    std::memcpy(&fields, host.dataOf(activity), sizeof fields);
    return fields;
}

/// A host, an instance that is not bound, and objects in the place of Foundation's shared one and
/// of the token that it begins activities with.
struct ActivityScene : SharedScene {
    explicit ActivityScene(host::HostOptions options = {}) : SharedScene(std::move(options)) {
        shared->activity = token;
        host.clearTrace();
    }

    host::Outcome begin(std::int64_t options = 255, const host::Value &reason = "why") {
        return host.call(info, "beginActivity", {options, reason});
    }
    /// Begun without an exception, and the trace of it forgotten.
    host::ObjectRef begun(std::int64_t options = 255, const host::Value &reason = "why") {
        host::ObjectRef activity = begin(options, reason).object();
        host.clearTrace();
        return activity;
    }
    host::Outcome end(const host::ObjectRef &activity) {
        return host.call(info, "endActivity", {activity});
    }
    ActivityFields fields(host::ObjectHandle activity) const { return fieldsOf(host, activity); }
    /// The activity class's own "Destructor", on an instance that goes on living.
    void destruct(host::ObjectHandle activity) {
        reinterpret_cast<void (*)(host::ObjectHandle)>(host.methodOf(activityClass, "Destructor"))(
            activity);
    }

    Traced token{"token"};
    host::ObjectRef info = host.newInstance(processInfoClass);
};
