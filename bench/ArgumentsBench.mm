#include "ArgumentsBench.h"

#include "System.h"

#import <Foundation/Foundation.h>

/// Stands behind an instance, with a command line of any length.
@interface LongCommandLine : NSObject {
@public
    NSArray *list;
}
- (NSArray *)arguments;
@end

@implementation LongCommandLine
- (NSArray *)arguments {
    return list;
}
- (void)dealloc {
    [list release];
    [super dealloc];
}
@end

using benchmark::State;

namespace {

LongCommandLine *newCommandLine(int count) {
    NSMutableArray *list = [[NSMutableArray alloc] init];
    for (int i = 0; i < count; ++i) {
        NSString *argument = [[NSString alloc] initWithFormat:@"argument-%06d", i];
        [list addObject:argument];
        [argument release];
    }
    LongCommandLine *object = [[LongCommandLine alloc] init];
    object->list = list;
    return object;
}

/// An instance whose command line has so many arguments, and "arguments" of it.
class Scene {
public:
    Scene(host::Host &host, int count)
        : host_(host), commandLine_(newCommandLine(count)),
          instance_(host.newInstance("NSProcessInfoZKT")),
          method_(reinterpret_cast<Method *>(host.methodOf("NSProcessInfoZKT", "arguments"))),
          unlock_(reinterpret_cast<Unlock *>(host.services().entry("REALUnlockObject"))) {
        host.set(instance_, "Handle", reinterpret_cast<long long>(commandLine_));
    }
    ~Scene() {
        host_.set(instance_, "Handle", 0);
        [commandLine_ release];
    }
    Scene(const Scene &) = delete;
    Scene &operator=(const Scene &) = delete;

    void makeAndRelease() const {
        NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
        unlock_(method_(instance_));
        [pool release];
    }

private:
    using Method = host::ObjectHandle(host::ObjectHandle);
    using Unlock = void(host::ObjectHandle);

    host::Host &host_;
    LongCommandLine *commandLine_;
    host::ObjectRef instance_;
    Method *method_;
    Unlock *unlock_;
};

void makeArguments(State &state, host::Host &host, int count) {
    const Scene scene(host, count);
    for (auto _ : state)
        scene.makeAndRelease();
}

} // namespace

std::vector<Ratio> registerArguments(host::Host &host) {
    constexpr const char *few = "arguments: 10,000 strings";
    constexpr const char *many = "arguments: 100,000 strings";
    benchmark::RegisterBenchmark(few, [&](State &state) { makeArguments(state, host, 10'000); });
    benchmark::RegisterBenchmark(many, [&](State &state) { makeArguments(state, host, 100'000); });
    return {{.what = "100,000 arguments / 10 times 10,000 arguments",
             .benchmark = many,
             .baseline = few,
             .atMost = 1.15,
             .times = 10}};
}

std::ptrdiff_t keptAfterArguments(host::Host &host) {
    const Scene scene(host, 100'000);
    scene.makeAndRelease(); // what the platform and the host allocate once
    const auto before = allocatedBytes();
    for (int i = 0; i < 10; ++i)
        scene.makeAndRelease();
    return allocatedBytes() - before;
}
