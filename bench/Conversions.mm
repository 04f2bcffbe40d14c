#include "Conversions.h"

#include "ImageSymbol.h"
#include "LightHost.h"
#include "System.h"

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>

@interface FirstGeneration : NSObject
@end
@implementation FirstGeneration
@end

@interface SecondGeneration : FirstGeneration
@end
@implementation SecondGeneration
@end

@interface ThirdGeneration : SecondGeneration
@end
@implementation ThirdGeneration
@end

using benchmark::State;

namespace {

struct Plugin {
    explicit Plugin(const host::Image &image)
        : convert(imageSymbol<Convert>(image, "NewVariantFromNSObject")),
          rowOf(imageSymbol<RowOf>(image, "classRowOf")),
          rowByMessages(imageSymbol<RowOf>(image, "(anonymous namespace)::firstRowByMessages")),
          isKindOfClass(
              imageSymbol<void *>(image, "(anonymous namespace)::isKindOfClassOfNSObject")) {
        light_host::release(convert(@"")); // looks up what is looked up once
    }

    using Convert = REALobjectStruct *(NSObject *);
    using RowOf = const void *(NSObject *);

    Convert *convert;
    RowOf *rowOf;
    RowOf *rowByMessages;
    void **isKindOfClass; // as the plug-in knows it of NSObject
};

/// While it lives, no object seems to answer isKindOfClass: as NSObject does.
class EveryRowByMessages {
public:
    explicit EveryRowByMessages(const Plugin &plugin)
        : plugin_(plugin), before_(*plugin.isKindOfClass) {
        *plugin_.isKindOfClass = nullptr;
    }
    ~EveryRowByMessages() { *plugin_.isKindOfClass = before_; }
    EveryRowByMessages(const EveryRowByMessages &) = delete;
    EveryRowByMessages &operator=(const EveryRowByMessages &) = delete;

private:
    const Plugin &plugin_;
    void *before_;
};

/// The property list as it is when read from a file.
NSDictionary *readFromFile(NSDictionary *list) {
    NSData *file = [NSPropertyListSerialization dataWithPropertyList:list
                                                              format:NSPropertyListXMLFormat_v1_0
                                                             options:0
                                                               error:nullptr];
    return [NSPropertyListSerialization propertyListWithData:file
                                                     options:NSPropertyListImmutable
                                                      format:nullptr
                                                       error:nullptr];
}

/// About 4,200 values in many small collections: a catalogue of 230 records.
NSDictionary *catalogue() {
    NSMutableDictionary *root = [NSMutableDictionary dictionary];
    for (int group = 0; group < 23; ++group) {
        NSMutableArray *records = [NSMutableArray array];
        for (int i = 0; i < 10; ++i)
            [records addObject:@{
                @"name" : [NSString stringWithFormat:@"Record %d of group %d", i, group],
                @"path" : [NSString
                    stringWithFormat:@"/Library/Application Support/Records/%d/%d.plist", group, i],
                @"summary" : @"Kept for the report at the end of the month, then archived.",
                @"size" : @(group * 4096 + i),
                @"ratio" : @(group / 7.0),
                @"enabled" : @(i % 2 != 0),
                @"tags" : @[ @"first", @"second", @"third" ],
            }];
        [root setObject:records forKey:[NSString stringWithFormat:@"Group %d", group]];
    }
    return readFromFile(root);
}

/// About 4,200 values in few collections: 40 series of 100 measurements.
NSDictionary *measurements() {
    NSMutableDictionary *root = [NSMutableDictionary dictionary];
    for (int series = 0; series < 40; ++series) {
        NSMutableArray *values = [NSMutableArray array];
        for (int i = 0; i < 100; ++i)
            [values addObject:@(20 + series / 8.0 + i / 1000.0)];
        NSString *name = [NSString stringWithFormat:@"Sensor %d", series];
        [root setObject:@{
            @"unit" : @"degrees",
            @"calibrated" : (id)kCFBooleanTrue,
            @"values" : values
        }
                 forKey:name];
    }
    return readFromFile(root);
}

NSDictionary *flatDictionary(int count) {
    NSMutableDictionary *result = [NSMutableDictionary dictionary];
    for (int i = 0; i < count; ++i)
        [result setObject:[NSNumber numberWithInt:i]
                   forKey:[NSString stringWithFormat:@"key %d", i]];
    return result;
}

void findRow(State &state, Class cls, Plugin::RowOf *rowOf) {
    NSObject *object = [[cls alloc] init];
    for (auto _ : state)
        benchmark::DoNotOptimize(rowOf(object));
    [object release];
}

void convert(State &state, const Plugin &plugin, NSObject *object) {
    for (auto _ : state) {
        NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
        light_host::release(plugin.convert(object));
        [pool release];
    }
}

void writeJson(State &state, NSObject *object) {
    for (auto _ : state) {
        NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
        benchmark::DoNotOptimize([NSJSONSerialization dataWithJSONObject:object
                                                                 options:NSJSONWritingOptions(0)
                                                                   error:nullptr]);
        [pool release];
    }
}

} // namespace

