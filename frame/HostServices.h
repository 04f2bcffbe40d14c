#pragma once

#include "frame/HostTypes.h"

#include <cstdint>

struct FSRef;
struct HFSUniStr255;
struct PluginClassRecord;
struct __CFString; // NOLINT(bugprone-reserved-identifier): Core Foundation's name

/// Gives the entry point of a host service by name, or null when the host lacks the service.
using HostResolver = void *(*)(const char *serviceName);

/// Set by REALPluginMain; kept for the life of the library.
inline constinit HostResolver hostResolver = nullptr;

/// A service's name and its entry point, once found.
class HostServiceSlot {
protected:
    explicit constexpr HostServiceSlot(const char *name) noexcept : name_(name) {}

    // Asks the host. A null answer is stored like any other, so the next call asks again.
    [[gnu::noinline, gnu::cold]] void *lookUp() { return entryPoint_ = hostResolver(name_); }

    const char *name_;
    void *entryPoint_ = nullptr;
};

template <class Signature>
class HostService;

/// A host service, called like a function. It is looked up by name on first use; while the host
/// lacks it, a call has no effect and gives null, zero or false. Slots are plain memory: two
/// threads that bind one at once store the same answer.
template <class Result, class... Arguments>
class HostService<Result(Arguments...)> : HostServiceSlot {
public:
    explicit constexpr HostService(const char *name) noexcept : HostServiceSlot(name) {}

    Result operator()(Arguments... arguments) {
        void *entryPoint = entryPoint_;
        if (entryPoint == nullptr) [[unlikely]] {
            entryPoint = lookUp();
            if (entryPoint == nullptr)
                return Result();
        }
        return reinterpret_cast<Result (*)(Arguments...)>(entryPoint)(arguments...);
    }
};

/// Inserts a value at a zero-based index of the array that the procedure was fetched for. The array
/// takes a reference of its own.
using StringInsertProcedure = void(REALobjectStruct *array, std::int64_t index,
                                   REALstringStruct *value);
using ObjectInsertProcedure = void(REALobjectStruct *array, std::int64_t index,
                                   REALobjectStruct *value);

// The host's services, a line each. Object and string results carry one reference, which belongs to
// the caller; arguments are borrowed.

// Classes, instances, references
inline constinit HostService<void(PluginClassRecord *)> REALRegisterClass{"PluginRegisterClass"};
inline constinit HostService<REALobjectStruct *(const char *className)> REALnewInstance{
    "PluginNewInstance"}; // null: the host has no such class
inline constinit HostService<void(REALobjectStruct *)> REALLockObject{"REALLockObject"};
inline constinit HostService<void(REALobjectStruct *)> REALUnlockObject{"REALUnlockObject"};
inline constinit HostService<void(REALstringStruct *)> REALLockString{"REALLockString"};
inline constinit HostService<void(REALstringStruct *)> REALUnlockString{"REALUnlockString"};

// Exceptions: pending until the current call of the plug-in returns; the host takes a reference.
inline constinit HostService<void(REALobjectStruct *)> REALRaiseException{"RuntimeRaiseException"};
inline constinit HostService<REALobjectStruct *(void (*callback)(void *), void *argument)>
    REALCallFunctionWithExceptionHandler{
        "PluginCallFunctionWithExceptionHandler"}; // gives what the callback raised, or null

// Variants
inline constinit HostService<REALobjectStruct *(REALstringStruct *)> REALNewVariantString{
    "StringToVariant"};
inline constinit HostService<REALobjectStruct *(std::int64_t)> REALNewVariantInteger{
    "IntegerToVariant"};
inline constinit HostService<REALobjectStruct *(double)> REALNewVariantDouble{"DoubleToVariant"};
inline constinit HostService<REALobjectStruct *(bool)> REALNewVariantBoolean{"BooleanToVariant"};
inline constinit HostService<REALobjectStruct *(std::uint32_t)> REALNewVariantUInt32{
    "UInt32ToVariant"};
inline constinit HostService<REALobjectStruct *(float)> REALNewVariantSingle{"SingleToVariant"};

