#include "macos/loader/ProcessSymbols.h"

#include "macos/loader/BridgeSymbols.h"
#include "macos/loader/Exceptions.h"
#include "macos/loader/ObjcRuntime.h"

#include <string_view>
#include <unordered_map>

#include <dlfcn.h>

namespace macho {
namespace {

constexpr std::string_view classPrefix = "OBJC_CLASS_$_", metaclassPrefix = "OBJC_METACLASS_$_",
                           handlerTypePrefix = "OBJC_EHTYPE_$_", cxxTypePrefix = "_ZTI";

void *bridgeSymbol(std::string_view name) {
    static const auto symbols = [] {
        std::unordered_map<std::string_view, void *> all;
        for (const auto list :
             {processorSymbols(), runtimeSymbols(), exceptionSymbols(), systemSymbols()})
            for (const auto &[symbol, address] : list)
                all.emplace(symbol, address);
        return all;
    }();
    const auto found = symbols.find(name);
    return found == symbols.end() ? nullptr : found->second;
}

void *find(const std::string &name) {
    if (void *address = bridgeSymbol(name))
        return address;
    const std::string_view view(name);
    if (view.starts_with(classPrefix))
        return objc::classNamed(view.substr(classPrefix.size()));
    if (view.starts_with(metaclassPrefix))
        return objc::metaclassNamed(view.substr(metaclassPrefix.size()));
    if (view.starts_with(handlerTypePrefix)) {
        const auto className = view.substr(handlerTypePrefix.size());
        const auto cls = objc::classNamed(className);
        return cls == nullptr ? nullptr : handlerType(cls, className);
    }
    return dlsym(RTLD_DEFAULT, name.c_str());
}

bool isHandlerType(std::string_view name) {
    return name.starts_with(handlerTypePrefix) || name.starts_with(cxxTypePrefix);
}

} // namespace

ImportFinder processSymbols(const std::set<std::string, std::less<>> &withheld) {
    return [&withheld](const Import &import) -> void * {
        void *address = withheld.contains(import.name) ? nullptr : find(import.name);
        if (address == nullptr && import.missing == Missing::isNull && isHandlerType(import.name))
            return handlerTypeOfMissingClass();
        return address;
    };
}

} // namespace macho
