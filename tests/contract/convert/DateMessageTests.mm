// The messages behind a date.

#include "Caught.h"
#import "DateScene.h"
#include "MessageSpy.h"
#import "OwnObject.h"

#include <gmock/gmock.h>

using testing::Contains;
using testing::Not;

/// A date that does not say when it is.
@interface RefusingDate : NSDate
@end

@implementation RefusingDate

- (id)initWithTimeIntervalSinceReferenceDate:(NSTimeInterval)seconds {
    static_cast<void>(seconds);
    return self;
}
- (NSTimeInterval)timeIntervalSinceReferenceDate {
    [NSException raise:@"Refused" format:@"date"];
    return 0;
}

@end

// Asked before there is a calendar date that would stay behind.
TEST(DateLeftByAnException, OfItsOwnMakesNoCalendarDate) {
    const OwnObject<RefusingDate> date;
    ValueScene scene;
    const MessageSpy spy(scene.image, {});
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.convertObject(date); }), "Refused: date");
    EXPECT_EQ(MessageSpy::sent().back(), "timeIntervalSinceReferenceDate");
    EXPECT_THAT(MessageSpy::sent(), Not(Contains("alloc")));
}
