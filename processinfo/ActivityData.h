#pragma once

#include "frame/HostTypes.h"

#include <cstddef>
#include <cstdint>

/// Instance data of the activity class, at the offset that the host chose when it registered the
/// class. Programs can read and write the first three fields.
struct ActivityData {
    void *token;              // Foundation's activity object, retained; nil when none
    REALstringStruct *reason; // holds one host reference; null when none
    std::int64_t options;     // as passed to "beginActivity"
    bool active;              // the token has still to be ended
};

static_assert(sizeof(ActivityData) == 32);
static_assert(offsetof(ActivityData, token) == 0);
static_assert(offsetof(ActivityData, reason) == 8);
static_assert(offsetof(ActivityData, options) == 16);
static_assert(offsetof(ActivityData, active) == 24);
