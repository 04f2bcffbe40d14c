#include "host/zkthost/CocoaSource.h"

#include "host/core/Cocoa.h"
#include "host/zkthost/ForeignExceptions.h"
#include "host/zkthost/Options.h"

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

/// Answers as its environment what it holds.
@interface ZkthostEnvironment : NSObject {
@public
    NSDictionary *environment;
}
- (NSDictionary *)environment;
@end

@implementation ZkthostEnvironment
- (NSDictionary *)environment {
    return environment;
}
- (void)dealloc {
    [environment release];
    [super dealloc];
}
@end

namespace zkthost {

namespace {

/// A value of every kind; some of them no property list can hold.
NSDictionary *exampleObject() {
    const unsigned char bytes[] = {'h', 'e', 'l', 'l', 'o'};
    return [NSDictionary
        dictionaryWithObjectsAndKeys:[NSArray arrayWithObjects:@"first", [NSArray array],
                                                               [NSNumber numberWithInt:3], nil],
                                     @"array", [NSNumber numberWithBool:YES], @"boolean",
                                     [NSData dataWithBytes:bytes length:sizeof bytes], @"data",
                                     [NSDate dateWithTimeIntervalSince1970:978404645], @"date",
                                     [NSDecimalNumber decimalNumberWithString:@"0.25"], @"decimal",
                                     [NSDictionary dictionaryWithObject:@"Gr\u00FC\u00DFe"
                                                                 forKey:@"inner"],
                                     @"dictionary", [NSURL fileURLWithPath:@"/usr"], @"file",
                                     [NSNumber numberWithInt:42], @"integer", [NSNull null],
                                     @"null", [NSNumber numberWithDouble:1.5], @"real",
                                     [NSSet setWithObject:@"element"], @"set", @"text", @"string",
                                     [NSURL URLWithString:@"https://example.org/"], @"url", nil];
}

/// More would fill the stack of what reads and converts them.
constexpr std::size_t deepestNesting = 1000;

[[noreturn]] void refuseNesting(const std::filesystem::path &file) {
    throw InputError("--plist " + file.string() + ": is nested too deeply, " +
                     std::to_string(deepestNesting) + " levels are the most");
}

/// How deep the brackets of a list in text form go, or the elements of one in XML. No more than an
/// estimate where they stand in texts.
std::size_t nestingOf(std::string_view text) {
    const bool isXml = text.find("<plist") != std::string_view::npos;
    std::size_t depth = 0;
    std::size_t deepest = 0;
    bool isQuoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view rest = text.substr(i);
        if (!isXml && rest[0] == '"')
            isQuoted = !isQuoted;
        if (!isXml && rest[0] == '\\')
            ++i;
        if (isQuoted)
            continue;
        const bool begins = isXml ? rest.starts_with("<array>") || rest.starts_with("<dict>")
                                  : rest[0] == '(' || rest[0] == '{';
        const bool ends = isXml ? rest.starts_with("</array>") || rest.starts_with("</dict>")
                                : rest[0] == ')' || rest[0] == '}';
        if (begins)
            deepest = std::max(deepest, ++depth);
        else if (ends && depth > 0)
            --depth;
    }
    return deepest;
}

/// Whether an object holds others in so many levels. Looks no deeper.
bool isDeeper(id object, std::size_t levels) {
    const bool isDictionary = [object isKindOfClass:[NSDictionary class]];
    if (!isDictionary && ![object isKindOfClass:[NSArray class]])
        return false;
    if (levels == 0)
        return true;
    // NOLINTNEXTLINE(cppcoreguidelines-init-variables)
    for (id element in isDictionary ? [object allValues] : object)
        if (isDeeper(element, levels - 1))
            return true;
    return false;
}

std::string readFile(const std::filesystem::path &file) {
    const auto fail = [&](const std::string &why) {
        throw InputError("--plist " + file.string() + ": " + why);
    };
    if (std::filesystem::is_directory(file))
        fail("is a folder");
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        fail(std::strerror(errno));
    std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    if (bytes.empty())
        fail("is empty");
    return bytes;
}

/// A retained object, or nil with the reason.
id parsed(std::string_view bytes, std::string &reason) {
    id result = nil;
    const auto exception = cocoaExceptionFrom([&] {
        NSError *error = nil;
        NSData *data = [NSData dataWithBytes:bytes.data() length:bytes.size()];
        result = [[NSPropertyListSerialization propertyListWithData:data
                                                            options:NSPropertyListImmutable
                                                             format:nullptr
                                                              error:&error] retain];
        if (result == nil && [error localizedDescription] != nil)
            reason = [[error localizedDescription] UTF8String];
    });
    if (exception)
        reason = *exception;
    return result;
}

void *holderOf(id object) {
    ZkthostEnvironment *holder = [[ZkthostEnvironment alloc] init];
    holder->environment = [[NSDictionary alloc] initWithObjectsAndKeys:object, @"value", nil];
    return holder;
}

bool descendsFromNSObject(Class type) {
    for (; type != Nil; type = class_getSuperclass(type))
        if (type == [NSObject class])
            return true;
    return false;
}

} // namespace

CocoaSource CocoaSource::propertyList(const std::filesystem::path &file) {
    const host::AutoreleasePool pool;
    std::string reason;
    const std::string bytes = readFile(file);
    // A binary list says nothing of its depth before it is read.
    if (!bytes.starts_with("bplist") && nestingOf(bytes) > deepestNesting)
        refuseNesting(file);
    const id object = parsed(bytes, reason);
    if (object == nil)
        throw InputError("--plist " + file.string() + ": is no property list" +
                         (reason.empty() ? "" : " (" + reason + ')'));
    CocoaSource source(holderOf(object));
    [object release];
    if (isDeeper(object, deepestNesting))
        refuseNesting(file);
    return source;
}

CocoaSource CocoaSource::instanceOf(const std::string &className) {
    const host::AutoreleasePool pool;
    const std::string option = "--class " + className + ": ";
    Class type = objc_getClass(className.c_str());
    if (type == Nil)
        throw InputError(option + "this process has no such class (Foundation's are there, the "
                                  "user interface's are not)");
    if (!descendsFromNSObject(type))
        throw InputError(option + "is no subclass of NSObject");
    void *holder = nullptr;
    const auto exception = cocoaExceptionFrom([&] {
        const id object = [[type alloc] init];
        if (object != nil)
            holder = holderOf(object);
        [object release];
    });
    if (exception)
        throw InputError(option + "alloc and init raised " + *exception);
    if (holder == nullptr)
        throw InputError(option + "alloc and init gave nil");
    return CocoaSource(holder);
}

CocoaSource CocoaSource::example() {
    const host::AutoreleasePool pool;
    return CocoaSource(holderOf(exampleObject()));
}

CocoaSource::CocoaSource(CocoaSource &&other) noexcept
    : holder_(std::exchange(other.holder_, nullptr)) {}

CocoaSource::~CocoaSource() {
    [static_cast<id>(holder_) release];
}

} // namespace zkthost
