// The type codes that @encode gives, for a look at the compiled text.

#import <Foundation/Foundation.h>

extern const char *const typeCodes[];
const char *const typeCodes[] = {
    "type codes:",    @encode(BOOL),    @encode(NSRect),     @encode(NSSize),
    @encode(NSPoint), @encode(NSRange), "end of type codes",
};
