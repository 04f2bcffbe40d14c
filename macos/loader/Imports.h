#pragma once

#include "macos/loader/ImagePlan.h"
#include "macos/loader/Mapping.h"

#include <functional>

namespace macho {

/// The address of a symbol that some other image exports; null when there is none.
using ImportFinder = std::function<void *(const Import &)>;

/// Fills every slot of the image that holds an import. `mapping` has been rebased. Throws one
/// LoadError that lists all imports that have to be there and are not.
void bindImports(const ImagePlan &plan, Mapping &mapping, const ImportFinder &find);

} // namespace macho
