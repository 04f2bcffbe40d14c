#include "Conversions.h"
#include "LightHost.h"
#include "Program.h"

#include "host/image/Image.h"

#include <cstdio>

static bool measure(const BenchmarkProgram &program) {
    const auto image = host::openImage(program.image());
    image->entryPoint()(light_host::service);

    const bool within = program.runBenchmarks(registerConversions(*image));
    std::printf("\nKept after 1,000,000 conversions were released: %td bytes\n",
                keptAfterConversions(*image));
    std::printf("Host objects and strings left: %zu\n", light_host::live());
    return within && light_host::live() == 0;
}

int main(int argc, char **argv) {
    return BenchmarkProgram::run(argc, argv, "What converting Cocoa objects costs", measure);
}