// Properties by name; methods by declaration. An object's method takes the object first, a global
// one its declared parameters alone.
inline constinit HostService<bool(REALobjectStruct *, const char *property, std::int64_t)>
    REALSetPropValueInteger{"REALSetPropValueInteger"};
inline constinit HostService<bool(REALobjectStruct *, const char *property, REALstringStruct *)>
    REALSetPropValueString{"REALSetPropValueString"};
inline constinit HostService<bool(REALobjectStruct *, const char *property, std::int64_t *)>
    REALGetPropValueInteger{"REALGetPropValueInteger"}; // false: nothing was written
inline constinit HostService<void *(REALobjectStruct *, const char *declaration)>
    REALLoadObjectMethod{"REALLoadObjectMethod"};
inline constinit HostService<void *(void *module, const char *declaration)> REALLoadFrameworkMethod{
    "REALLoadGlobalMethod"}; // every caller passes no module

// Arrays
inline constexpr std::int64_t stringElements = 3;
inline constexpr std::int64_t objectElements = 4;
inline constexpr std::int64_t emptyArray = -1; // as upper bound
inline constinit HostService<REALobjectStruct *(std::int64_t elementType, std::int64_t upperBound)>
    REALCreateArray{"RuntimeArrayCreateSingleDimBoundedArray"};
inline constinit HostService<StringInsertProcedure *(REALobjectStruct *array)>
    REALInsertArrayValueString{"PluginStringArrayInsertProc"};
inline constinit HostService<ObjectInsertProcedure *(REALobjectStruct *array)>
    REALInsertArrayValueObject{"PluginObjectArrayInsertProc"};

// Strings. Lengths are in bytes.
inline constinit HostService<REALstringStruct *(const char *bytes, std::int32_t length)>
    originalREALBuildString{"REALBuildString"};
inline constinit HostService<REALstringStruct *(const char *bytes, std::int32_t length,
                                                std::uint32_t encoding)>
    REALBuildStringWithEncoding{"REALBuildStringWithEncoding"};
inline constinit HostService<REALstringStruct *(REALstringStruct *, std::uint32_t encoding)>
    REALConvertString{"REALConvertString"};
inline constinit HostService<void(REALstringStruct *, std::uint32_t encoding)>
    REALSetStringEncoding{"REALSetStringEncoding"};
inline constinit HostService<std::uint32_t(REALstringStruct *)> REALGetStringEncoding{
    "REALGetStringEncoding"};
inline constinit HostService<const char *(REALstringStruct *)> REALGetStringCString{
    "StringGetCString"}; // borrowed: valid while the string is locked
inline constinit HostService<void(void *stringData)> REALDisposeStringData{
    "PluginDisposeStringData"};
/// Two wrappers of one service, each with a slot and thus a first look-up, which the host sees.
inline constinit HostService<const __CFString *(REALstringStruct *, std::int32_t)>
    REALGetStringCFString{"REALGetStringCFString"};
inline constinit HostService<const __CFString *(REALstringStruct *, std::int32_t)>
    REALCopyStringCFString{"REALGetStringCFString"};

// Memory blocks and folder items
inline constinit HostService<REALobjectStruct *(std::int32_t size)> REALNewMemoryBlockOriginal{
    "newMemoryBlock"};
inline constinit HostService<void *(REALobjectStruct *block)> REALMemoryBlockGetPtr{
    "memoryBlockGetPtr"};
inline constinit HostService<std::int64_t(REALobjectStruct *block)> REALMemoryBlockGetSize{
    "memoryBlockGetSize"};
inline constinit HostService<REALobjectStruct *(const FSRef *parent, const HFSUniStr255 *name)>
    REALFolderItemFromParentFSRef{"REALFolderItemFromParentFSRef"};

/// A string's bytes, borrowed, and their number; null and 0 as far as the host lacks the means. The
/// number comes from the host's global method LenB, which is looked up until it is found.
struct StringContents {
    const char *bytes;
    std::int64_t length;
};
StringContents REALGetStringContents(REALstringStruct *string);
