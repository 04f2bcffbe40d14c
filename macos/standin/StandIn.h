// What a test or a program may ask of the macOS stand-in beyond Apple's own interfaces.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace standin {

/// What NSProcessInfo gained with later versions of macOS.
enum class Feature : std::uint8_t {
    suddenTermination,    // 10.6
    automaticTermination, // 10.7
    beginActivity,        // 10.9, and so is endActivity
    endActivity,
    thermalState,             // 10.10.3
    thermalStateNotification, // 10.10.3: the constant stays linked, but is nil
};

/// Makes the process run on a macOS without the feature, for the rest of its life: NSProcessInfo
/// answers no to respondsToSelector: and does not recognize the messages.
void withdraw(Feature feature);

/// What the header of macOS forbids without saying what comes of it.
enum class Argument : std::uint8_t {
    noReason,   // a nil or empty reason for beginActivityWithOptions:reason:
    noActivity, // for endActivity: nil, or what is no activity
};

/// Makes NSProcessInfo raise an NSInvalidArgumentException for the argument, for the rest of the
/// process's life; until then it takes it without a word.
void refuse(Argument argument);

/// The answer of thermalState from now on; 0 (nominal) at the start.
void setThermalState(long state);

/// An activity that was begun and not ended.
struct Activity {
    const void *token; // borrowed: the object that endActivity: takes
    std::uint64_t options;
    std::string reason; // UTF-8; empty for a null reason
};

/// The running activities, oldest first. An activity also ends when its token is deallocated.
std::vector<Activity> activities();

/// Calls that disabled minus calls that enabled; below zero after more of the latter.
long suddenTerminationDisableCount();
long automaticTerminationDisableCount();

} // namespace standin
