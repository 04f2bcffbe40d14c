#import <Foundation/Foundation.h>

@interface NSObject (OwnCategory)
- (int)ownMethod;
@end

@implementation NSObject (OwnCategory)
- (int)ownMethod {
    return 1;
}
@end
