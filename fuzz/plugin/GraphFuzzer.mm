// Random graphs of Cocoa objects through the conversion, compared with what a walk of this
// program's own expects.

#include "FuzzedPlugin.h"

#include "host/classes/Inspect.h"
#include "host/core/Cocoa.h"

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>
#include <fuzzer/FuzzedDataProvider.h>
#include <sstream>

namespace {

constexpr int deepest = 6;

id newValue(FuzzedDataProvider &input, int depth);

NSString *text(FuzzedDataProvider &input) {
    const std::string bytes = input.ConsumeRandomLengthString(150);
    NSString *string = [[[NSString alloc] initWithBytes:bytes.data()
                                                 length:bytes.size()
                                               encoding:NSUTF8StringEncoding] autorelease];
    return string != nil ? string : @"?";
}

NSArray *array(FuzzedDataProvider &input, int depth) {
    NSMutableArray *result = [NSMutableArray array];
    for (int i = input.ConsumeIntegralInRange(0, 6); i > 0; --i)
        [result addObject:newValue(input, depth + 1)];
    return result;
}

NSDictionary *dictionary(FuzzedDataProvider &input, int depth) {
    NSMutableDictionary *result = [NSMutableDictionary dictionary];
    for (int i = input.ConsumeIntegralInRange(0, 6); i > 0; --i) {
        // Keys that stay apart as host strings, which end at the first U+0000.
        NSString *key = [NSString stringWithFormat:@"%d %@", i, text(input)];
        [result setObject:newValue(input, depth + 1) forKey:key];
    }
    return result;
}

/// Autoreleased.
id newValue(FuzzedDataProvider &input, int depth) {
    switch (input.ConsumeIntegralInRange(0, depth < deepest ? 11 : 8)) {
    case 0:
        return [NSNumber numberWithInt:input.ConsumeIntegral<int>()];
    case 1:
        return [NSNumber numberWithLongLong:input.ConsumeIntegral<long long>()];
    case 2:
        return [NSNumber numberWithDouble:input.ConsumeFloatingPoint<double>()];
    case 3:
        return (id)(input.ConsumeBool() ? kCFBooleanTrue : kCFBooleanFalse);
    case 4:
        return [NSNull null];
    case 5: {
        const auto bytes =
            input.ConsumeBytes<char>(input.ConsumeIntegralInRange<std::size_t>(0, 40));
        return [NSData dataWithBytes:bytes.data() length:bytes.size()];
    }
    case 6:
        return [[[NSObject alloc] init] autorelease]; // no host class
    case 7:
    case 8:
        return text(input);
    case 9:
        return array(input, depth);
    case 10:
        return [NSSet setWithArray:array(input, depth)];
    default:
        return dictionary(input, depth);
    }
}

void expect(std::ostream &tree, id object);

void expectAll(std::ostream &tree, NSArray *elements) {
    tree << '[';
    for (NSUInteger i = 0; i < [elements count]; ++i)
        expect(tree, [elements objectAtIndex:i]);
    tree << ']';
}

void expectText(std::ostream &tree, NSString *string) {
    // A host string ends at the first U+0000.
    const char *bytes = [string UTF8String];
    if (bytes == nullptr || *bytes == '\0')
        tree << "nil,";
    else
        tree << '"' << bytes << "\",";
}

/// What the object is to become, in this program's own notation.
void expect(std::ostream &tree, id object) {
    if (object == (id)kCFBooleanTrue || object == (id)kCFBooleanFalse) {
        tree << (object == (id)kCFBooleanTrue ? "true," : "false,");
    } else if ([object isKindOfClass:[NSString class]]) {
        expectText(tree, object);
    } else if ([object isKindOfClass:[NSNumber class]]) {
        if (*[object objCType] == 'd')
            tree << "real " << [object doubleValue] << ',';
        else
            tree << [object longLongValue] << ',';
    } else if ([object isKindOfClass:[NSData class]]) {
        if ([object length] == 0)
            tree << "nil,";
        else
            tree << "bytes "
                 << std::string(static_cast<const char *>([object bytes]), [object length]) << ',';
    } else if ([object isKindOfClass:[NSArray class]]) {
        expectAll(tree, object);
    } else if ([object isKindOfClass:[NSSet class]]) {
        expectAll(tree, [object allObjects]);
    } else if ([object isKindOfClass:[NSDictionary class]]) {
        tree << '{';
        NSArray *keys = [object allKeys];
        for (NSUInteger i = 0; i < [keys count]; ++i) {
            expect(tree, [keys objectAtIndex:i]);
            expect(tree, [object objectForKey:[keys objectAtIndex:i]]);
        }
        tree << '}';
    } else {
        tree << "nil,";
    }
}

void describeValue(std::ostream &tree, const host::Value &value);

void describeObject(std::ostream &tree, const host::ObjectRef &object) {
    const std::string className = plugin().host.className(object);
    if (className == "Dictionary") {
        tree << '{';
        for (const auto &[key, entry] : host::dictionaryEntries(object)) {
            describeValue(tree, key);
            describeValue(tree, entry);
        }
        tree << '}';
    } else if (className == "MemoryBlock") {
        tree << "bytes " << host::memoryBlockBytes(object) << ',';
    } else {
        tree << '[';
        for (const host::Value &element : host::arrayElements(object))
            describeValue(tree, element);
        tree << ']';
    }
}

/// What the host holds, in the same notation.
void describeValue(std::ostream &tree, const host::Value &value) {
    if (value.isNil())
        tree << "nil,";
    else if (std::holds_alternative<std::int64_t>(value))
        tree << value.integer() << ',';
    else if (std::holds_alternative<double>(value))
        tree << "real " << value.number() << ',';
    else if (std::holds_alternative<bool>(value))
        tree << (value.boolean() ? "true," : "false,");
    else if (std::holds_alternative<host::StringRef>(value))
        tree << '"' << value.text() << "\",";
    else
        describeObject(tree, value.object());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using Convert = host::ObjectHandle(NSObject *);
    static auto *const convert = plugin().symbol<Convert>("NewVariantFromNSObject");

    const host::AutoreleasePool pool;
    FuzzedDataProvider input(data, size);
    NSMutableArray *object = [NSMutableArray array];
    while (input.remaining_bytes() > 0)
        [object addObject:newValue(input, 0)];
    std::ostringstream expected;
    std::ostringstream actual;
    expect(expected, object);
    {
        const auto result = host::ObjectRef::adopt(convert(object));
        describeValue(actual, host::unboxed(result));
    }
    require(actual.str() == expected.str(),
            "expected " + expected.str() + "\nbut got  " + actual.str());
    plugin().requireCleanHost();
    return 0;
}
