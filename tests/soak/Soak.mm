// A million mixed operations on an image, with what the process holds meanwhile.

#include "Soak.h"

#include "Plot.h"

#include "host/Host.h"
#include "host/core/Cocoa.h"
#include "macos/standin/StandIn.h"

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <random>
#include <unistd.h>

/// Stands behind "Handle": its environment is whatever shall be converted, and every other property
/// raises.
@interface SoakProcess : NSObject {
@public
    NSDictionary *contents;
}
@end

@implementation SoakProcess
- (NSDictionary *)environment {
    return contents;
}
- (NSString *)hostName {
    [NSException raise:@"SoakException" format:@"as planned"];
    return nil;
}
@end

namespace {

constexpr const char *infoClass = "NSProcessInfoZKT";
constexpr const char *properties[] = {
    "thermalState",
    "operatingSystemVersionString",
    "globallyUniqueString",
    "hostName",
    "processName",
    "operatingSystemName",
    "environment",
    "processIdentifier",
    "operatingSystem",
    "processorCount",
    "activeProcessorCount",
    "argumentsCount",
    "physicalMemory",
    "systemUptime",
    "automaticTerminationSupportEnabled",
};

NSArray *mixedObjects(int seed) {
    NSNumber *number = [NSNumber numberWithInt:seed];
    return @[
        number,
        @(seed / 3.0),
        (id)kCFBooleanTrue,
        [NSNull null],
        @"text",
        [NSDate dateWithTimeIntervalSinceReferenceDate:seed * 1e6],
        [NSData dataWithBytes:"some bytes" length:10],
        [NSURL fileURLWithPath:@"/tmp"],
        [NSURL URLWithString:@"http://example.invalid/"],
        [NSSet setWithObject:number],
        @{@"inner" : @{@"innermost" : number}},
    ];
}

NSDictionary *mixedContents() {
    NSMutableDictionary *result = [NSMutableDictionary dictionary];
    for (int i = 0; i < 20; ++i)
        [result setObject:mixedObjects(i) forKey:[NSString stringWithFormat:@"key %d", i]];
    return result;
}

/// What the operations work on.
class Program {
public:
    explicit Program(host::Host &host)
        : host_(host), info_(host.callShared(infoClass, "processInfo").object()),
          double_([[SoakProcess alloc] init]), contents_([mixedContents() retain]) {
        double_->contents = contents_;
    }
    ~Program() {
        [double_ release];
        [contents_ release];
    }
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    void readProperty() { host_.get(info_, properties[below(std::size(properties))]); }
    void rename() {
        const std::string name(1 + below(200), 'n');
        host_.set(info_, "processName", host::Value(std::string_view(name)));
    }
    void readArguments() {
        host_.call(info_, "arguments");
        host_.call(info_, "argument", {static_cast<int>(below(3))}); // the last is out of range
    }
    void act() {
        const host::Outcome activity =
            host_.call(info_, "beginActivity", {0xFF, "soaking the plug-in"});
        if (below(2) == 0) // else the destructor ends it
            host_.call(info_, "endActivity", {activity.value});
    }
    void terminateNot() {
        host_.call(info_, "disableSuddenTermination");
        host_.call(info_, "enableSuddenTermination");
        host_.call(info_, "disableAutomaticTermination", {"soaking"});
        host_.call(info_, "enableAutomaticTermination", {"soaking"});
    }
    void makeAnother() { host_.newObject(infoClass); }
    void convert() { withDouble("environment"); }
    void raise() { withDouble("hostName"); }

    void step() {
        using Operation = void (Program::*)();
        // Conversions and fresh instances cost most and come seldom.
        constexpr std::array<Operation, 20> operations = {
            &Program::readProperty, &Program::readProperty,  &Program::readProperty,
            &Program::readProperty, &Program::readProperty,  &Program::readProperty,
            &Program::readProperty, &Program::readProperty,  &Program::rename,
            &Program::rename,       &Program::readArguments, &Program::readArguments,
            &Program::act,          &Program::act,           &Program::terminateNot,
            &Program::terminateNot, &Program::makeAnother,   &Program::raise,
            &Program::raise,        &Program::convert,
        };
        std::invoke(operations.at(below(operations.size())), this);
    }

private:
    void withDouble(const char *property) {
        const host::ObjectRef instance = host_.newInstance(infoClass);
        host_.set(instance, "Handle", reinterpret_cast<long long>(double_));
        host_.get(instance, property);
        host_.set(instance, "Handle", 0); // its destructor would release what nobody retained
    }
    std::size_t below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
    }

