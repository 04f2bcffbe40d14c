#pragma once

#include "RatioReporter.h"

#include <functional>
#include <string>
#include <vector>

/// The command line of a benchmark program: --image=FILE, and Google Benchmark's own options.
/// Measures the image; the result is the program's exit code.
class BenchmarkProgram {
public:
    using Measure = std::function<bool(const BenchmarkProgram &)>;

    /// Runs measure, which says whether everything was within its limits.
    static int run(int argc, char **argv, const char *description, const Measure &measure);

    [[nodiscard]] const std::string &image() const { return image_; }

    /// Runs the benchmarks that are registered and prints the ratios. False when one is above its
    /// limit.
    [[nodiscard]] bool runBenchmarks(std::vector<Ratio> ratios) const;

private:
    std::string image_;
    std::vector<std::string> options_;
};
