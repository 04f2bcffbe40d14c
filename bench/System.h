#pragma once

#include "host/image/Image.h"

#import <Foundation/Foundation.h>

#include <cstddef>
#include <cstdint>

// What benchmarks ask of Linux and of macOS, each in its own way.

/// Bytes that this process has allocated and not freed.
std::ptrdiff_t allocatedBytes();

/// Sends the first message to the object in the field, and the second one to its answer; a sender
/// of one message takes no notice of the second.
using Sender = std::uint64_t(const id *field, SEL first, SEL second);

/// How compiled code in an image of some format sends.
struct Sends {
    Sender *one;
    Sender *two;
    id (*message)(id object, SEL selector);
};
Sends sendsOf(host::ImageFormat format);

/// The function that compiled code of this program calls for a message.
IMP calledFor(id object, SEL selector);
