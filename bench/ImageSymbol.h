#pragma once

#include "host/image/Image.h"

/// A function or variable of the image by its demangled name; throws host::ImageError without it.
template <class Symbol>
Symbol *imageSymbol(const host::Image &image, const char *name) {
    if (void *found = image.symbolDemangled(name))
        return reinterpret_cast<Symbol *>(found);
    throw host::ImageError(image.file(), std::string("no symbol ") + name);
}
