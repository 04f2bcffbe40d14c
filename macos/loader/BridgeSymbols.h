#pragma once

#include <span>
#include <string_view>

namespace macho {

/// A symbol that images import and that this system has under another name, with another
/// behaviour, or not at all.
struct BridgeSymbol {
    std::string_view name; // without the leading underscore
    void *address;
};

/// libobjc's functions that compilers call on their own, and the message sends.
std::span<const BridgeSymbol> runtimeSymbols();

/// Personalities, catching and throwing, types of handlers.
std::span<const BridgeSymbol> exceptionSymbols();

/// What a C library has under different names.
std::span<const BridgeSymbol> systemSymbols();

/// What only images for this program's kind of processor need.
std::span<const BridgeSymbol> processorSymbols();

} // namespace macho
