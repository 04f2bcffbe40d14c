#include "FileSpy.h"

#include "CoreFoundationCalls.h"
#include "CoreFoundationSpy.h"
#include "host/Host.h"
#include "host/core/Core.h"
#include "host/core/Text.h"

#include <CoreServices/CoreServices.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>

// The File Manager is long deprecated.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace {

struct Object {
    std::string name;
    int references;
};

struct Watch {
    const host::Image *image = nullptr;
    std::unique_ptr<CoreFoundationSpy> lengths;
    std::map<const void *, Object> objects; // that the image owns
    std::map<std::string, int, std::less<>> callsToRefusal;
    std::optional<std::uint32_t> node;
    bool everythingIsValid = false;
};
Watch watch;

constexpr OSErr fileNotFound = -43;

std::string nameOf(const void *object) {
    if (object == nullptr)
        return "nil";
    const auto found = watch.objects.find(object);
    return found == watch.objects.end() ? "url" : found->second.name;
}

/// Its address may come again when the last reference is gone.
void countReferences(const void *object, int added) {
    const auto found = watch.objects.find(object);
    if (found == watch.objects.end())
        return;
    found->second.references += added;
    if (found->second.references == 0)
        watch.objects.erase(found);
}

/// A call of the image's own while somebody watches: its line, and whether it is to fail.
class Call {
public:
    Call(const void *caller, std::string_view function, const std::string &arguments)
        : watched_(watch.image != nullptr && watch.image->contains(caller)) {
        if (!watched_)
            return;
        place_ = host::Core::current().trace.begin(std::string(function) + '(' + arguments + ')');
        if (const auto left = watch.callsToRefusal.find(function);
            left != watch.callsToRefusal.end() && left->second > 0)
            refused_ = --left->second == 0;
    }
    [[nodiscard]] bool isWatched() const { return watched_; }
    [[nodiscard]] bool isRefused() const { return refused_; }
    void result(const std::string &text) const {
        if (watched_)
            host::Core::current().trace.end(place_, " = " + text);
    }
    template <class Ref>
    Ref created(Ref object, const char *name) const {
        if (watched_) {
            if (object != nullptr)
                watch.objects.insert_or_assign(object, Object{name, 1});
            result(nameOf(object));
        }
        return object;
    }

private:
    bool watched_;
    bool refused_ = false;
    std::size_t place_ = 0;
};

template <class Function>
Function *next(Function *, const char *name) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

bool isZero(const void *bytes, std::size_t count) {
    const auto *first = static_cast<const unsigned char *>(bytes);
    return std::all_of(first, first + count, [](unsigned char byte) { return byte == 0; });
}

std::string shown(const FSRef *ref) {
    static const auto makePath = next(&FSRefMakePath, "FSRefMakePath");
    std::array<UInt8, 4096> path{};
    if (ref == nullptr)
        return "nil";
    if (isZero(ref, sizeof *ref))
        return "zeroes";
    if (makePath(ref, path.data(), path.size()) != 0)
        return "invalid";
    const std::filesystem::path item(reinterpret_cast<const char *>(path.data()));
    return host::inQuotes(item == "/" ? "/" : item.filename().string());
}

std::string shown(const void *output, const char *name) {
    return output == nullptr ? "nil" : name;
}

} // namespace

// The program's own functions stand before the stand-in's, for everything loaded into it.

Boolean CFURLGetFSRef(CFURLRef url, FSRef *ref) {
    static const auto original = next(&CFURLGetFSRef, "CFURLGetFSRef");
    CoreFoundationCalls::tell(__builtin_return_address(0), "CFURLGetFSRef");
    const Call call(__builtin_return_address(0), "CFURLGetFSRef", nameOf(url));
    const Boolean found = !call.isRefused() && original(url, ref);
    call.result(found ? "true" : "false");
    return found;
}

CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef allocator, CFURLRef url) {
    static const auto original =
        next(&CFURLCreateCopyDeletingLastPathComponent, "CFURLCreateCopyDeletingLastPathComponent");
    CoreFoundationCalls::tell(__builtin_return_address(0),
                              "CFURLCreateCopyDeletingLastPathComponent");
    const Call call(__builtin_return_address(0), "CFURLCreateCopyDeletingLastPathComponent",
                    nameOf(allocator) + ", " + nameOf(url));
    return call.created(call.isRefused() ? nullptr : original(allocator, url), "parent");
}

