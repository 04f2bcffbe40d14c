#include "FileReferences.h"

#include "HfsNames.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace standin {
namespace {

// The bytes of an FSRef. The path does not fit, so that it is kept beside it, for good: references
// have no owner who would give them back.
struct Contents {
    std::uint64_t magic;
    std::uint64_t device;
    std::uint64_t node;
    std::uint64_t pathIndex;
};
static_assert(sizeof(Contents) <= sizeof(FSRef));

constexpr std::uint64_t referenceMagic = 0x4653526566537464;

class PathTable {
public:
    std::uint64_t indexOf(const std::string &path) {
        const std::scoped_lock lock(mutex_);
        const auto [entry, isNew] = indices_.try_emplace(path, paths_.size());
        if (isNew) {
            paths_.push_back(path);
        }
        return entry->second;
    }

    std::optional<std::string> pathAt(std::uint64_t index) {
        const std::scoped_lock lock(mutex_);
        return index < paths_.size() ? std::optional(paths_[index]) : std::nullopt;
    }

private:
    std::mutex mutex_;
    std::unordered_map<std::string, std::uint64_t> indices_;
    std::vector<std::string> paths_;
};

PathTable &pathTable() {
    static PathTable table;
    return table;
}

std::optional<std::string> realPath(const std::string &path) {
    char buffer[PATH_MAX];
    if (realpath(path.c_str(), buffer) == nullptr) {
        return std::nullopt;
    }
    return buffer;
}

// The entry of the folder whose name is the same text, be it composed otherwise.
std::optional<std::string> entryNamed(const std::string &name, const std::string &folder) {
    const auto isAscii = [](char unit) { return static_cast<unsigned char>(unit) < 0x80; };
    const auto wanted = hfsName(name);
    if (!wanted || std::ranges::all_of(name, isAscii)) { // ASCII has no other form
        return std::nullopt;
    }
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; entry != end;
         entry.increment(error)) {
        if (hfsName(entry->path().filename().native()) == wanted) {
            return entry->path();
        }
    }
    return std::nullopt;
}

// HFS Plus takes names that decompose alike for one name: the path in the spelling that the file
// system here has, as far as its items exist.
std::string asStored(const std::string &path) {
    struct stat status;
    if (path == "/" || lstat(path.c_str(), &status) == 0 || errno != ENOENT) {
        return path;
    }
    const std::string folder = asStored(parentPath(path));
    const std::string name = path.substr(path.rfind('/') + 1);
    return entryNamed(name, folder).value_or(folder == "/" ? folder + name : folder + '/' + name);
}

// Without symbolic links, "." and "..", except that the last component stays what it is.
std::optional<std::string> canonicalPath(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    path = asStored(path);
    const std::size_t slash = path.rfind('/');
    const std::string name = path.substr(slash + 1);
    if (name.empty() || name == "." || name == "..") {
        return realPath(path);
    }
    auto folder = realPath(path.substr(0, slash + 1));
    if (!folder) {
        return std::nullopt;
    }
    return *folder == "/" ? *folder + name : *folder + '/' + name;
}

std::optional<File> fileAt(const std::string &path) {
    File file{.path = path, .status = {}};
    if (lstat(path.c_str(), &file.status) != 0) {
        return std::nullopt;
    }
    return file;
}

bool isFolder(const std::string &path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

bool makeReference(const std::string &path, FSRef &ref) {
    if (path.empty() || path.front() != '/' || path.find('\0') != std::string::npos) {
        return false;
    }
    const auto canonical = canonicalPath(path);
    const auto file = canonical ? fileAt(*canonical) : std::nullopt;
    if (!file || (path.back() == '/' && !isFolder(file->path))) {
        return false;
    }
    const Contents contents{.magic = referenceMagic,
                            .device = file->status.st_dev,
                            .node = file->status.st_ino,
                            .pathIndex = pathTable().indexOf(file->path)};
    ref = {};
    std::memcpy(&ref, &contents, sizeof contents);
    return true;
}

std::optional<File> resolveReference(const FSRef &ref) {
    Contents contents;
    std::memcpy(&contents, &ref, sizeof contents);
    if (contents.magic != referenceMagic) {
        return std::nullopt;
    }
    const auto path = pathTable().pathAt(contents.pathIndex);
    auto file = path ? fileAt(*path) : std::nullopt;
    if (!file || file->status.st_dev != contents.device || file->status.st_ino != contents.node) {
        return std::nullopt;
    }
    return file;
}

std::string parentPath(const std::string &path) {
    const std::size_t slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

} // namespace standin
