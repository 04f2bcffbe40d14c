#import "TracedObject.h"

#include "host/core/Text.h"

#include <utility>

std::string traced(NSString *text) {
    // With the zeroes that it may have.
    return text == nil ? "nil"
                       : host::inQuotes({[text UTF8String],
                                         [text lengthOfBytesUsingEncoding:NSUTF8StringEncoding]});
}

static std::string nameOf(id object) {
    if (object == nil)
        return "nil";
    if ([object isKindOfClass:[TracedObject class]])
        return static_cast<TracedObject *>(object)->name;
    return "object";
}

std::function<void(std::string_view)> refusing(std::string selector) {
    return [selector = std::move(selector)](std::string_view received) {
        if (received == selector)
            [[NSException exceptionWithName:@"Refused"
                                     reason:[NSString stringWithUTF8String:selector.c_str()]
                                   userInfo:nil] raise];
    };
}

@implementation TracedObject

// The line of a message, and what the test does then. Everything behind the selector is given.
static void receive(TracedObject *self, SEL selector, const std::string &arguments) {
    noteInTrace('[' + self->name + ' ' + arguments + ']');
    if (self->onMessage)
        self->onMessage([NSStringFromSelector(selector) UTF8String]);
}

static void receive(TracedObject *self, SEL selector) {
    receive(self, selector, [NSStringFromSelector(selector) UTF8String]);
}

- (id)retain {
    receive(self, _cmd);
    return retained ? *retained : [super retain];
}

- (oneway void)release {
    receive(self, _cmd);
    [super release];
}

- (id)autorelease {
    receive(self, _cmd);
    return [super autorelease];
}

- (BOOL)respondsToSelector:(SEL)selector {
    const std::string asked = [NSStringFromSelector(selector) UTF8String];
    receive(self, _cmd, "respondsToSelector:" + asked);
    return !unknown.contains(asked) && [super respondsToSelector:selector];
}

- (id)beginActivityWithOptions:(std::uint64_t)options reason:(NSString *)reason {
    receive(self, _cmd,
            "beginActivityWithOptions:" + std::to_string(static_cast<std::int64_t>(options)) +
                " reason:" + traced(reason));
    return activity;
}

- (void)endActivity:(id)ended {
    receive(self, _cmd, "endActivity:" + nameOf(ended));
}

- (void)disableSuddenTermination {
    receive(self, _cmd);
}

- (void)enableSuddenTermination {
    receive(self, _cmd);
}

- (void)disableAutomaticTermination:(NSString *)reason {
    receive(self, _cmd, "disableAutomaticTermination:" + traced(reason));
}

- (void)enableAutomaticTermination:(NSString *)reason {
    receive(self, _cmd, "enableAutomaticTermination:" + traced(reason));
}

- (void)setProcessName:(NSString *)newName {
    receive(self, _cmd, "setProcessName:" + traced(newName));
}

- (signed char)automaticTerminationSupportEnabled {
    receive(self, _cmd);
    return automaticTerminationSupportEnabled;
}

// Only the low byte counts: what callers leave in the rest of the register is their affair.
- (void)setAutomaticTerminationSupportEnabled:(signed char)enabled {
    receive(self, _cmd,
            "setAutomaticTerminationSupportEnabled:" +
                std::to_string(static_cast<unsigned char>(enabled)));
}

- (id)arguments {
    receive(self, _cmd);
    return arguments;
}

@end
