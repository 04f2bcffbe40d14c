// Results of fewer than 32 bits. Callers that were compiled for macOS take them from a register
// that the callee has widened to 32, and on arm64 rely on it; compilers for Linux do not widen
// them. So functions with such results are defined with these types, under Apple's names.

#pragma once

#include <cstdint>

namespace standin {

using WideBoolean = std::uint32_t;
using WideOSErr = std::int32_t;

} // namespace standin
