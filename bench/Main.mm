#include "ActivityBench.h"
#include "AllocationSpy.h"
#include "ArgumentsBench.h"
#include "GetterBench.h"
#include "HostCallBench.h"
#include "RatioReporter.h"

#include "host/Cocoa.h"
#include "host/Host.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <sys/wait.h>
#include <unistd.h>

// How often the image itself asks for memory until both its classes are registered; -1 when that
// cannot be told. In a child process, because an image starts once.
static int startUpAllocations(const std::string &file) {
    const pid_t child = fork();
    if (child == 0) {
        host::Host host;
        const auto image = host::openImage(file);
        const AllocationSpy spy(*image);
        image->entryPoint()(host::Host::resolver());
        _exit(static_cast<int>(std::min<std::size_t>(spy.sizes().size(), 100)));
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

static int run(const std::string &image, std::vector<char *> benchmarkOptions) {
    const int atStartUp = startUpAllocations(image);
    host::Host host{{.tracing = false, .quarantineLimit = 64}};
    auto &loaded = host.loadPlugin(image);

    std::vector<Ratio> ratios = registerHostCalls();
    std::ranges::copy(registerGetters(host, loaded.format()), std::back_inserter(ratios));
    std::ranges::copy(registerActivities(host, loaded.format()), std::back_inserter(ratios));
    std::ranges::copy(registerArguments(host), std::back_inserter(ratios));
    std::ranges::copy(registerOtherWaysToSend(), std::back_inserter(ratios));

    int count = static_cast<int>(benchmarkOptions.size());
    benchmark::Initialize(&count, benchmarkOptions.data());
    RatioReporter reporter(std::move(ratios));
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nKept after 10 times 100,000 arguments were released: %td bytes\n",
                keptAfterArguments(host));
    std::printf("Allocations by the plug-in at start-up: %d\n", atStartUp);
    return reporter.allWithinLimits() && atStartUp == 0 ? 0 : 1;
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
