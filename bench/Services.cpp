#include "Services.h"

static unsigned long calls = 0;

void countingService(REALobjectStruct *) {
    asm volatile("" : "+r"(calls)); // counted in memory each time
    ++calls;
}

void (*bareEntryPoint)(REALobjectStruct *) = countingService;
