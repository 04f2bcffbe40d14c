#include "host/crash/Places.h"

#include "host/crash/Registers.h"
#include "host/processor/Processor.h"

#include <llvm/DebugInfo/Symbolize/Symbolize.h>

#include <dlfcn.h>
#include <sys/uio.h>
#include <unistd.h>
#include <unwind.h>

#include <algorithm>
#include <cstdio>

namespace crash {

namespace {

constexpr std::size_t longestWay = 64;

struct Walk {
    std::uintptr_t start; ///< frames of the signal handler come before it
    std::vector<std::uintptr_t> found = {};
    bool begun = false;
};

_Unwind_Reason_Code take(_Unwind_Context *context, void *argument) {
    Walk &walk = *static_cast<Walk *>(argument);
    int isInstruction = 0;
    const std::uintptr_t address = _Unwind_GetIPInfo(context, &isInstruction);
    walk.begun |= address == walk.start;
    if (walk.begun)
        walk.found.push_back(isInstruction != 0 ? address : address - 1);
    return address == 0 || walk.found.size() == longestWay ? _URC_END_OF_STACK : _URC_NO_REASON;
}

/// By the frames that functions link. The first caller may be told twice: a function that has its
/// own frame already has kept it there.
std::vector<std::uintptr_t> byFramePointers(const Registers &registers) {
    std::vector<std::uintptr_t> found{registers.instruction};
    if (registers.caller)
        found.push_back(*registers.caller - 1);
    auto frame = registers.frame;
    while (found.size() < longestWay) {
        const auto outer = wordAt(frame);
        const auto caller = wordAt(frame + sizeof frame);
        if (!outer || !caller || *outer <= frame)
            break;
        found.push_back(*caller - 1);
        frame = *outer;
    }
    return found;
}

/// Where an address lies: a file and the offset in what was loaded of it.
struct Place {
    std::string file;
    std::uint64_t offset;
};

std::optional<Place> placeOf(std::uintptr_t address, const std::vector<LoadedImage> &images) {
    for (const LoadedImage &image : images)
        if (address - image.base < image.size)
            return Place{image.file.string(), address - image.base};
    Dl_info info{};
    if (dladdr(reinterpret_cast<void *>(address), &info) == 0)
        return std::nullopt;
    const std::uint64_t offset = address - reinterpret_cast<std::uintptr_t>(info.dli_fbase);
    std::error_code ignored;
    // The program itself is there by the name that it was started by.
    if (!std::filesystem::path(info.dli_fname).is_absolute())
        return Place{std::filesystem::read_symlink("/proc/self/exe", ignored).string(), offset};
    return Place{info.dli_fname, offset};
}

std::string hexadecimal(std::uint64_t number) {
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "0x%llx", static_cast<unsigned long long>(number));
    return text.data();
}

/// Debug information of a bundle is kept beside it, or beside its executable.
std::vector<std::string> debugFilesOf(const std::vector<LoadedImage> &images) {
    std::vector<std::string> files;
    for (const LoadedImage &image : images)
        for (auto folder = image.file; folder != folder.parent_path();
             folder = folder.parent_path())
            if (folder.extension() == ".bundle")
                files.push_back(folder.string() + ".dSYM");
    return files;
}

std::string lineOf(const llvm::DILineInfo &info) {
    return info.FileName == llvm::DILineInfo::BadString || info.Line == 0
               ? ""
               : info.FileName + ':' + std::to_string(info.Line);
}

/// The function that has a frame, and the line that was reached, which may be of another one.
std::string inWords(const llvm::DIInliningInfo &info) {
    const llvm::DILineInfo &inner = info.getFrame(0);
    const llvm::DILineInfo &outer = info.getFrame(info.getNumberOfFrames() - 1);
    std::string text = outer.FunctionName == llvm::DILineInfo::BadString
                           ? "a function without a name"
                           : outer.FunctionName;
    const std::string line = lineOf(inner);
    const std::string from = lineOf(outer);
    if (!line.empty())
        text += " (" + line + (from.empty() || from == line ? "" : ", from " + from) + ')';
    return text;
}

} // namespace

std::optional<std::uintptr_t> wordAt(std::uintptr_t address) {
    std::uintptr_t word = 0;
    iovec here{.iov_base = &word, .iov_len = sizeof word};
    iovec there{.iov_base = reinterpret_cast<void *>(address), .iov_len = sizeof word};
    return process_vm_readv(getpid(), &here, 1, &there, 1, 0) == sizeof word ? std::optional(word)
                                                                             : std::nullopt;
}

std::vector<std::uintptr_t> backtrace(const ucontext_t &context) {
    const Registers registers = registersOf(context);
    Walk walk{.start = registers.instruction};
    if (walk.start != 0)
        _Unwind_Backtrace(take, &walk);
    return walk.found.size() > 1 ? walk.found : byFramePointers(registers);
}

std::string placeInWords(std::uintptr_t address, const std::vector<LoadedImage> &images) {
    const auto place = placeOf(address, images);
    if (!place)
        return hexadecimal(address) + ", where no code is";
    std::string where =
        std::filesystem::path(place->file).filename().string() + '+' + hexadecimal(place->offset);

    llvm::symbolize::LLVMSymbolizer::Options options;
    options.DefaultArch = processor::name;
    options.DsymHints = debugFilesOf(images);
    static llvm::symbolize::LLVMSymbolizer symbolizer(options);
    auto inlined = symbolizer.symbolizeInlinedCode(
        place->file, {place->offset, llvm::object::SectionedAddress::UndefSection});
    if (!inlined) {
        llvm::consumeError(inlined.takeError());
        return where;
    }
    return inlined->getNumberOfFrames() == 0 ? where : where + ": " + inWords(*inlined);
}

} // namespace crash
