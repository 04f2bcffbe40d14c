// Programs of the host's language: whatever the text, it is refused or run to an end, the stack and
// the memory last, and nothing is left behind. Text that begins with an ASCII character is a
// program as it is; of other inputs each byte is a word.

#include "FuzzedPlugin.h"

#include "host/core/Core.h"
#include "host/memory/Heap.h"
#include "host/program/Session.h"

#include <any>
#include <array>
#include <cctype>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using namespace host;

constexpr std::array<std::string_view, 119> words{"\n",
                                                  "\n",
                                                  "\n",
                                                  "\n",
                                                  "(",
                                                  ")",
                                                  ",",
                                                  ".",
                                                  "=",
                                                  "<>",
                                                  "<",
                                                  ">=",
                                                  "+",
                                                  "-",
                                                  "*",
                                                  "/",
                                                  "\\",
                                                  "^",
                                                  "Mod",
                                                  "And",
                                                  "Or",
                                                  "Xor",
                                                  "Not",
                                                  "Is",
                                                  "IsA",
                                                  "Dim",
                                                  "As",
                                                  "New",
                                                  "Const",
                                                  "ReDim",
                                                  "If",
                                                  "Then",
                                                  "ElseIf",
                                                  "Else",
                                                  "End If",
                                                  "For",
                                                  "Each",
                                                  "In",
                                                  "To",
                                                  "DownTo",
                                                  "Step",
                                                  "Next",
                                                  "While",
                                                  "Wend",
                                                  "Exit",
                                                  "Sub",
                                                  "Function",
                                                  "End Sub",
                                                  "End Function",
                                                  "Return",
                                                  "Try",
                                                  "Catch",
                                                  "Finally",
                                                  "End Try",
                                                  "Raise",
                                                  "Print",
                                                  "Assert",
                                                  "Nil",
                                                  "True",
                                                  "False",
                                                  "0",
                                                  "1",
                                                  "2",
                                                  "-1",
                                                  "9223372036854775807",
                                                  "18446744073709551615",
                                                  "1.5",
                                                  "1e308",
                                                  "&hFF",
                                                  "\"\"",
                                                  "\"text\"",
                                                  "\"\xC3\xBC\"",
                                                  "a",
                                                  "b",
                                                  "c",
                                                  "f",
                                                  "a()",
                                                  "Integer",
                                                  "String",
                                                  "Double",
                                                  "Boolean",
                                                  "Variant",
                                                  "UInt64",
                                                  "Int32",
                                                  "Single",
                                                  "Date",
                                                  "Dictionary",
                                                  "MemoryBlock",
                                                  "FolderItem",
                                                  "RuntimeException",
                                                  "NilObjectException",
                                                  "NSProcessInfoZKT",
                                                  "NSProcessInfoActivityZKT",
                                                  "processInfo",
                                                  "environment",
                                                  "arguments",
                                                  "argument",
                                                  "processName",
                                                  "beginActivity",
                                                  "endActivity",
                                                  "Reason",
                                                  "Options",
                                                  "Value",
                                                  "HasKey",
                                                  "Keys",
                                                  "Values",
                                                  "Count",
                                                  "Lookup",
                                                  "Byte",
                                                  "Size",
                                                  "Year",
                                                  "Append",
                                                  "Insert",
                                                  "Remove",
                                                  "Sort",
                                                  "Array",
                                                  "Split",
                                                  "Join",
                                                  "Mid"};

std::string programIn(const std::uint8_t *data, std::size_t size) {
    if (size == 0 || data[0] < 0x80)
        return {reinterpret_cast<const char *>(data), size};
    std::string text;
    for (std::size_t i = 1; i < size; ++i)
        text += std::string(words[data[i] % words.size()]) + ' ';
    return text;
}

/// Who writes a pointer of his own gets what it points to.
bool writesPointers(std::string text) {
    for (char &c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text.find("handle") != std::string::npos;
}

/// What a program leaves in circles.
void breakCircles() {
    Heap &heap = Core::current().heap;
    std::vector<ObjectHandle> handles;
    for (const Object *object : heap.liveObjects())
        handles.push_back(object->handle());
    for (ObjectHandle handle : handles)
        if (Object *object = heap.find(handle); object != nullptr && object->life == Life::alive)
            const std::any held = std::exchange(object->payload, std::any{});
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string text = programIn(data, size);
    if (writesPointers(text))
        return 0;
    plugin().host.setMemoryBlockLimit(1 << 16);
    const bool isFile = size % 2 == 0;
    try {
        program::Session session(plugin().host, isFile ? program::Form::file : program::Form::typed,
                                 {.print = [](std::string_view) {}, .steps = 2000});
        if (session.load(text).errors.empty()) {
            session.run();
            session.finish();
        }
    } catch (const program::OutOfSteps &) {
        plugin().host.takePendingException();
    }
    breakCircles();
    plugin().requireCleanHost();
    return 0;
}
