#pragma once

// What each host service does. Services.cpp gives them their names and puts the switches and the
// trace in front of them.
//
// Integers narrower than a register are taken at the width the interface states, so that a
// caller may leave the rest of the register undefined.

#include "host/classes/CallLine.h"

#include <cstdint>

namespace host::services {

double hostVersion(Host &host);
void registerPluginVersion(Host &host, std::int32_t version);
void registerClass(Host &host, PluginClassRecord *record);

ObjectHandle newInstance(Host &host, const char *className);
void lockObject(Host &host, ObjectHandle object);
void unlockObject(Host &host, ObjectHandle object);
void raiseException(Host &host, ObjectHandle exception);
/// The exception that the callback raised, with a reference for the caller, or null.
ObjectHandle callWithExceptionHandler(Host &host, void (*callback)(void *), void *argument);

bool setPropertyInteger(Host &host, ObjectHandle object, const char *name, std::int64_t value);
bool setPropertyString(Host &host, ObjectHandle object, const char *name, StringHandle value);
bool getPropertyInteger(Host &host, ObjectHandle object, const char *name, std::int64_t *result);
void *loadObjectMethod(Host &host, ObjectHandle object, const char *declaration);
void *loadGlobalMethod(Host &host, void *module, const char *declaration);

ObjectHandle stringToVariant(Host &host, StringHandle string);
ObjectHandle integerToVariant(Host &host, std::int64_t number);
ObjectHandle doubleToVariant(Host &host, double number);
ObjectHandle booleanToVariant(Host &host, BooleanByte truth);
ObjectHandle uint32ToVariant(Host &host, std::uint32_t number);
ObjectHandle singleToVariant(Host &host, float number);

ObjectHandle createArray(Host &host, std::int32_t elementType, std::int32_t upperBound);
void *stringArrayInsertProcedure(Host &host, ObjectHandle array);
void *objectArrayInsertProcedure(Host &host, ObjectHandle array);

ObjectHandle newMemoryBlock(Host &host, std::int32_t size);
void *pointerOfMemoryBlock(Host &host, ObjectHandle block);
std::int64_t sizeOfMemoryBlock(Host &host, ObjectHandle block);
ObjectHandle folderItemFromParent(Host &host, const void *parentReference, const void *name);

void lockString(Host &host, StringHandle string);
void unlockString(Host &host, StringHandle string);
StringHandle buildString(Host &host, const unsigned char *bytes, std::int32_t length);
StringHandle buildStringWithEncoding(Host &host, const unsigned char *bytes, std::int32_t length,
                                     TextEncoding encoding);
StringHandle convertString(Host &host, StringHandle string, TextEncoding encoding);
void setStringEncoding(Host &host, StringHandle string, TextEncoding encoding);
TextEncoding stringEncoding(Host &host, StringHandle string);
/// The bytes, with a zero byte behind them; they belong to the string.
const void *stringBytes(Host &host, StringHandle string);
void disposeStringData(Host &host, void *data);
/// A retained CFString, or null when the string has no encoding.
void *stringCFString(Host &host, StringHandle string, std::int32_t reserved);

} // namespace host::services
