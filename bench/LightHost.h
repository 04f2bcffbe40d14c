#pragma once

#include <cstddef>

struct REALobjectStruct;

/// A host that keeps what it is given, counts references, and does nothing else: beside it the cost
/// of the plug-in shows, which the reference host's bookkeeping would hide. It knows Variants,
/// strings, arrays, Dictionary, memory blocks, folder items, Date and some of the family's classes.
namespace light_host {

/// Gives the entry point of a service by name; null for what conversions do not need.
void *service(const char *name);

void release(REALobjectStruct *object);

/// Objects and strings.
std::size_t live();

} // namespace light_host
