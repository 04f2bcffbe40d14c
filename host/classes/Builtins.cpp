#include "host/classes/Builtins.h"

#include "host/Host.h"
#include "host/classes/CallLine.h"

namespace host {

namespace {

std::int64_t lengthInBytes(Host &host, StringHandle handle) {
    if (handle == nullptr)
        return 0;
    const String *string = host.heap().check(handle);
    return string == nullptr ? 0 : static_cast<std::int64_t>(string->bytes.size());
}

} // namespace

Method nativeMethod(const char *declaration, void *function) {
    return {.declaration = declaration, .parsed = parseMethod(declaration), .function = function};
}

void addBuiltinClasses(Host &host) {
    ClassTable &classes = host.classes();
    addVariantAndArray(classes);
    addExceptions(classes);
    addDictionary(classes);
    addDate(classes);
    addMemoryBlock(classes);
    addFolderItem(classes);
}

std::vector<Method> globalMethods() {
    return {nativeMethod("LenB(s As String) As Integer", hostMethod<"LenB", lengthInBytes>()),
            trueFolderItemMethod()};
}

} // namespace host
