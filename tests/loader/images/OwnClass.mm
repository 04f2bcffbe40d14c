#import <Foundation/Foundation.h>

@interface OwnClass : NSObject
@end

@implementation OwnClass
@end
