// Runs a fuzzer's code without libFuzzer: on the files of a folder, then on random inputs.
//
//   replay FOLDER COUNT

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int *count, char ***arguments);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

int replayFiles(const std::filesystem::path &folder) {
    int count = 0;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
        ++count;
    }
    return count;
}

void tryRandomInputs(int count) {
    // Every run tries the same.
    std::mt19937 random{1}; // NOLINT(bugprone-random-generator-seed)
    for (int i = 0; i < count; ++i) {
        std::vector<std::uint8_t> bytes(random() % 400);
        for (std::uint8_t &byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
}

} // namespace

int main(int argc, char **argv) {
    LLVMFuzzerInitialize(&argc, &argv);
    if (argc != 3) {
        std::fputs("usage: replay FOLDER COUNT\n", stderr);
        return 2;
    }
    const int files = replayFiles(argv[1]);
    const int random = std::stoi(argv[2]);
    tryRandomInputs(random);
    std::printf("%d files and %d random inputs\n", files, random);
    return 0;
}
