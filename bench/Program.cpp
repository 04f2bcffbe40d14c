#include "Program.h"

#include "host/core/Cocoa.h"
#include "host/image/Image.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <unistd.h>

// Not every unistd.h declares it.
// NOLINTNEXTLINE(readability-redundant-declaration)
extern "C" char **environ;

int BenchmarkProgram::run(int argc, char **argv, const char *description, const Measure &measure) {
    host::startFoundation(argc, argv, environ);
    const host::AutoreleasePool pool;

    BenchmarkProgram program;
    CLI::App app{description};
    app.add_option("--image", program.image_, "macOS bundle or Linux object")->required();
    app.allow_extras();
    CLI11_PARSE(app, argc, argv);

    // Benchmarks in random turns, so that a machine that slows down slows all of them down.
    program.options_ = {argv[0], "--benchmark_enable_random_interleaving=true",
                        "--benchmark_repetitions=15", "--benchmark_min_time=0.02"};
    std::ranges::copy(app.remaining(), std::back_inserter(program.options_));
    try {
        return measure(program) ? 0 : 1;
    } catch (const host::ImageError &error) {
        std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
        return 1;
    }
}

bool BenchmarkProgram::runBenchmarks(std::vector<Ratio> ratios) const {
    std::vector<std::string> options = options_;
    std::vector<char *> arguments;
    std::ranges::transform(options, std::back_inserter(arguments),
                           [](std::string &option) { return option.data(); });
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    RatioReporter reporter(std::move(ratios));
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.allWithinLimits();
}
