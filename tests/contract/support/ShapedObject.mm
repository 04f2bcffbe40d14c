#import "ShapedObject.h"

#include "TraceLines.h"

#include <objc/runtime.h>

#include <algorithm>
#include <utility>

std::function<void(std::string_view)> refusingTo(std::string message) {
    return [message = std::move(message)](std::string_view received) {
        if (received == message)
            [[NSException exceptionWithName:@"Refused"
                                     reason:[NSString stringWithUTF8String:message.c_str()]
                                   userInfo:nil] raise];
    };
}

@implementation ShapedObject

static void receive(ShapedObject *self, std::string_view message) {
    noteInTrace('[' + std::string(message) + ']');
    if (self->onMessage)
        self->onMessage(message);
}

- (BOOL)isKindOfClass:(Class)wanted {
    const std::string name = class_getName(wanted);
    receive(self, "isKindOfClass:" + name);
    return kinds.contains(name);
}

- (BOOL)respondsToSelector:(SEL)selector {
    const std::string name = sel_getName(selector);
    receive(self, "respondsToSelector:" + name);
    return name == "_cfTypeID" ? !types.empty() : [super respondsToSelector:selector];
}

- (CFTypeID)_cfTypeID {
    receive(self, "_cfTypeID");
    return types.at(std::min(typesAsked++, types.size() - 1));
}

- (Class)class {
    receive(self, "class");
    return itsClass ? *itsClass : [super class];
}

- (id)retain {
    receive(self, "retain");
    return [super retain];
}

@end
