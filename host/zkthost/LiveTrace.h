#pragma once

#include "host/core/Trace.h"

namespace zkthost {

/// From now on each call of the host stands on standard error as it happens, in the words of
/// host/core/Trace.h. A call that other lines followed is repeated with its result when it returns.
void traceLive(host::Trace &trace);

} // namespace zkthost
