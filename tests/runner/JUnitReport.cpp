#include "JUnitReport.h"

#include <fstream>
#include <stdexcept>

namespace {

/// As text between tags or in an attribute. Output need not be UTF-8, and XML has no way to write
/// most control characters: both become "?".
std::string escaped(std::string_view text) {
    std::string xml;
    for (const char each : text) {
        const auto byte = static_cast<unsigned char>(each);
        if (each == '&')
            xml += "&amp;";
        else if (each == '<')
            xml += "&lt;";
        else if (each == '>')
            xml += "&gt;";
        else if (each == '"')
            xml += "&quot;";
        else if (byte >= 0x7F || (byte < 0x20 && each != '\n' && each != '\t'))
            xml += '?';
        else
            xml += each;
    }
    return xml;
}

std::string attribute(std::string_view name, std::string_view value) {
    return ' ' + std::string(name) + "=\"" + escaped(value) + '"';
}

} // namespace

void JUnitReport::add(std::string_view test, double seconds, std::string_view inside) {
    ++tests_;
    const std::size_t point = test.find('.');
    cases_ += "  <testcase" + attribute("classname", test.substr(0, point)) +
              attribute("name", test.substr(point + 1)) +
              attribute("time", std::to_string(seconds));
    cases_ += inside.empty() ? "/>\n" : ">" + std::string(inside) + "</testcase>\n";
}

void JUnitReport::addPassed(std::string_view test, double seconds) {
    add(test, seconds, {});
}

void JUnitReport::addSkipped(std::string_view test, double seconds) {
    ++skipped_;
    add(test, seconds, "<skipped/>");
}

void JUnitReport::addFailed(std::string_view test, double seconds, std::string_view how,
                            std::string_view output) {
    ++failed_;
    add(test, seconds,
        "<failure" + attribute("message", how) + '>' + escaped(output) + "</failure>");
}

void JUnitReport::write(const std::filesystem::path &file, std::string_view label,
                        double seconds) const {
    std::error_code ignored; // the file cannot be opened then
    std::filesystem::create_directories(file.parent_path(), ignored);
    std::ofstream stream(file);
    stream << R"(<?xml version="1.0" encoding="UTF-8"?>)" << "\n<testsuite"
           << attribute("name", label) << attribute("tests", std::to_string(tests_))
           << attribute("failures", std::to_string(failed_))
           << attribute("skipped", std::to_string(skipped_))
           << attribute("time", std::to_string(seconds)) << ">\n"
           << cases_ << "</testsuite>\n";
    stream.close();
    if (!stream)
        throw std::runtime_error(file.string() + ": cannot be written");
}
