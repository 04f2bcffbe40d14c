// The programs in examples/: what they print is what stands beside them.

#include "Zkthost.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

namespace fs = std::filesystem;

namespace {

const fs::path sources = SOURCE_FOLDER;

std::vector<fs::path> programs() {
    std::vector<fs::path> result;
    for (const auto &entry : fs::directory_iterator(sources / "examples"))
        if (entry.path().extension() == ".bas")
            result.push_back(entry.path());
    std::ranges::sort(result);
    return result;
}

/// "*" stands for any text.
bool matches(std::string_view line, std::string_view pattern) {
    const std::size_t star = pattern.find('*');
    if (star == std::string_view::npos)
        return line == pattern;
    if (!line.starts_with(pattern.substr(0, star)))
        return false;
    for (std::size_t skipped = star; skipped <= line.size(); ++skipped)
        if (matches(line.substr(skipped), pattern.substr(star + 1)))
            return true;
    return false;
}

using Lines = std::vector<std::string>;

/// A line "..." stands for any number of lines.
bool match(Lines::const_iterator line, Lines::const_iterator end, Lines::const_iterator pattern,
           Lines::const_iterator patternEnd) {
    if (pattern == patternEnd)
        return line == end;
    if (*pattern != "...")
        return line != end && matches(*line, *pattern) &&
               match(line + 1, end, pattern + 1, patternEnd);
    for (;; ++line) {
        if (match(line, end, pattern + 1, patternEnd))
            return true;
        if (line == end)
            return false;
    }
}

bool showsAs(const std::string &text, const std::string &pattern) {
    const Lines lines = linesOf(text);
    const Lines patterns = linesOf(pattern);
    return match(lines.begin(), lines.end(), patterns.begin(), patterns.end());
}

std::string besides(fs::path program, const char *extension) {
    program.replace_extension(extension);
    return fs::exists(program) ? readFile(program) : "";
}

std::string nameOf(const fs::path &program) {
    std::string name = program.stem();
    std::ranges::replace(name, '-', '_');
    return name;
}

class Example : public testing::TestWithParam<std::tuple<ImageFile, fs::path>> {};

INSTANTIATE_TEST_SUITE_P(, Example,
                         testing::Combine(testing::ValuesIn(images()),
                                          testing::ValuesIn(programs())),
                         [](const auto &parameter) {
                             return std::string(std::get<0>(parameter.param).name) + "_" +
                                    nameOf(std::get<1>(parameter.param));
                         });

} // namespace

TEST_P(Example, PrintsWhatStandsBesideIt) {
    const auto &[image, program] = GetParam();
    std::vector<std::string> words{"run", "--image", image.path, program};
    std::ranges::copy(linesOf(besides(program, ".args")), std::back_inserter(words));
    const Finished finished = zkthost(words);
    EXPECT_EQ(finished.status, 0);
    EXPECT_PRED2(showsAs, finished.out, besides(program, ".out"));
    EXPECT_PRED2(showsAs, finished.err, besides(program, ".err"));
}

TEST(Examples, AreEightOrMore) {
    EXPECT_GE(programs().size(), 8U);
}

TEST(Examples, HaveTheReadmesSamplesWordForWord) {
    const std::string readme = readFile(sources / "README.md");
    const std::string opening = "```vb\n";
    std::size_t samples = 0;
    for (std::size_t at = readme.find(opening); at != std::string::npos;
         at = readme.find(opening, at)) {
        at += opening.size();
        const std::string sample = readme.substr(at, readme.find("```", at) - at);
        EXPECT_TRUE(std::ranges::any_of(programs(), [&](const fs::path &program) {
            return readFile(program) == sample;
        })) << sample;
        ++samples;
    }
    EXPECT_GE(samples, 1U);
}

TEST(ExamplePatterns, StandForTextAndLines) {
    EXPECT_TRUE(showsAs("a\nb\n", "a\nb\n"));
    EXPECT_FALSE(showsAs("a\nb\n", "a\n"));
    EXPECT_FALSE(showsAs("a\n", "a\nb\n"));
    EXPECT_TRUE(showsAs("a 12 b 3\n", "a * b *\n"));
    EXPECT_FALSE(showsAs("a 12 c\n", "a * b\n"));
    EXPECT_TRUE(showsAs("x\ny\nz\n", "...\ny\n...\n"));
    EXPECT_TRUE(showsAs("y\n", "...\ny\n...\n"));
    EXPECT_FALSE(showsAs("x\nz\n", "...\ny\n...\n"));
}
