#import "ProcessInfoDouble.h"

static std::string question(SEL selector) {
    return "respondsToSelector:" + std::string([NSStringFromSelector(selector) UTF8String]);
}

@implementation ProcessInfoDouble

// Every message is recorded, and then raises or acts if the double was told to.
static void record(ProcessInfoDouble *self, SEL selector) {
    self->received.emplace_back([NSStringFromSelector(selector) UTF8String]);
    if (self->answers.raising != nil)
        [self->answers.raising raise];
    if (self->answers.acting)
        self->answers.acting();
}

- (id)retain {
    received.emplace_back("retain");
    return [super retain];
}

- (oneway void)release {
    received.emplace_back("release");
    [super release];
}

- (BOOL)respondsToSelector:(SEL)selector {
    received.push_back(question(selector));
    return [super respondsToSelector:selector];
}

- (std::int64_t)thermalState {
    record(self, _cmd);
    return answers.thermalState;
}

- (NSString *)operatingSystemVersionString {
    record(self, _cmd);
    return answers.string;
}

- (NSString *)globallyUniqueString {
    record(self, _cmd);
    return answers.string;
}

- (NSString *)hostName {
    record(self, _cmd);
    return answers.string;
}

- (NSString *)processName {
    record(self, _cmd);
    return answers.string;
}

- (NSString *)operatingSystemName {
    record(self, _cmd);
    return answers.string;
}

- (NSDictionary *)environment {
    record(self, _cmd);
    return answers.environment;
}

- (int)processIdentifier {
    record(self, _cmd);
    return answers.processIdentifier;
}

- (std::uint64_t)operatingSystem {
    record(self, _cmd);
    return answers.operatingSystem;
}

- (std::uint64_t)activeProcessorCount {
    record(self, _cmd);
    return answers.activeProcessorCount;
}

- (std::uint64_t)processorCount {
    record(self, _cmd);
    return answers.processorCount;
}

- (NSArray *)arguments {
    record(self, _cmd);
    return answers.arguments;
}

- (std::uint64_t)physicalMemory {
    record(self, _cmd);
    return answers.physicalMemory;
}

- (double)systemUptime {
    record(self, _cmd);
    return answers.systemUptime;
}

- (signed char)automaticTerminationSupportEnabled {
    record(self, _cmd);
    return answers.automaticTerminationSupportEnabled;
}

- (void)disableAutomaticTermination:(NSString *)reason {
    record(self, _cmd);
}

@end

@implementation DumbObject

- (BOOL)respondsToSelector:(SEL)selector {
    received.push_back(question(selector));
    return [super respondsToSelector:selector];
}

@end
