#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

/// A claim: one benchmark costs at most so many times what another one does in the same run.
struct Ratio {
    std::string what; // as a reader is told
    std::string benchmark;
    std::string baseline;
    double atMost = 0; // 0: only shown
    double times = 1;  // how often the baseline is taken
};

/// Prints the best time of each benchmark's repetitions, and then the ratios of these: what else
/// the machine does can only make a repetition slower.
class RatioReporter : public benchmark::BenchmarkReporter {
public:
    explicit RatioReporter(std::vector<Ratio> ratios) : ratios_(std::move(ratios)) {}

    bool ReportContext(const Context &context) override;
    void ReportRuns(const std::vector<Run> &runs) override;
    void Finalize() override;

    /// False when a ratio was above its limit.
    [[nodiscard]] bool allWithinLimits() const { return allWithinLimits_; }

private:
    /// In nanoseconds; 0 when it was not run.
    [[nodiscard]] double best(const std::string &benchmark) const;

    std::vector<Ratio> ratios_;
    std::vector<std::string> order_;
    std::map<std::string, std::vector<double>> times_;
    bool allWithinLimits_ = true;
};
