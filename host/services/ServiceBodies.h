#pragma once

// What each host service does, apart from those that belong to one of the host's own classes
// (host/classes/Builtins.h). Services.cpp gives them their names and puts the switches and the
// trace in front of them.
//
// Integers narrower than a register are taken at the width the interface states, so that a
// caller may leave the rest of the register undefined.

#include "host/classes/CallLine.h"
#include "host/core/Core.h"

#include <cstdint>

namespace host::services {

double hostVersion(Core &core);
void registerPluginVersion(Core &core, std::int32_t version);
void registerClass(Core &core, PluginClassRecord *record);

ObjectHandle newInstance(Core &core, const char *className);
void lockObject(Core &core, ObjectHandle object);
void unlockObject(Core &core, ObjectHandle object);
void raiseException(Core &core, ObjectHandle exception);
/// The exception that the callback raised, with a reference for the caller, or null.
ObjectHandle callWithExceptionHandler(Core &core, void (*callback)(void *), void *argument);

bool setPropertyInteger(Core &core, ObjectHandle object, const char *name, std::int64_t value);
bool setPropertyString(Core &core, ObjectHandle object, const char *name, StringHandle value);
bool getPropertyInteger(Core &core, ObjectHandle object, const char *name, std::int64_t *result);
void *loadObjectMethod(Core &core, ObjectHandle object, const char *declaration);
void *loadGlobalMethod(Core &core, void *module, const char *declaration);

ObjectHandle stringToVariant(Core &core, StringHandle string);
ObjectHandle integerToVariant(Core &core, std::int64_t number);
ObjectHandle doubleToVariant(Core &core, double number);
ObjectHandle booleanToVariant(Core &core, BooleanByte truth);
ObjectHandle uint32ToVariant(Core &core, std::uint32_t number);
ObjectHandle singleToVariant(Core &core, float number);

void lockString(Core &core, StringHandle string);
void unlockString(Core &core, StringHandle string);
StringHandle buildString(Core &core, const unsigned char *bytes, std::int32_t length);
StringHandle buildStringWithEncoding(Core &core, const unsigned char *bytes, std::int32_t length,
                                     TextEncoding encoding);
StringHandle convertString(Core &core, StringHandle string, TextEncoding encoding);
void setStringEncoding(Core &core, StringHandle string, TextEncoding encoding);
TextEncoding stringEncoding(Core &core, StringHandle string);
/// The bytes, with a zero byte behind them; they belong to the string.
const void *stringBytes(Core &core, StringHandle string);
void disposeStringData(Core &core, void *data);
/// A retained CFString, or null when the string has no encoding.
void *stringCFString(Core &core, StringHandle string, std::int32_t reserved);

} // namespace host::services
