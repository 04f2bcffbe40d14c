#include "ActivityBench.h"
#include "AllocationSpy.h"
#include "ArgumentsBench.h"
#include "GetterBench.h"
#include "HostCallBench.h"
#include "Program.h"

#include "host/Host.h"

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

static bool measure(const BenchmarkProgram &program) {
    const int atStartUp = startUpAllocations(program.image());
    host::Host host{{.tracing = false, .quarantineLimit = 64}};
    auto &loaded = host.loadPlugin(program.image());

    std::vector<Ratio> ratios = registerHostCalls();
    std::ranges::copy(registerGetters(host, loaded.format()), std::back_inserter(ratios));
    std::ranges::copy(registerActivities(host, loaded.format()), std::back_inserter(ratios));
    std::ranges::copy(registerArguments(host), std::back_inserter(ratios));
    std::ranges::copy(registerOtherWaysToSend(), std::back_inserter(ratios));

    const bool within = program.runBenchmarks(std::move(ratios));
    std::printf("\nKept after 10 times 100,000 arguments were released: %td bytes\n",
                keptAfterArguments(host));
    std::printf("Allocations by the plug-in at start-up: %d\n", atStartUp);
    return within && atStartUp == 0;
}

// What is thrown ends the program and is named as it does.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char **argv) {
    return BenchmarkProgram::run(
        argc, argv, "What calls of the plug-in cost, as ratios to the bare platform", measure);
}
