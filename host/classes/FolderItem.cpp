#include "host/classes/Builtins.h"
#include "host/classes/CallLine.h"
#include "host/classes/ClassTable.h"
#include "host/classes/Instances.h"
#include "host/core/Core.h"
#include "host/language/Encodings.h"
#include "host/memory/Heap.h"

#include <CoreServices/CoreServices.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace host {

namespace {

constexpr std::string_view className = "FolderItem";
/// The path mode of native POSIX paths, the only one that the host offers.
constexpr std::int64_t nativePathMode = 3;

ObjectHandle makeItem(Core &core, FolderContent content) {
    Object *item = instantiate(core, *core.classes.findAny(className));
    item->payload = std::move(content);
    return item->handle();
}

std::string utf8From(std::u16string_view units) {
    return convertBytes({reinterpret_cast<const char *>(units.data()), units.size() * 2},
                        encoding::utf16, encoding::utf8);
}

/// The File Manager's separator is the colon, so that a slash in its names is a colon in paths.
std::string posixName(std::u16string name) {
    std::ranges::replace(name, u'/', u':');
    return utf8From(name);
}

ObjectHandle trueFolderItem(Core &core, StringHandle path, std::int64_t pathMode) {
    const String *string = core.heap.check(path);
    if (string == nullptr)
        return nullptr;
    if (pathMode != nativePathMode) {
        core.heap.violation("got the path mode " + std::to_string(pathMode) +
                            ", but the path is a native one (mode 3)");
        return nullptr;
    }
    return makeItem(core, {.fromParent = false,
                           .pathMode = pathMode,
                           .path = toUtf8(string->bytes, string->encoding)});
}

Value nativePath(const Object &object) {
    return std::string_view(std::any_cast<const FolderContent &>(object.payload).path.native());
}

Value name(const Object &object) {
    const auto &content = std::any_cast<const FolderContent &>(object.payload);
    return std::string_view(content.path.filename().native());
}

Value exists(const Object &object) {
    std::error_code ignored;
    return std::filesystem::exists(std::any_cast<const FolderContent &>(object.payload).path,
                                   ignored);
}

} // namespace

namespace services {

ObjectHandle folderItemFromParent(Core &core, const void *parentReference, const void *name) {
    if (parentReference == nullptr || name == nullptr) {
        core.heap.violation("got no parent folder or no name");
        return nullptr;
    }
    FSRef parent;
    std::memcpy(&parent, parentReference, sizeof parent);
    HFSUniStr255 given;
    std::memcpy(&given, name, sizeof given);
    std::array<char, 4096> path{};
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
    const OSStatus status =
        FSRefMakePath(&parent, reinterpret_cast<UInt8 *>(path.data()), path.size());
#pragma clang diagnostic pop
    if (status != 0 || given.length > std::size(given.unicode)) {
        core.heap.violation(status != 0
                                ? "got a parent folder that the File Manager refuses (error " +
                                      std::to_string(status) + ")"
                                : "got a name of " + std::to_string(given.length) + " units");
        return nullptr;
    }
    std::u16string units(given.unicode, given.unicode + given.length);
    std::filesystem::path whole = std::filesystem::path(path.data()) / posixName(units);
    return makeItem(core, {.fromParent = true,
                           .pathMode = 0,
                           .parent = path.data(),
                           .name = std::move(units),
                           .path = std::move(whole)});
}

} // namespace services

Method trueFolderItemMethod() {
    return nativeMethod("GetTrueFolderItem(path As String, pathMode As Integer) As FolderItem",
                        hostMethod<"GetTrueFolderItem", trueFolderItem>());
}

void addFolderItem(ClassTable &classes) {
    HostClass type{.name = std::string(className),
                   .makePayload = [] { return std::any(FolderContent{}); }};
    type.properties = {
        Property{.name = "NativePath", .type = parseType("String"), .read = nativePath},
        Property{.name = "Name", .type = parseType("String"), .read = name},
        Property{.name = "Exists", .type = parseType("Boolean"), .read = exists},
    };
    classes.add(std::move(type));
}

FolderContent folderItem(ObjectHandle item) {
    return inspected<FolderContent>(Core::current().heap, item, className);
}

} // namespace host
