#include "Zkthost.h"

#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <sstream>
#include <stdexcept>

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

void PrintTo(const ImageFile &image, std::ostream *stream) {
    *stream << image.path;
}

const ImageFile &macosImage() {
    static const std::filesystem::path bundle = MACOS_BUNDLE;
    static const ImageFile image{.name = "macos",
                                 .format = "Mach-O",
                                 .path = bundle,
                                 .executable = bundle / "Contents/MacOS" / bundle.stem()};
    return image;
}

Finished zkthost(const std::vector<std::string> &arguments) {
    return runProgram(ZKTHOST_PROGRAM, arguments);
}

Finished zkthostReading(const std::filesystem::path &input,
                        const std::vector<std::string> &arguments) {
    return runProgram(ZKTHOST_PROGRAM, arguments, input);
}

Finished zkthost(std::vector<std::string> arguments, const std::filesystem::path &image) {
    arguments.insert(arguments.end(), {"--image", image.string()});
    return zkthost(arguments);
}

void expectSuccess(const Finished &run) {
    EXPECT_EQ(run.signal, 0);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
}

void expectBadInput(const Finished &run, std::string_view mentioned) {
    EXPECT_EQ(run.signal, 0);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, StartsWith("zkthost: "));
    EXPECT_THAT(run.err, HasSubstr(std::string(mentioned)));
    EXPECT_THAT(run.err, EndsWith("\n"));
    EXPECT_EQ(run.err.find("\nzkthost: "), std::string::npos) << "one message only: " << run.err;
}

std::vector<std::string> linesOf(std::string_view text) {
    std::istringstream stream{std::string(text)};
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

Folder::Folder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zkthost-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("no folder like " + pattern);
    path_ = pattern;
}

Folder::~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::filesystem::path Folder::write(std::string_view name, std::string_view bytes) const {
    const auto file = path_ / name;
    std::ofstream(file, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return file;
}

std::string readFile(const std::filesystem::path &file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw std::runtime_error("cannot read " + file.string());
    return {std::istreambuf_iterator<char>(stream), {}};
}
