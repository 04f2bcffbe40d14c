#import "StandInString.h"

#include <algorithm>

namespace {

void requireRange(NSRange range, std::size_t length) {
    if (range.location > length || range.length > length - range.location) {
        [NSException raise:NSRangeException
                    format:@"range {%lu, %lu} outside the string of %lu units", range.location,
                           range.length, length];
    }
}

} // namespace

@implementation StandInString

- (NSUInteger)length {
    return text.size();
}

- (unichar)characterAtIndex:(NSUInteger)index {
    requireRange(NSMakeRange(index, 1), text.size());
    return text[index];
}

- (void)getCharacters:(unichar *)buffer range:(NSRange)range {
    requireRange(range, text.size());
    std::copy_n(text.begin() + static_cast<std::ptrdiff_t>(range.location), range.length, buffer);
}

- (void)replaceCharactersInRange:(NSRange)range withString:(NSString *)string {
    requireRange(range, text.size());
    std::u16string units([string length], u'\0');
    [string getCharacters:reinterpret_cast<unichar *>(units.data())
                    range:NSMakeRange(0, units.size())];
    text.replace(range.location, range.length, units);
}

- (id)copyWithZone:(NSZone *)zone {
    StandInString *copy = [[StandInString allocWithZone:zone] init];
    copy->text = text;
    return copy;
}

- (id)mutableCopyWithZone:(NSZone *)zone {
    return [self copyWithZone:zone];
}

@end
