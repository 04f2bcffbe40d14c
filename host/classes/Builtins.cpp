#include "host/classes/Builtins.h"

#include "host/classes/CallLine.h"
#include "host/core/Core.h"

namespace host {

namespace {

std::int64_t lengthInBytes(Core &core, StringHandle handle) {
    if (handle == nullptr)
        return 0;
    const String *string = core.heap.check(handle);
    return string == nullptr ? 0 : static_cast<std::int64_t>(string->bytes.size());
}

} // namespace

Method nativeMethod(const char *declaration, void *function) {
    return {.declaration = declaration, .parsed = parseMethod(declaration), .function = function};
}

void addBuiltinClasses(ClassTable &classes) {
    addVariantAndArray(classes);
    addExceptions(classes);
    addDictionary(classes);
    addDate(classes);
    addMemoryBlock(classes);
    addFolderItem(classes);
    // Global methods are called with their declared parameters alone.
    classes.addGlobal(
        nativeMethod("LenB(s As String) As Integer", hostMethod<"LenB", lengthInBytes>()));
    classes.addGlobal(trueFolderItemMethod());
}

} // namespace host
