#include "GetterBench.h"

#include "System.h"

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>

#include <array>
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
using benchmark::RegisterBenchmark;
using benchmark::State;

namespace {

using Getter = std::uint64_t(host::ObjectHandle, std::intptr_t);

struct Scalar {
    const char *name;
    const char *firstSelector;
    const char *secondSelector; // sent to the answer of the first, if any
};

constexpr std::array scalars{
    Scalar{"processIdentifier", "processIdentifier", nullptr},
    Scalar{"processorCount", "processorCount", nullptr},
    Scalar{"physicalMemory", "physicalMemory", nullptr},
    Scalar{"operatingSystem", "operatingSystem", nullptr},
    Scalar{"argumentsCount", "arguments", "count"},
};

Ratio registerScalar(host::Host &host, host::ImageFormat format, const Scalar &property) {
    const std::string getterName = std::string(property.name) + ": getter";
    const std::string sendsName = std::string(property.name) + ": sends alone";
    const bool isMachO = format == host::ImageFormat::machO;
    const host::ObjectRef instance = host.callShared("NSProcessInfoZKT", "processInfo").object();
    auto *getter = reinterpret_cast<Getter *>(host.getterOf("NSProcessInfoZKT", property.name));
    const Sends sends = sendsOf(format);
    Sender *sender = property.secondSelector == nullptr ? sends.one : sends.two;

    RegisterBenchmark(getterName.c_str(), [=](State &state) {
        for (auto _ : state)
            DoNotOptimize(getter(instance.handle(), 0));
    });
    RegisterBenchmark(sendsName.c_str(), [=, &host](State &state) {
        const id *field = static_cast<const id *>(host.dataOf(instance));
        SEL first = sel_registerName(property.firstSelector);
        SEL second = property.secondSelector != nullptr ? sel_registerName(property.secondSelector)
                                                        : nullptr;
        for (auto _ : state)
            DoNotOptimize(sender(field, first, second));
    });
    return {.what = getterName + " / the sends that it needs",
            .benchmark = getterName,
            .baseline = sendsName,
            .atMost = isMachO ? 0 : 1.05};
}

template <class Function>
Function *service(host::Host &host, const char *name) {
    return reinterpret_cast<Function *>(host.services().entry(name));
}

// What a string getter cannot do without: the send, the length, the bytes, the host's own building.
void registerBareString(host::Host &host, host::ImageFormat format) {
    auto *build = service<host::StringHandle(const char *, std::int32_t)>(host, "REALBuildString");
    auto *setEncoding =
        service<void(host::StringHandle, std::uint32_t)>(host, "REALSetStringEncoding");
    auto *unlock = service<void(host::StringHandle)>(host, "REALUnlockString");
    const auto send = sendsOf(format).message;
    RegisterBenchmark("string of 40 characters: sends and services alone", [=](State &state) {
        FixedName *object = [[FixedName alloc] init];
        for (auto _ : state) {
            auto string = (CFStringRef)send(object, @selector(hostName));
            char buffer[601];
            DoNotOptimize(CFStringGetLength(string));
            CFStringGetCString(string, buffer, 600, kCFStringEncodingUTF8);
            auto *built = build(buffer, static_cast<std::int32_t>(std::strlen(buffer)));
            setEncoding(built, kCFStringEncodingUTF8);
            unlock(built);
        }
        [object release];
    });
}

Ratio registerString(host::Host &host, host::ImageFormat format) {
    registerBareString(host, format);
    auto *getter = reinterpret_cast<host::StringHandle (*)(host::ObjectHandle, std::intptr_t)>(
        host.getterOf("NSProcessInfoZKT", "hostName"));
    auto *unlock = service<void(host::StringHandle)>(host, "REALUnlockString");
    RegisterBenchmark("string of 40 characters: getter", [=, &host](State &state) {
        FixedName *object = [[FixedName alloc] init];
        const host::ObjectRef instance = host.newInstance("NSProcessInfoZKT");
        host.set(instance, "Handle", reinterpret_cast<long long>(object));
        for (auto _ : state)
            unlock(getter(instance.handle(), 0));
        host.set(instance, "Handle", 0);
        [object release];
    });
    return {.what = "string getter / length, getCString and the host's building",
            .benchmark = "string of 40 characters: getter",
            .baseline = "string of 40 characters: sends and services alone",
            .atMost = 1.1};
}

void sendByLibffi(State &state) {
    NSProcessInfo *object = [NSProcessInfo processInfo];
    SEL selector = @selector(processorCount);
    ffi_type *types[] = {&ffi_type_pointer, &ffi_type_pointer};
    ffi_cif cif;
    ffi_prep_cif(&cif, FFI_DEFAULT_ABI, 2, &ffi_type_uint64, types);
    void *arguments[] = {&object, static_cast<void *>(&selector)};
    for (auto _ : state) {
        ffi_arg result = 0;
        ffi_call(&cif, FFI_FN(calledFor(object, selector)), &result, arguments);
        DoNotOptimize(result);
    }
}

void sendByInvocation(State &state) {
    NSProcessInfo *object = [NSProcessInfo processInfo];
    SEL selector = @selector(processorCount);
    NSInvocation *invocation =
        [NSInvocation invocationWithMethodSignature:[object methodSignatureForSelector:selector]];
    [invocation setTarget:object];
    [invocation setSelector:selector];
    for (auto _ : state) {
        [invocation invoke];
        NSUInteger result = 0;
        [invocation getReturnValue:&result];
        DoNotOptimize(result);
    }
}

} // namespace

std::vector<Ratio> registerGetters(host::Host &host, host::ImageFormat format) {
    std::vector<Ratio> ratios{registerString(host, format)};
    for (const Scalar &property : scalars)
        ratios.push_back(registerScalar(host, format, property));
    return ratios;
}

std::vector<Ratio> registerOtherWaysToSend() {
    RegisterBenchmark("processorCount: compiled send", [](State &state) {
        NSProcessInfo *object = [NSProcessInfo processInfo];
        for (auto _ : state)
            DoNotOptimize([object processorCount]);
    });
    RegisterBenchmark("processorCount: libffi", sendByLibffi);
    RegisterBenchmark("processorCount: NSInvocation", sendByInvocation);
    constexpr const char *compiled = "processorCount: compiled send";
    return {
        {.what = "getter / compiled send",
         .benchmark = "processorCount: getter",
         .baseline = compiled},
        {.what = "libffi / compiled send",
         .benchmark = "processorCount: libffi",
         .baseline = compiled},
        {.what = "NSInvocation / compiled send",
         .benchmark = "processorCount: NSInvocation",
         .baseline = compiled},
    };
}
