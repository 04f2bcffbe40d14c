#include "RatioReporter.h"

#include <algorithm>
#include <cstdio>

bool RatioReporter::ReportContext(const Context &) {
    return true;
}

void RatioReporter::ReportRuns(const std::vector<Run> &runs) {
    for (const Run &run : runs) {
        if (run.run_type != Run::RT_Iteration)
            continue;
        std::vector<double> &times = times_[run.run_name.function_name];
        if (times.empty())
            order_.push_back(run.run_name.function_name);
        times.push_back(run.GetAdjustedCPUTime());
    }
}

double RatioReporter::best(const std::string &benchmark) const {
    const auto found = times_.find(benchmark);
    return found == times_.end() ? 0 : std::ranges::min(found->second);
}

void RatioReporter::Finalize() {
    std::ranges::sort(order_);
    std::puts("\nBest CPU time of the repetitions, nanoseconds");
    for (const std::string &name : order_)
        std::printf("  %-58s %10.2f\n", name.c_str(), best(name));

    std::puts("\nRatios");
    for (const Ratio &ratio : ratios_) {
        const double baseline = ratio.times * best(ratio.baseline);
        const double time = best(ratio.benchmark);
        if (baseline == 0 || time == 0)
            continue;
        const double factor = time / baseline;
        std::printf("  %-58s %10.3f", ratio.what.c_str(), factor);
        if (ratio.atMost > 0) {
            const bool within = factor <= ratio.atMost;
            allWithinLimits_ = allWithinLimits_ && within;
            std::printf("   at most %.3g: %s", ratio.atMost, within ? "yes" : "NO");
        }
        std::putchar('\n');
    }
}
