#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

/// What came of tests, as the XML that services of continuous integration read.
class JUnitReport {
public:
    /// A test that has ended; its name is GoogleTest's, "Suite.Name".
    void addPassed(std::string_view test, double seconds);
    void addSkipped(std::string_view test, double seconds);
    /// The output is what the test printed, as it is: bytes that XML cannot hold are replaced.
    void addFailed(std::string_view test, double seconds, std::string_view how,
                   std::string_view output);

    /// Makes the file and the folders that it lies in. Throws std::runtime_error that names a file
    /// that cannot be written.
    void write(const std::filesystem::path &file, std::string_view label, double seconds) const;

private:
    void add(std::string_view test, double seconds, std::string_view inside);

    std::string cases_;
    std::size_t tests_ = 0, failed_ = 0, skipped_ = 0;
};
