#include "Conversions.h"
#include "LightHost.h"
#include "LimitBench.h"
#include "Program.h"

#include "host/image/Image.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

static bool measure(const BenchmarkProgram &program) {
    const auto image = host::openImage(program.image());
    image->entryPoint()(light_host::service);

    std::vector<Ratio> ratios = registerLimits(*image);
    std::ranges::copy(registerConversions(*image), std::back_inserter(ratios));
    const bool within = program.runBenchmarks(std::move(ratios));
    std::printf("\nKept after 1,000,000 conversions were released: %td bytes\n",
                keptAfterConversions(*image));
    std::printf("Host objects and strings left: %zu\n", light_host::live());
    return within && light_host::live() == 0;
}

int main(int argc, char **argv) {
    return BenchmarkProgram::run(argc, argv, "What converting Cocoa objects costs", measure);
}
