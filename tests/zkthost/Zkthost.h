#pragma once

#include "ChildProcess.h"

#include <filesystem>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

/// An image of the plug-in that the program is tested with.
struct ImageFile {
    const char *name;
    const char *format; ///< as the report says it
    std::filesystem::path path;
    /// The file with the code, inside a bundle.
    std::filesystem::path executable;
};
void PrintTo(const ImageFile &image, std::ostream *stream);

const ImageFile &macosImage();
const ImageFile &linuxImage(); // on Linux
/// Those that this system runs.
std::vector<ImageFile> images();

/// Runs zkthost as a user does.
Finished zkthost(const std::vector<std::string> &arguments);
Finished zkthostReading(const std::filesystem::path &input,
                        const std::vector<std::string> &arguments);
/// The arguments, then --image and the file.
Finished zkthost(std::vector<std::string> arguments, const std::filesystem::path &image);

/// It did its work: exit status 0 and nothing on stderr.
void expectSuccess(const Finished &run);
/// It refused its input: exit status 2, nothing on stdout, and one message on stderr with this in
/// it.
void expectBadInput(const Finished &run, std::string_view mentioned);

std::vector<std::string> linesOf(std::string_view text);

/// A folder of its own for a test's files, removed at the end.
class Folder {
public:
    Folder();
    ~Folder();
    Folder(const Folder &) = delete;
    Folder &operator=(const Folder &) = delete;

    // NOLINTNEXTLINE(modernize-use-nodiscard): where the file is, is not always asked.
    std::filesystem::path write(std::string_view name, std::string_view bytes) const;
    [[nodiscard]] const std::filesystem::path &path() const { return path_; }

private:
    std::filesystem::path path_;
};

std::string readFile(const std::filesystem::path &file);
