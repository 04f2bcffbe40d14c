#import <Foundation/Foundation.h>

#include "macos/loader/ObjcRuntime.h"

namespace {

/// The flags that compilers give to strings of UTF-16 code units; all others have one byte per
/// character.
constexpr int utf16Flags = 0x7d0;

} // namespace

/// A literal of an image. The compiler lays it out, with these fields in this order; it is in the
/// image's data, lives as long as that, and is neither counted nor freed.
@interface MachOConstantString : NSString {
    int flags_;
    const void *text_;
    unsigned long length_;
}
@end

@implementation MachOConstantString

- (NSUInteger)length {
    return length_;
}

- (unichar)characterAtIndex:(NSUInteger)index {
    if (index >= length_)
        [NSException raise:NSRangeException
                    format:@"index %lu of a string of %lu characters", index, length_];
    return flags_ == utf16Flags ? static_cast<const unichar *>(text_)[index]
                                : static_cast<const unsigned char *>(text_)[index];
}

- (void)getCharacters:(unichar *)buffer range:(NSRange)range {
    if (range.location > length_ || range.length > length_ - range.location)
        [NSException raise:NSRangeException
                    format:@"%lu characters from %lu of a string of %lu", range.length,
                           range.location, length_];
    if (flags_ == utf16Flags) {
        memcpy(buffer, static_cast<const unichar *>(text_) + range.location,
               range.length * sizeof *buffer);
        return;
    }
    const auto *bytes = static_cast<const unsigned char *>(text_) + range.location;
    for (NSUInteger i = 0; i < range.length; ++i)
        buffer[i] = bytes[i];
}

- (id)copyWithZone:(NSZone *)zone {
    (void)zone;
    return self;
}

- (id)retain {
    return self;
}

- (oneway void)release {
}

- (id)autorelease {
    return self;
}

- (NSUInteger)retainCount {
    return NSUIntegerMax;
}

- (Class)classForCoder {
    return [NSString class];
}

#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wobjc-missing-super-calls" // there is nothing to free
- (void)dealloc {
}
#pragma clang diagnostic pop

@end

namespace macho::objc {

Object constantStringClass() {
    return [MachOConstantString class];
}

} // namespace macho::objc
