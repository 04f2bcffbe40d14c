#include "GetterBench.h"

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>

#include <cstring>
#include <ffi.h>

/// Stands behind an instance; its name is a string of 40 ASCII characters.
@interface FixedName : NSObject
- (NSString *)hostName;
@end

@implementation FixedName
- (NSString *)hostName {
    return @"the-name-of-a-host-that-is-40-long.local";
}
@end

using benchmark::DoNotOptimize;
using benchmark::State;

static NSProcessInfo *info() {
    NSProcessInfo *shared = [NSProcessInfo processInfo];
    DoNotOptimize(shared);
    return shared;
}

template <class Send>
static void registerSend(const std::string &name, Send send) {
    benchmark::RegisterBenchmark(name.c_str(), [send](State &state) {
        NSProcessInfo *object = info();
        for (auto _ : state)
            DoNotOptimize(send(object));
    });
}

std::vector<Ratio> registerBaselines() {
    registerSend("processIdentifier: message send",
                 [](NSProcessInfo *o) { return [o processIdentifier]; });
    registerSend("processorCount: message send",
                 [](NSProcessInfo *o) { return [o processorCount]; });
    registerSend("physicalMemory: message send",
                 [](NSProcessInfo *o) { return [o physicalMemory]; });
    registerSend("operatingSystem: message send",
                 [](NSProcessInfo *o) { return [o operatingSystem]; });
    registerSend("argumentsCount: two message sends",
                 [](NSProcessInfo *o) { return [[o arguments] count]; });

    benchmark::RegisterBenchmark("processIdentifier: libffi", [](State &state) {
        NSProcessInfo *object = info();
        SEL selector = @selector(processIdentifier);
        ffi_type *types[] = {&ffi_type_pointer, &ffi_type_pointer};
        ffi_cif cif;
        ffi_prep_cif(&cif, FFI_DEFAULT_ABI, 2, &ffi_type_sint32, types);
        void *arguments[] = {&object, &selector};
        for (auto _ : state) {
            ffi_arg result = 0;
            ffi_call(&cif, FFI_FN([object methodForSelector:selector]), &result, arguments);
            DoNotOptimize(result);
        }
    });
    benchmark::RegisterBenchmark("processIdentifier: NSInvocation", [](State &state) {
        NSProcessInfo *object = info();
        SEL selector = @selector(processIdentifier);
        NSInvocation *invocation = [NSInvocation
            invocationWithMethodSignature:[object methodSignatureForSelector:selector]];
        [invocation setTarget:object];
        [invocation setSelector:selector];
        for (auto _ : state) {
            [invocation invoke];
            int result = 0;
            [invocation getReturnValue:&result];
            DoNotOptimize(result);
        }
    });
    return {
        {.what = "libffi making the call",
         .benchmark = "processIdentifier: libffi",
         .baseline = "processIdentifier: message send"},
        {.what = "NSInvocation making the call",
         .benchmark = "processIdentifier: NSInvocation",
         .baseline = "processIdentifier: message send"},
    };
}

// What a string getter cannot do without: the send, the length, the bytes, the host's own building.
static void registerBareString(host::Host &host) {
    using Build = host::StringHandle(const char *, std::int32_t);
    using SetEncoding = void(host::StringHandle, std::uint32_t);
    using Unlock = void(host::StringHandle);
    auto *build = reinterpret_cast<Build *>(host.services().entry("REALBuildString"));
    auto *setEncoding =
        reinterpret_cast<SetEncoding *>(host.services().entry("REALSetStringEncoding"));
    auto *unlock = reinterpret_cast<Unlock *>(host.services().entry("REALUnlockString"));
    benchmark::RegisterBenchmark("string of 40 characters: Foundation and host", [=](State &state) {
        FixedName *object = [[FixedName alloc] init];
        for (auto _ : state) {
            auto string = (CFStringRef)[object hostName];
            char buffer[601];
            DoNotOptimize(CFStringGetLength(string));
            CFStringGetCString(string, buffer, 600, kCFStringEncodingUTF8);
            auto built = build(buffer, static_cast<std::int32_t>(std::strlen(buffer)));
            setEncoding(built, kCFStringEncodingUTF8);
            unlock(built);
        }
        [object release];
    });
}

// A getter of the image for a string of 40 characters, against the same without the plug-in.
static Ratio registerString(host::Host &host) {
    registerBareString(host);
    using Getter = host::StringHandle(host::ObjectHandle, std::intptr_t);
    using Unlock = void(host::StringHandle);
    auto *getter = reinterpret_cast<Getter *>(host.getterOf("NSProcessInfoZKT", "hostName"));
    auto *unlock = reinterpret_cast<Unlock *>(host.services().entry("REALUnlockString"));
    benchmark::RegisterBenchmark("string of 40 characters: getter", [=, &host](State &state) {
        FixedName *object = [[FixedName alloc] init];
        const host::ObjectRef instance = host.newInstance("NSProcessInfoZKT");
        host.set(instance, "Handle", reinterpret_cast<std::int64_t>(object));
        for (auto _ : state)
            unlock(getter(instance.handle(), 0));
        host.set(instance, "Handle", 0);
        [object release];
    });
    return {.what = "string getter / length, getCString and the host's building",
            .benchmark = "string of 40 characters: getter",
            .baseline = "string of 40 characters: Foundation and host",
            .atMost = 1.1};
}

std::vector<Ratio> registerGetters(host::Host &host, const std::string &image) {
    // The objects live as long as the benchmarks: until the program ends.
    static std::vector<host::ObjectRef> kept;
    const host::ObjectRef instance = host.callShared("NSProcessInfoZKT", "processInfo").object();
    kept.push_back(instance);

    struct Getter {
        const char *property;
        const char *baseline;
    };
    static constexpr Getter getters[] = {
        {"processIdentifier", "processIdentifier: message send"},
        {"processorCount", "processorCount: message send"},
        {"physicalMemory", "physicalMemory: message send"},
        {"operatingSystem", "operatingSystem: message send"},
        {"argumentsCount", "argumentsCount: two message sends"},
    };
    std::vector<Ratio> ratios{registerString(host)};
    for (const Getter &getter : getters) {
        using Function = std::int64_t(host::ObjectHandle, std::intptr_t);
        auto *function =
            reinterpret_cast<Function *>(host.getterOf("NSProcessInfoZKT", getter.property));
        const std::string name = std::string(getter.property) + ": getter";
        benchmark::RegisterBenchmark(name.c_str(), [=](State &state) {
            for (auto _ : state)
                DoNotOptimize(function(instance.handle(), 0));
        });
        ratios.push_back({.what = name + " / message send",
                          .benchmark = name,
                          .baseline = getter.baseline,
                          .atMost = 1.05});
    }
    return ratios;
}
