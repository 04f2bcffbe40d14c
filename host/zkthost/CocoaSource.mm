#include "host/zkthost/CocoaSource.h"

#include "host/core/Cocoa.h"
#include "host/zkthost/ForeignExceptions.h"
#include "host/zkthost/Options.h"

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

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

constexpr std::string_view exampleList = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0">
<dict>
    <key>array</key>
    <array>
        <string>first</string>
        <array/>
        <integer>3</integer>
    </array>
    <key>boolean</key>
    <true/>
    <key>data</key>
    <data>aGVsbG8=</data>
    <key>date</key>
    <date>2001-01-02T03:04:05Z</date>
    <key>dictionary</key>
    <dict>
        <key>inner</key>
        <string>Gr&#252;&#223;e</string>
    </dict>
    <key>integer</key>
    <integer>42</integer>
    <key>real</key>
    <real>1.5</real>
    <key>string</key>
    <string>text</string>
</dict>
</plist>
)";

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
    const id object = parsed(readFile(file), reason);
    if (object == nil)
        throw InputError("--plist " + file.string() + ": is no property list" +
                         (reason.empty() ? "" : " (" + reason + ')'));
    CocoaSource source(holderOf(object));
    [object release];
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
    std::string reason;
    const id object = parsed(exampleList, reason);
    if (object == nil)
        throw InputError("the example is no property list: " + reason);
    CocoaSource source(holderOf(object));
    [object release];
    return source;
}

CocoaSource::CocoaSource(CocoaSource &&other) noexcept
    : holder_(std::exchange(other.holder_, nullptr)) {}

CocoaSource::~CocoaSource() {
    [static_cast<id>(holder_) release];
}

} // namespace zkthost
