#include "host/core/Core.h"

#include "host/core/UsageError.h"

namespace host {

namespace {

Core *currentCore = nullptr;

} // namespace

Core &Core::current() {
    if (currentCore == nullptr)
        throw UsageError("there is no host in this process");
    return *currentCore;
}

Core *Core::currentIfAny() {
    return currentCore;
}

void Core::setCurrent(Core *core) {
    currentCore = core;
}

} // namespace host
