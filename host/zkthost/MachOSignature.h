#pragma once

#include "host/zkthost/ImageFacts.h"

#include <string_view>

namespace zkthost {

/// Of the bytes that a Mach-O file keeps its signature in. Throws InputError when they end early.
SignatureFact signatureOf(std::string_view bytes);

} // namespace zkthost
