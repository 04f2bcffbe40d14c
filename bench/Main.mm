#include "AllocationSpy.h"
#include "GetterBench.h"
#include "RatioReporter.h"

#include "host/Cocoa.h"
#include "host/Host.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <unistd.h>

// How often the image itself asks for memory until both its classes are registered.
static std::size_t startUpAllocations(const host::Image &image) {
    const host::Resolver resolver = [](const char *) {
        return reinterpret_cast<void *>(+[](void *) {}); // every service, doing nothing
    };
    const AllocationSpy spy(image);
    image.entryPoint()(resolver);
    return spy.sizes().size();
}

static int run(const std::string &image, std::vector<char *> benchmarkOptions) {
    host::Host host{{.tracing = false, .quarantineLimit = 64}};
    auto &loaded = host.loadPlugin(image);

    std::vector<Ratio> ratios{{.what = "host call: wrapper / bare indirect call",
                               .benchmark = "host call: bound wrapper",
                               .baseline = "host call: bare indirect call",
                               .atMost = 1.03}};
    for (auto *registerThem : {+[](host::Host &h) { return registerGetters(h); },
                               +[](host::Host &) { return registerBaselines(); }})
        std::ranges::move(registerThem(host), std::back_inserter(ratios));

    int count = static_cast<int>(benchmarkOptions.size());
    benchmark::Initialize(&count, benchmarkOptions.data());
    RatioReporter reporter(std::move(ratios));
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nAllocations by the plug-in at start-up: %zu\n", startUpAllocations(loaded));
    return reporter.allWithinLimits() ? 0 : 1;
}

int main(int argc, char **argv) {
    host::startFoundation(argc, argv, environ);
    const host::AutoreleasePool pool;

    CLI::App app{"What calls of the plug-in cost, as ratios to the bare platform"};
    std::string image;
    app.add_option("--image", image, "macOS bundle or Linux object")->required();
    app.allow_extras();
    CLI11_PARSE(app, argc, argv);

    // Benchmarks in random turns, so that a machine that slows down slows all of them down.
    std::vector<std::string> options{argv[0], "--benchmark_enable_random_interleaving=true",
                                     "--benchmark_repetitions=15", "--benchmark_min_time=0.02"};
    std::ranges::copy(app.remaining(), std::back_inserter(options));
    std::vector<char *> arguments;
    for (std::string &option : options)
        arguments.push_back(option.data());
    return run(image, std::move(arguments));
}
