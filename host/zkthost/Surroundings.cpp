// Makes the command line and the environment UTF-8 before anything reads them. GNUstep gives up on
// other bytes while libraries start, long before main could catch that; on a Mac they do no harm.

namespace {

using Byte = unsigned char;

/// How many bytes a well-formed sequence that begins with this one has; 0 for none.
int sequenceLength(Byte first) {
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first < 0xE0)
        return 2;
    if (first >= 0xE0 && first < 0xF0)
        return 3;
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

bool isWellFormed(const Byte *sequence, int length) {
    for (int i = 1; i < length; ++i)
        if ((sequence[i] & 0xC0) != 0x80)
            return false;
    // Too long for what they say, surrogates, beyond Unicode.
    switch (sequence[0]) {
    case 0xE0:
        return sequence[1] >= 0xA0;
    case 0xED:
        return sequence[1] < 0xA0;
    case 0xF0:
        return sequence[1] >= 0x90;
    case 0xF4:
        return sequence[1] < 0x90;
    default:
        return length > 0;
    }
}

/// In place: libraries have not started, so nothing can be allocated, and the process's own copy is
/// what the system shows of it.
void makeUtf8(char *text) {
    auto *byte = reinterpret_cast<Byte *>(text);
    while (*byte != 0) {
        const int length = sequenceLength(*byte);
        if (isWellFormed(byte, length))
            byte += length;
        else
            *byte++ = '?';
    }
}

void makeSurroundingsUtf8(int /*argc*/, char **argv, char **environment) {
    for (; *argv != nullptr; ++argv)
        makeUtf8(*argv);
    for (; *environment != nullptr; ++environment)
        makeUtf8(*environment);
}

// Run by the dynamic linker before any library's own start.
[[gnu::section(".preinit_array"),
  gnu::used]] void (*const beforeLibraries)(int, char **, char **) = makeSurroundingsUtf8;

} // namespace
