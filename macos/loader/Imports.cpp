#include "macos/loader/Imports.h"

#include "macos/loader/Messages.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>

namespace macho {
namespace {

const NamedOffset *findExport(const ImagePlan &plan, std::string_view name) {
    const auto found = std::ranges::lower_bound(plan.exports, name, {}, &NamedOffset::name);
    return found != plan.exports.end() && found->name == name ? &*found : nullptr;
}

std::uintptr_t find(const ImagePlan &plan, const Mapping &mapping, const Import &import,
                    const ImportFinder &elsewhere) {
    if (import.scope != Scope::library)
        if (const auto *own = findExport(plan, import.name))
            return mapping.base() + own->offset;
    if (import.scope == Scope::ownImage)
        return 0;
    return reinterpret_cast<std::uintptr_t>(elsewhere(import));
}

} // namespace

void bindImports(const ImagePlan &plan, Mapping &mapping, const ImportFinder &elsewhere) {
    std::vector<std::uintptr_t> addresses;
    std::set<std::string> unresolved;
    for (const auto &import : plan.imports) {
        addresses.push_back(find(plan, mapping, import, elsewhere));
        if (addresses.back() == 0 && import.missing == Missing::isError)
            unresolved.insert(import.name + " (from " + import.library + ")");
    }
    if (!unresolved.empty()) {
        std::string list;
        for (const auto &line : unresolved)
            list += "\n  " + line;
        Reporter(plan.source)
            .fail(std::to_string(unresolved.size()) +
                  (unresolved.size() == 1 ? " symbol is" : " symbols are") +
                  " exported by nobody here:" + list);
    }
    for (const auto &bind : plan.binds) {
        const auto address = addresses[bind.import];
        if (address != 0)
            mapping.setPointer(bind.slot, address + static_cast<std::uintptr_t>(bind.addend));
        else if (plan.imports[bind.import].missing == Missing::isNull)
            mapping.setPointer(bind.slot, 0); // whatever the addend
    }
}

} // namespace macho
