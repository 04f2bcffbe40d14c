#pragma once

#include <string>

struct SoakOptions {
    std::string image;   ///< macOS bundle or Linux object
    std::string picture; ///< SVG file to write; empty: none
    long operations = 1'000'000;
    long seconds = 0; ///< at most so long; 0: no limit
};

/// Does the operations and prints what the process held meanwhile. Gives the exit status: 1 when
/// something grew or the plug-in misbehaved, 2 when it was too short for a judgement. Throws
/// host::ImageError.
int soak(const SoakOptions &options);
