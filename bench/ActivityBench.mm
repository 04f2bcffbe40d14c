#include "ActivityBench.h"

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>

using benchmark::State;

namespace {

constexpr const char *viaPlugin = "activity: begin and end";
constexpr const char *alone = "activity: sends and services alone";
constexpr std::int64_t options = 0xFF;

template <class Signature>
Signature *service(host::Host &host, const char *name) {
    return reinterpret_cast<Signature *>(host.services().entry(name));
}

void beginAndEnd(State &state, host::Host &host) {
    using Begin = host::ObjectHandle(host::ObjectHandle, std::int64_t, host::StringHandle);
    using End = void(host::ObjectHandle, host::ObjectHandle);
    auto *begin = reinterpret_cast<Begin *>(host.methodOf("NSProcessInfoZKT", "beginActivity"));
    auto *end = reinterpret_cast<End *>(host.methodOf("NSProcessInfoZKT", "endActivity"));
    auto *unlock = service<void(host::ObjectHandle)>(host, "REALUnlockObject");
    const host::ObjectRef instance = host.callShared("NSProcessInfoZKT", "processInfo").object();
    const host::StringRef reason = host.makeString("a reason of some length");
    for (auto _ : state) {
        NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
        host::ObjectHandle activity = begin(instance, options, reason);
        end(instance, activity);
        unlock(activity);
        [pool release];
    }
}

void sendsAndServices(State &state, host::Host &host) {
    auto *newInstance = service<host::ObjectHandle(const char *)>(host, "PluginNewInstance");
    auto *unlock = service<void(host::ObjectHandle)>(host, "REALUnlockObject");
    auto *encodingOf = service<std::uint32_t(host::StringHandle)>(host, "REALGetStringEncoding");
    auto *cfString =
        service<CFStringRef(host::StringHandle, std::int32_t)>(host, "REALGetStringCFString");
    auto *lockString = service<void(host::StringHandle)>(host, "REALLockString");
    auto *unlockString = service<void(host::StringHandle)>(host, "REALUnlockString");
    const host::StringRef reason = host.makeString("a reason of some length");
    for (auto _ : state) {
        NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
        NSProcessInfo *info = [NSProcessInfo processInfo];
        benchmark::DoNotOptimize(
            [info respondsToSelector:@selector(beginActivityWithOptions:reason:)]);
        host::ObjectHandle activity = newInstance("NSProcessInfoActivityZKT");
        benchmark::DoNotOptimize(encodingOf(reason));
        auto *text = (NSString *)cfString(reason, 0);
        [text autorelease];
        id token = [[[NSProcessInfo processInfo] beginActivityWithOptions:options
                                                                   reason:text] retain];
        lockString(reason);

        benchmark::DoNotOptimize(
            [[NSProcessInfo processInfo] respondsToSelector:@selector(endActivity:)]);
        [[NSProcessInfo processInfo] endActivity:token];
        [token release];
        unlock(activity);
        unlockString(reason);
        [pool release];
    }
}

} // namespace

std::vector<Ratio> registerActivities(host::Host &host, host::ImageFormat format) {
    benchmark::RegisterBenchmark(viaPlugin, [&](State &state) { beginAndEnd(state, host); });
    benchmark::RegisterBenchmark(alone, [&](State &state) { sendsAndServices(state, host); });
    return {{.what = "begin and end of an activity / sends and services",
             .benchmark = viaPlugin,
             .baseline = alone,
             .atMost = format == host::ImageFormat::elf ? 1.1 : 0}};
}