    host::Host &host_;
    host::ObjectRef info_;
    SoakProcess *double_;
    NSDictionary *contents_;
    // Every run does the same.
    std::mt19937 random_{20}; // NOLINT(bugprone-random-generator-seed)
};

double residentKilobytes() {
    std::ifstream statistics("/proc/self/statm");
    double pages = 0;
    statistics >> pages >> pages;
    return pages * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1024;
}

/// The middle value of a part of the series.
double median(std::vector<double> values, double from, double to) {
    const auto size = static_cast<double>(values.size());
    values = {values.begin() + static_cast<long>(from * size),
              values.begin() + static_cast<long>(to * size)};
    std::ranges::sort(values);
    return values.at(values.size() / 2);
}

struct Samples {
    Series memory{"resident memory, KiB", {}};
    Series objects{"live host objects", {}};
    Series strings{"live host strings", {}};
    long operations = 0;

    void take(const host::Host &host) {
        const host::Account account = host.account();
        memory.values.push_back(residentKilobytes());
        objects.values.push_back(static_cast<double>(account.liveObjects));
        strings.values.push_back(static_cast<double>(account.liveStrings));
    }
};

Samples samplesOf(host::Host &host, const SoakOptions &options) {
    using Clock = std::chrono::steady_clock;
    Program program(host);
    Samples samples;
    const auto begin = Clock::now();
    const auto isOver = [&] {
        return options.seconds > 0 && Clock::now() - begin > std::chrono::seconds(options.seconds);
    };
    const long interval = std::max(options.operations / 400, 1L);
    while (samples.operations < options.operations && !isOver()) {
        const host::AutoreleasePool pool;
        for (long i = 0; i < interval; ++i)
            program.step();
        samples.operations += interval;
        samples.take(host);
        if (isatty(STDERR_FILENO) != 0)
            std::fprintf(stderr, "\r%ld operations, %.0f KiB ", samples.operations,
                         samples.memory.values.back());
    }
    if (isatty(STDERR_FILENO) != 0)
        std::fputc('\n', stderr);
    return samples;
}

/// Whether the line is as high at the end as after the first quarter.
bool isFlat(const Series &series, double tolerance) {
    const double early = median(series.values, 0.25, 0.5);
    const double late = median(series.values, 0.75, 1);
    const bool flat = late <= early * (1 + tolerance);
    std::printf("%-24s %10.0f in the second quarter, %10.0f in the last: %s\n", series.name.c_str(),
                early, late, flat ? "flat" : "GROWS");
    return flat;
}

/// The plug-in logs every Cocoa exception; here they are too many to read.
void ignoreLogLine(NSString *) {}

} // namespace

int soak(const SoakOptions &options) {
    _NSLog_printf_handler = ignoreLogLine;
    host::Host host{{.tracing = false, .quarantineLimit = 64}};
    host.loadPlugin(options.image);
    const Samples samples = samplesOf(host, options);
    if (samples.memory.values.size() < 8) {
        std::fputs("soak: too short for a judgement\n", stderr);
        return 2;
    }
    if (!options.picture.empty()) {
        std::ofstream(options.picture) << plot("Mixed operations on " + options.image, "operations",
                                               static_cast<double>(samples.operations),
                                               {samples.memory, samples.objects, samples.strings});
        std::printf("%s\n", options.picture.c_str());
    }
    std::printf("%ld operations\n", samples.operations);
    // Allocators keep a little more or less of what was given back.
    bool flat = isFlat(samples.memory, 0.01);
    flat = isFlat(samples.objects, 0) && flat;
    flat = isFlat(samples.strings, 0) && flat;
    host.shutDown();
    std::printf("%s\n", describe(host.account()).c_str());
    return flat && host.violations().empty() ? 0 : 1;
}
