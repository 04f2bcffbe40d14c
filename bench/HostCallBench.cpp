// What a host call costs through its wrapper: a load, a test and the call that it is anyway.

#include "Services.h"

#include "frame/HostServices.h"

#include <benchmark/benchmark.h>

static void bareIndirectCall(benchmark::State &state) {
    for (auto _ : state)
        bareEntryPoint(nullptr);
}
BENCHMARK(bareIndirectCall)->Name("host call: bare indirect call");

static void boundWrapper(benchmark::State &state) {
    hostResolver = [](const char *) { return reinterpret_cast<void *>(countingService); };
    for (auto _ : state)
        REALLockObject(nullptr);
}
BENCHMARK(boundWrapper)->Name("host call: bound wrapper");
