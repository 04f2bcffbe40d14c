#import "CocoaText.h"

#import <Foundation/Foundation.h>

/// Answers what every string has to answer, from its own units.
@interface UnitString : NSString {
@public
    std::u16string units;
}
@end

@implementation UnitString

- (NSUInteger)length {
    return units.size();
}

- (unichar)characterAtIndex:(NSUInteger)index {
    return units.at(index);
}

- (void)getCharacters:(unichar *)buffer range:(NSRange)range {
    units.copy(reinterpret_cast<char16_t *>(buffer), range.length, range.location);
}

@end

CocoaString::CocoaString(std::u16string units) {
    UnitString *const string = [[UnitString alloc] init];
    string->units = std::move(units);
    string_ = (CFStringRef)string;
}
