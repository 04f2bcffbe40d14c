#pragma once

#import "DataDouble.h"
#include "LoadedPlugin.h"
#include "OwnObject.h"
#include "host/classes/Inspect.h"

#include <array>
#include <string>
#include <vector>

using Lines = std::vector<std::string>;

/// The least size that takes the host class's constructor.
inline constexpr std::int64_t leastLargeSize = 0x7FFFFFFF;

inline constexpr const char *dataPointerMethod = "Operator_Convert() As Ptr";

/// "MemoryBlock#1"
inline std::string block(int number) {
    return "MemoryBlock#" + std::to_string(number);
}

/// The trace of a data pointer's look-up through a scratch block: "pointer" or "nil" was found.
inline Lines loadingFromScratch(int scratch, const std::string &found) {
    return {"newMemoryBlock(4) = " + block(scratch),
            "REALLoadObjectMethod(" + block(scratch) + ", \"" + dataPointerMethod +
                "\") = " + found,
            "REALUnlockObject(" + block(scratch) + ")"};
}

inline std::string outOfMemoryMessage(std::int64_t size) {
    return "Failed to allocate a memoryblock with " + std::to_string(size) + " bytes in size.";
}

/// The calls that raise that message, by the numbers of the exception object and of its message.
inline Lines raisingOutOfMemory(std::int64_t size, int number, int string = 1) {
    const std::string text = "String#" + std::to_string(string);
    const std::string exception = "OutOfMemoryException#" + std::to_string(number);
    const std::string message = outOfMemoryMessage(size);
    return {"REALBuildString(\"" + message + "\", " + std::to_string(message.size()) +
                ") = " + text,
            "REALSetStringEncoding(" + text + ", 0x00000600)",
            "PluginNewInstance(\"OutOfMemoryException\") = " + exception,
            "REALSetPropValueString(" + exception + ", \"Message\", " + text + ") = true",
            "REALSetPropValueInteger(" + exception + ", \"ErrorNumber\", 0) = true",
            "RuntimeRaiseException(" + exception + ")",
            "REALUnlockObject(" + exception + ")",
            "REALUnlockString(" + text + ")"};
}

/// All of them, one behind the other.
template <class... Parts>
Lines inOrder(Parts... parts) {
    Lines all;
    const auto add = [&](const Lines &part) { all.insert(all.end(), part.begin(), part.end()); };
    (add(parts), ...);
    return all;
}

/// A host and the image's function that makes its memory blocks from data.
struct MemoryBlockScene : LoadedPlugin {
    host::ObjectRef convert(NSData *source) { return host::ObjectRef::adopt(convert_(source)); }
    /// Of the data double, with this length and bytes that lie somewhere.
    host::ObjectRef convertSize(std::int64_t size) {
        data->pointer = byte.data();
        data->size = static_cast<unsigned long>(size);
        return convert(data);
    }
    /// The calls without the messages to the data double.
    [[nodiscard]] Lines hostCalls() const {
        Lines lines = host.calls();
        std::erase_if(lines, [](const std::string &line) { return line.starts_with("[data "); });
        return lines;
    }
    void expectOutOfMemory(std::int64_t size) {
        const auto raised = host.takePendingException();
        ASSERT_TRUE(raised);
        EXPECT_EQ(raised->className, "OutOfMemoryException");
        EXPECT_EQ(raised->message, outOfMemoryMessage(size));
        EXPECT_EQ(raised->errorNumber, 0);
    }
    void hideDataPointerMethod() { host.hideMethod(dataPointerMethod); }

    OwnObject<DataDouble> data;
    std::array<unsigned char, 16> byte{};

private:
    host::ObjectHandle (*const convert_)(NSData *) =
        imageFunction<host::ObjectHandle(NSData *)>(image, "NSDataRB");
};
