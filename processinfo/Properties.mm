#include "processinfo/Handlers.h"

#include "bridge/CFString2RBString.h"
#include "bridge/NewNSString.h"
#include "convert/Collections.h"
#include "frame/CocoaTrap.h"
#include "processinfo/WrappedObject.h"

// Two of the messages are deprecated; what they answer is part of the class all the same.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

/// One byte that passes as it is, with its sign. A BOOL is such a byte on x86-64 only: on arm64 it
/// is the language's bool, and a compiler may make 1 of it.
@protocol AutomaticTermination
@property signed char automaticTerminationSupportEnabled;
@end

// A message to nil answers zero, nil or 0.0, which is what a property of an unbound instance reads:
// only what must not be asked of nil is tested.
namespace processinfo {

namespace {

// A property of one message: its answer as a host string, or as an Integer.
template <class Send>
REALstringStruct *stringProperty(Send send) {
    return trapCocoaExceptions<REALstringStruct *>(
        nullptr, [&] { return CFString2RBString((CFStringRef)send()); });
}

template <class Send>
std::int64_t integerProperty(Send send) {
    return trapCocoaExceptions<std::int64_t>(0, [&] { return static_cast<std::int64_t>(send()); });
}

id<AutomaticTermination> automaticTermination(REALobjectStruct *instance) {
    return static_cast<id<AutomaticTermination>>(static_cast<id>(wrappedObject(instance)));
}

} // namespace

std::int64_t thermalState(REALobjectStruct *instance, std::intptr_t) {
    NSProcessInfo *wrapped = wrappedObject(instance);
    if (wrapped == nil)
        return -1;
    return trapCocoaExceptions<std::int64_t>(-1, [&]() -> std::int64_t {
        if (![wrapped respondsToSelector:@selector(thermalState)])
            return -1;
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wunguarded-availability"
        return [wrapped thermalState];
#pragma clang diagnostic pop
    });
}

REALstringStruct *operatingSystemVersionString(REALobjectStruct *instance, std::intptr_t) {
    return stringProperty([&] { return [wrappedObject(instance) operatingSystemVersionString]; });
}

REALstringStruct *globallyUniqueString(REALobjectStruct *instance, std::intptr_t) {
    return stringProperty([&] { return [wrappedObject(instance) globallyUniqueString]; });
}

REALstringStruct *hostName(REALobjectStruct *instance, std::intptr_t) {
    return stringProperty([&] { return [wrappedObject(instance) hostName]; });
}

REALstringStruct *processName(REALobjectStruct *instance, std::intptr_t) {
    return stringProperty([&] { return [wrappedObject(instance) processName]; });
}

void setProcessName(REALobjectStruct *instance, std::intptr_t, REALstringStruct *name) {
    trapCocoaExceptions([&] { [wrappedObject(instance) setProcessName:NewNSString(name)]; });
}

REALstringStruct *operatingSystemName(REALobjectStruct *instance, std::intptr_t) {
    return stringProperty([&] { return [wrappedObject(instance) operatingSystemName]; });
}

REALobjectStruct *environment(REALobjectStruct *instance, std::intptr_t) {
    return trapCocoaExceptions<REALobjectStruct *>(
        nullptr, [&] { return NSDictionaryRB([wrappedObject(instance) environment]); });
}

std::int64_t processIdentifier(REALobjectStruct *instance, std::intptr_t) {
    return integerProperty([&] { return [wrappedObject(instance) processIdentifier]; });
}

std::int64_t operatingSystem(REALobjectStruct *instance, std::intptr_t) {
    return integerProperty([&] { return [wrappedObject(instance) operatingSystem]; });
}

std::int64_t activeProcessorCount(REALobjectStruct *instance, std::intptr_t) {
    return integerProperty([&] { return [wrappedObject(instance) activeProcessorCount]; });
}

std::int64_t processorCount(REALobjectStruct *instance, std::intptr_t) {
    return integerProperty([&] { return [wrappedObject(instance) processorCount]; });
}

std::uint64_t physicalMemory(REALobjectStruct *instance, std::intptr_t) {
    return trapCocoaExceptions<std::uint64_t>(
        0, [&] { return [wrappedObject(instance) physicalMemory]; });
}

double systemUptime(REALobjectStruct *instance, std::intptr_t) {
    return trapCocoaExceptions(0.0, [&] { return [wrappedObject(instance) systemUptime]; });
}

std::int32_t automaticTerminationSupportEnabled(REALobjectStruct *instance, std::intptr_t) {
    return trapCocoaExceptions<std::int32_t>(0, [&]() -> std::int32_t {
        return [automaticTermination(instance) automaticTerminationSupportEnabled];
    });
}

void setAutomaticTerminationSupportEnabled(REALobjectStruct *instance, std::intptr_t,
                                           std::int8_t enabled) {
    trapCocoaExceptions(
        [&] { [automaticTermination(instance) setAutomaticTerminationSupportEnabled:enabled]; });
}

} // namespace processinfo
