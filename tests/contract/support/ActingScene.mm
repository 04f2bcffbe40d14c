#import "ActingScene.h"

#import "ProcessInfoDouble.h"

#include <cstdlib>
#include <utility>

ActingScene::ActingScene(std::function<void()> action, host::Siblings siblings)
    : LoadedPlugin{{.siblings = siblings}}, info{host.newInstance(processInfoClass)} {
    static NSArray *const arguments = [[NSArray alloc] initWithObjects:@"seven", nil];
    ProcessInfoDouble *object = [[ProcessInfoDouble alloc] init];
    object->answers = {.thermalState = 7,
                       .string = @"seven",
                       .processIdentifier = 7,
                       .systemUptime = 7,
                       .arguments = arguments,
                       .acting = std::move(action)};
    setHandle(host, info, object);
    host.clearTrace();
}

void raiseNSException(const char *name, const char *reason) {
    [[NSException exceptionWithName:[NSString stringWithUTF8String:name]
                             reason:[NSString stringWithUTF8String:reason]
                           userInfo:nil] raise];
    std::abort();
}
