#pragma once

#include "frame/HostTypes.h"

#include <cstdint>

// What the host calls: one function for each operation of the two classes, on the host's thread.
// Instances and arguments are borrowed and, but for a string or an object argument, never null.
// Object and string results carry one reference for the host; null is the host's nil. A Cocoa
// exception inside an operation is raised in the host, and the operation gives its fallback: null,
// 0 or false unless something else is said.

namespace processinfo {

// Instance.mm: life of an instance
void NSProcessInfoConstructor(REALobjectStruct *instance);
void NSProcessInfoDestructor(REALobjectStruct *instance);
void Constructor(REALobjectStruct *instance);
REALobjectStruct *processInfo();
REALstringStruct *getNSProcessInfoThermalStateDidChangeNotification();
REALobjectStruct *DummyException(REALobjectStruct *instance);

// Properties.mm: accessors; the parameter of the property's row is not used
std::int64_t thermalState(REALobjectStruct *instance, std::intptr_t); // -1: not known
REALstringStruct *operatingSystemVersionString(REALobjectStruct *instance, std::intptr_t);
REALstringStruct *globallyUniqueString(REALobjectStruct *instance, std::intptr_t);
REALstringStruct *hostName(REALobjectStruct *instance, std::intptr_t);
REALstringStruct *processName(REALobjectStruct *instance, std::intptr_t);
void setProcessName(REALobjectStruct *instance, std::intptr_t, REALstringStruct *name);
REALstringStruct *operatingSystemName(REALobjectStruct *instance, std::intptr_t);
REALobjectStruct *environment(REALobjectStruct *instance, std::intptr_t);
std::int64_t processIdentifier(REALobjectStruct *instance, std::intptr_t);
std::int64_t operatingSystem(REALobjectStruct *instance, std::intptr_t);
std::int64_t activeProcessorCount(REALobjectStruct *instance, std::intptr_t);
std::int64_t processorCount(REALobjectStruct *instance, std::intptr_t);
std::uint64_t physicalMemory(REALobjectStruct *instance, std::intptr_t); // bytes
double systemUptime(REALobjectStruct *instance, std::intptr_t);          // seconds
/// Foundation's one-byte answer, widened with its sign
std::int32_t automaticTerminationSupportEnabled(REALobjectStruct *instance, std::intptr_t);
void setAutomaticTerminationSupportEnabled(REALobjectStruct *instance, std::intptr_t,
                                           std::int8_t enabled);

// Arguments.mm: the command line
std::int64_t argumentsCount(REALobjectStruct *instance, std::intptr_t);
REALstringStruct *argument(REALobjectStruct *instance, std::int64_t index);
REALobjectStruct *arguments(REALobjectStruct *instance);

// Activities.mm: power and latency
REALobjectStruct *beginActivityWithOptions(REALobjectStruct *instance, std::int64_t options,
                                           REALstringStruct *reason);
void endActivity(REALobjectStruct *instance, REALobjectStruct *activity);

// Termination.mm: on the instance's own object
void disableSuddenTermination(REALobjectStruct *instance);
void enableSuddenTermination(REALobjectStruct *instance);
void disableAutomaticTermination(REALobjectStruct *instance, REALstringStruct *reason);
void enableAutomaticTermination(REALobjectStruct *instance, REALstringStruct *reason);

} // namespace processinfo

// The methods of the activity class, in Activities.mm as well.
namespace processinfo::activity {

void Constructor(REALobjectStruct *instance);
void Destructor(REALobjectStruct *instance);

} // namespace processinfo::activity
