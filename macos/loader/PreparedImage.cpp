#include "macos/loader/PreparedImage.h"

#include "macos/loader/EhFrame.h"
#include "macos/loader/Messages.h"

#include <cstring>

namespace macho {
namespace {

/// References to selectors come as their names; from here on they are the runtime's selectors.
void registerSelectors(const ImagePlan &plan, Mapping &mapping,
                       const std::function<void *(const char *name)> &selector) {
    for (const auto slot : plan.selectorSlots) {
        const auto name = mapping.pointerAt(slot);
        if (!plan.isText(name - mapping.base()))
            Reporter(plan.source)
                .fail("selector reference at " + hex(slot), "its name lies outside the image");
        mapping.setPointer(
            slot, reinterpret_cast<std::uintptr_t>(selector(reinterpret_cast<const char *>(name))));
    }
}

std::vector<std::uintptr_t> readInitialisers(const ImagePlan &plan, const Mapping &mapping) {
    std::vector<std::uintptr_t> functions;
    functions.reserve(plan.initialiserOffsets.size() + plan.initialisers.size());
    for (const auto offset : plan.initialiserOffsets)
        functions.push_back(mapping.base() + offset);
    for (const auto slot : plan.initialisers) {
        functions.push_back(mapping.pointerAt(slot));
        if (!plan.isCode(functions.back() - mapping.base()))
            Reporter(plan.source).fail("initialiser at " + hex(slot), "it is no code of the image");
    }
    return functions;
}

} // namespace

PreparedImage::PreparedImage(const ImagePlan &plan, const Surroundings &surroundings)
    : mapping(plan) {
    mapping.rebase(plan.rebases);
    bindImports(plan, mapping, surroundings.findImport);
    registerSelectors(plan, mapping, surroundings.selector);
    initialisers = readInitialisers(plan, mapping);
    ehFrame = writeEhFrame(plan.unwind, mapping.base(),
                           [&](std::uint64_t slot) { return mapping.pointerAt(slot); });
    mapping.protect(plan);
}

} // namespace macho
