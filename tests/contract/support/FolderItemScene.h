#pragma once

#include "FileSpy.h"
#include "LoadedPlugin.h"
#include "host/classes/Inspect.h"
#include "host/core/Text.h"

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

/// An empty folder called "folder", removed at the end with what is in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = std::filesystem::canonical(std::filesystem::temp_directory_path()) /
                              "folder-items-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr)
            throw std::runtime_error("no folder like " + pattern);
        around_ = pattern;
        std::filesystem::create_directory(path());
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(around_, ignored);
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    [[nodiscard]] std::filesystem::path path() const { return around_ / "folder"; }
    [[nodiscard]] const std::filesystem::path &around() const { return around_; }
    std::filesystem::path file(std::string_view name) {
        std::filesystem::path result = path() / name;
        if (!(std::ofstream(result) << name))
            throw std::runtime_error("no file " + result.string());
        return result;
    }

private:
    std::filesystem::path around_;
};

/// The file URL of a path.
inline NSURL *urlOf(const std::filesystem::path &path) {
    return [NSURL fileURLWithPath:[NSString stringWithUTF8String:path.c_str()]];
}

inline NSURL *urlFrom(const std::string &text) {
    return [NSURL URLWithString:[NSString stringWithUTF8String:text.c_str()]];
}

/// A host, a folder to make files in, and the image's function that makes folder items from URLs.
struct FolderItemScene : LoadedPlugin {
    host::ObjectRef convert(NSURL *url) {
        return host::ObjectRef::adopt(convert_(reinterpret_cast<CFURLRef>(url)));
    }
    host::ObjectRef convert(const std::filesystem::path &path) { return convert(urlOf(path)); }
    /// The name that the host was given; "(nil)" without an item.
    std::u16string nameGiven(const std::filesystem::path &path) {
        const host::ObjectRef item = convert(path);
        return item.handle() == nullptr ? u"(nil)" : host::folderItem(item).name;
    }

    TemporaryFolder folder;
    FileSpy files{image};

private:
    host::ObjectHandle (*const convert_)(CFURLRef) =
        imageFunction<host::ObjectHandle(CFURLRef)>(image, "NSURLRBFile");
};

inline constexpr const char *fromParent = "REALFolderItemFromParentFSRef(pointer, pointer) = ";
inline constexpr const char *trueFolderItem =
    "GetTrueFolderItem(path As String, pathMode As Integer) As FolderItem";

/// The look-up of the host's global method: "pointer" or "nil" was found.
inline std::string loadingTrueFolderItem(const std::string &found) {
    return "REALLoadGlobalMethod(nil, " + host::inQuotes(trueFolderItem) + ") = " + found;
}