CFStringRef CFURLCopyLastPathComponent(CFURLRef url) {
    static const auto original = next(&CFURLCopyLastPathComponent, "CFURLCopyLastPathComponent");
    CoreFoundationCalls::tell(__builtin_return_address(0), "CFURLCopyLastPathComponent");
    const Call call(__builtin_return_address(0), "CFURLCopyLastPathComponent", nameOf(url));
    return call.created(call.isRefused() ? nullptr : original(url), "component");
}

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex maxLength,
                                             CFStringRef string) {
    static const auto original = next(&CFStringCreateMutableCopy, "CFStringCreateMutableCopy");
    CoreFoundationCalls::tell(__builtin_return_address(0), "CFStringCreateMutableCopy");
    const Call call(__builtin_return_address(0), "CFStringCreateMutableCopy",
                    nameOf(allocator) + ", " + std::to_string(maxLength) + ", " + nameOf(string));
    return call.created(call.isRefused() ? nullptr : original(allocator, maxLength, string),
                        "copy");
}

void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm form) {
    static const auto original = next(&CFStringNormalize, "CFStringNormalize");
    CoreFoundationCalls::tell(__builtin_return_address(0), "CFStringNormalize");
    const Call call(__builtin_return_address(0), "CFStringNormalize",
                    nameOf(string) + ", " + std::to_string(form));
    original(string, form);
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar *buffer) {
    static const auto original = next(&CFStringGetCharacters, "CFStringGetCharacters");
    CoreFoundationCalls::tell(__builtin_return_address(0), "CFStringGetCharacters");
    const Call call(__builtin_return_address(0), "CFStringGetCharacters",
                    nameOf(string) + ", " + std::to_string(range.location) + ", " +
                        std::to_string(range.length));
    original(string, range, buffer);
}

CFTypeRef CFRetain(CFTypeRef object) {
    static const auto original = next(&CFRetain, "CFRetain");
    CoreFoundationCalls::tell(__builtin_return_address(0), "CFRetain");
    const Call call(__builtin_return_address(0), "CFRetain", nameOf(object));
    if (call.isWatched())
        countReferences(object, 1);
    return original(object);
}

void CFRelease(CFTypeRef object) {
    static const auto original = next(&CFRelease, "CFRelease");
    if (!CoreFoundationCalls::tell(__builtin_return_address(0), "CFRelease"))
        return;
    const Call call(__builtin_return_address(0), "CFRelease", nameOf(object));
    if (call.isWatched())
        countReferences(object, -1);
    original(object);
}

OSErr FSGetCatalogInfo(const FSRef *ref, FSCatalogInfoBitmap whichInfo, FSCatalogInfo *info,
                       HFSUniStr255 *name, FSSpecPtr spec, FSRef *parent) {
    static const auto original = next(&FSGetCatalogInfo, "FSGetCatalogInfo");
    std::array<char, 16> fields{};
    std::snprintf(fields.data(), fields.size(), "0x%X", whichInfo);
    const Call call(__builtin_return_address(0), "FSGetCatalogInfo",
                    shown(ref) + ", " + fields.data() + ", " + shown(info, "info") + ", " +
                        shown(name, "name") + ", " + shown(spec, "spec") + ", " +
                        shown(parent, "ref"));
    OSErr status = fileNotFound;
    if (!call.isRefused())
        status = original(ref, whichInfo, info, name, spec, parent);
    if (call.isWatched() && info != nullptr && watch.node)
        info->nodeID = *watch.node;
    if (call.isWatched() && watch.everythingIsValid)
        status = 0;
    call.result(std::to_string(status));
    return status;
}

OSStatus FSRefMakePath(const FSRef *ref, UInt8 *path, UInt32 size) {
    static const auto original = next(&FSRefMakePath, "FSRefMakePath");
    if (watch.image == nullptr)
        return original(ref, path, size);
    const Call call(__builtin_return_address(0), "FSRefMakePath",
                    shown(ref) + ", " + (isZero(path, size) ? "zeroed" : "not zeroed") + ", " +
                        std::to_string(size));
    const OSStatus status = call.isRefused() ? fileNotFound : original(ref, path, size);
    call.result(std::to_string(status));
    return status;
}

FileSpy::FileSpy(const host::Image &image) {
    watch = {};
    watch.image = &image;
    // That function is the other spy's.
    watch.lengths = std::make_unique<CoreFoundationSpy>(image);
    watch.lengths->before("CFStringGetLength",
                          [] { host::Core::current().trace.begin("CFStringGetLength"); });
}

FileSpy::~FileSpy() {
    watch = {};
}

void FileSpy::refuse(std::string_view function, int n) {
    watch.callsToRefusal.insert_or_assign(std::string(function), n);
}

void FileSpy::answerNode(std::uint32_t node) {
    watch.node = node;
}

void FileSpy::findEverythingValid() {
    watch.everythingIsValid = true;
}

void FileSpy::answerLength(long length) {
    watch.lengths->answerLength(length);
}
