#include "LimitBench.h"

#include "ImageSymbol.h"
#include "LightHost.h"
#include "PlainConversions.h"

#include "frame/HostServices.h"

#include <array>
#include <string>

using benchmark::State;

/// Stands behind an instance, with variables of its own.
@interface ManyVariables : NSObject {
@public
    NSDictionary *variables;
}
- (NSDictionary *)environment;
@end

@implementation ManyVariables
- (NSDictionary *)environment {
    return variables;
}
@end

namespace {

// Many at once, so that the pool hides nothing.
template <class Make>
void makeAndRelease(State &state, Make make) {
    constexpr int together = 64;
    while (state.KeepRunningBatch(together)) {
        NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
        for (int i = 0; i < together; ++i)
            light_host::release(make());
        [pool release];
    }
}

// A ratio of two ways to make the same.
template <class Make, class MakePlainly>
Ratio registerPair(const std::string &what, Make make, MakePlainly makePlainly, double atMost) {
    const std::string plain = what + ": plain";
    benchmark::RegisterBenchmark(what.c_str(), [=](State &state) { makeAndRelease(state, make); });
    benchmark::RegisterBenchmark(plain.c_str(),
                                 [=](State &state) { makeAndRelease(state, makePlainly); });
    return {.what = what + " / plain", .benchmark = what, .baseline = plain, .atMost = atMost};
}

/// An instance as far as the getter looks: a header, and the wrapped object.
struct Bound {
    std::array<std::byte, instanceDataOffset> header{};
    ManyVariables *wrapped;
};

REALobjectStruct *newBound(int count) {
    auto *const object = [[ManyVariables alloc] init];
    object->variables = [variables(count) retain];
    return reinterpret_cast<REALobjectStruct *>(new Bound{.wrapped = object});
}

} // namespace

std::vector<Ratio> registerLimits(const host::Image &image) {
    using Convert = REALobjectStruct *(NSObject *);
    using Getter = REALobjectStruct *(REALobjectStruct *, std::intptr_t);
    auto *const convert = imageSymbol<Convert>(image, "NewVariantFromNSObject");
    auto *const getter = imageSymbol<Getter>(image, "processinfo::environment");
    hostResolver = light_host::service; // of the plain functions' wrappers

    std::vector<Ratio> ratios;
    for (const PlainConversion &each : plainConversions())
        ratios.push_back(registerPair(
            each.what, [=] { return convert(each.object); },
            [=] { return each.convert(each.object); }, 0));

    // What is above 1 for each string: two questions to the runtime, whether objects of its class
    // answer as NSObject does, the guard around host strings, and calls between the plug-in's
    // files. The bundle's messages and calls of the runtime take a way through the loader, too,
    // that a Mac does not have.
    const double limit = image.format() == host::ImageFormat::elf ? 1.4 : 0;
    for (const auto &[what, count] : {std::pair{"environment of 100 variables", 100},
                                      std::pair{"environment of 5,000 variables", 5000}}) {
        REALobjectStruct *instance = newBound(count); // lives as long as the program
        ratios.push_back(registerPair(
            what, [=] { return getter(instance, 0); }, [=] { return plainEnvironment(instance); },
            limit));
    }
    return ratios;
}