std::vector<Ratio> registerConversions(const host::Image &image) {
    const Plugin plugin(image);
    const auto add = [](const char *name, auto body) {
        benchmark::RegisterBenchmark(name, body);
        return name;
    };
    // Objects made here live as long as the program, like the host's pool.
    NSObject *series = [measurements() retain];
    NSObject *records = [catalogue() retain];
    NSObject *few = [flatDictionary(100) retain];
    NSObject *many = [flatDictionary(100'000) retain];
    NSMutableArray *thousand = [[NSMutableArray alloc] init];
    for (int i = 0; i < 1000; ++i)
        [thousand addObject:flatDictionary(100)];

    const auto addRow = [&](const char *name, Class cls, Plugin::RowOf *rowOf) {
        return add(name, [=](State &state) { findRow(state, cls, rowOf); });
    };
    const auto addConversion = [&](const char *name, NSObject *object) {
        return add(name, [=](State &state) { convert(state, plugin, object); });
    };
    const auto addSlowConversion = [&](const char *name, NSObject *object) {
        return add(name, [=](State &state) {
            const EveryRowByMessages scope(plugin);
            convert(state, plugin, object);
        });
    };
    const auto addJson = [&](const char *name, NSObject *object) {
        return add(name, [=](State &state) { writeJson(state, object); });
    };

    const char *walk = addRow("no row, NSObject: by its class", [NSObject class], plugin.rowOf);
    const char *messages =
        addRow("no row, NSObject: by messages", [NSObject class], plugin.rowByMessages);
    const char *deepWalk =
        addRow("no row, three classes deep: by its class", [ThirdGeneration class], plugin.rowOf);
    const char *deepMessages = addRow("no row, three classes deep: by messages",
                                      [ThirdGeneration class], plugin.rowByMessages);
    const char *fast = addConversion("measurements: conversion", series);
    const char *slow = addSlowConversion("measurements: conversion by messages", series);
    const char *json = addJson("measurements: as JSON", series);
    const char *recordsFast = addConversion("catalogue: conversion", records);
    const char *recordsSlow = addSlowConversion("catalogue: conversion by messages", records);
    const char *recordsJson = addJson("catalogue: as JSON", records);
    const char *small = addConversion("dictionary: 100 entries", few);
    const char *smallOnes = addConversion("dictionaries: 1,000 of 100 entries", thousand);
    const char *large = addConversion("dictionary: 100,000 entries", many);

    // The bundle's calls of the runtime take a way through the loader that a Mac does not have.
    const bool isBundle = image.format() == host::ImageFormat::machO;
    const auto limit = [=](double most) { return isBundle ? 0 : most; };
    return {
        {.what = "no row, NSObject: by its class / by messages",
         .benchmark = walk,
         .baseline = messages,
         .atMost = limit(0.01)},
        {.what = "no row, three classes deep: by its class / by messages",
         .benchmark = deepWalk,
         .baseline = deepMessages,
         .atMost = limit(0.01)},
        {.what = "4,200 measurements: conversion / by messages",
         .benchmark = fast,
         .baseline = slow,
         .atMost = 1 / 1.4},
        {.what = "4,200 measurements: conversion / as JSON",
         .benchmark = fast,
         .baseline = json,
         .atMost = 1.0 / 5},
        {.what = "catalogue of 230 records: conversion / by messages",
         .benchmark = recordsFast,
         .baseline = recordsSlow},
        {.what = "catalogue of 230 records: conversion / as JSON",
         .benchmark = recordsFast,
         .baseline = recordsJson},
        {.what = "100,000 entries of a Dictionary / 1,000 of 100 entries",
         .benchmark = large,
         .baseline = smallOnes,
         .atMost = 2.2},
        {.what = "100,000 entries of a Dictionary / 1,000 times the same 100",
         .benchmark = large,
         .baseline = small,
         .times = 1000},
    };
}

std::ptrdiff_t keptAfterConversions(const host::Image &image) {
    const Plugin plugin(image);
    NSArray *mixed = [NSArray
        arrayWithObjects:@"text", @1, @2.5, [NSDate date], [NSData dataWithBytes:"data" length:4],
                         [NSURL URLWithString:@"http://example.invalid/"], @[ @"nested" ],
                         @{@"key" : @"value"}, [NSNull null], (id)kCFBooleanTrue, nil];
    const auto convertAll = [&](int rounds) {
        for (int i = 0; i < rounds; ++i) {
            NSAutoreleasePool *pool = [[NSAutoreleasePool alloc] init];
            for (NSUInteger j = 0; j < [mixed count]; ++j)
                light_host::release(plugin.convert([mixed objectAtIndex:j]));
            [pool release];
        }
    };
    constexpr int million = 100'000; // rounds of ten
    convertAll(million / 100);       // what the platform and the host allocate once
    const auto before = allocatedBytes();
    convertAll(million);
    return allocatedBytes() - before;
}
