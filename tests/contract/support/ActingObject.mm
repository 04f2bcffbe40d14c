#import "ActingObject.h"

#import <Foundation/Foundation.h>

#include <cstdint>
#include <cstdlib>
#include <utility>

@interface ActingObject : NSObject {
@public
    std::function<void()> action;
}
@end

@implementation ActingObject

- (std::int64_t)thermalState {
    action();
    return 7;
}

- (NSString *)hostName {
    action();
    return @"seven";
}

- (int)processIdentifier {
    action();
    return 7;
}

- (double)systemUptime {
    action();
    return 7.0;
}

- (NSArray *)arguments {
    action();
    return [NSArray arrayWithObject:@"seven"];
}

- (void)disableAutomaticTermination:(NSString *)reason {
    action();
}

@end

ActingScene::ActingScene(std::function<void()> action, host::Siblings siblings)
    : LoadedPlugin{{.siblings = siblings}}, info{host.newInstance(processInfoClass)} {
    ActingObject *object = [[ActingObject alloc] init];
    object->action = std::move(action);
    setHandle(host, info, object);
    host.clearTrace();
}

void raiseNSException(const char *name, const char *reason) {
    [[NSException exceptionWithName:[NSString stringWithUTF8String:name]
                             reason:[NSString stringWithUTF8String:reason]
                           userInfo:nil] raise];
    std::abort();
}
