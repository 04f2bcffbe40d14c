#include "HostCallBench.h"

#include "Services.h"

#include "frame/HostServices.h"

static void bareIndirectCall(benchmark::State &state) {
    for (auto _ : state)
        bareEntryPoint(nullptr);
}

static void boundWrapper(benchmark::State &state) {
    hostResolver = [](const char *) { return reinterpret_cast<void *>(countingService); };
    for (auto _ : state)
        REALLockObject(nullptr);
}

std::vector<Ratio> registerHostCalls() {
    benchmark::RegisterBenchmark("host call: bare indirect call", bareIndirectCall);
    benchmark::RegisterBenchmark("host call: bound wrapper", boundWrapper);
    return {{.what = "host call: wrapper / bare indirect call",
             .benchmark = "host call: bound wrapper",
             .baseline = "host call: bare indirect call",
             .atMost = 1.03}};
}
