// URLs: the file that one names, and the last component of its path.

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>

#include "FileReferences.h"
#include "Methods.h"
#include "Misuse.h"
#include "UrlText.h"
#include "WideResults.h"

#include <string>
#include <string_view>

namespace {

std::string utf8(NSString *string) {
    const char *text = [string UTF8String];
    return text == nullptr ? std::string() : text;
}

NSString *fromUtf8(std::string_view text) {
    return [[[NSString alloc] initWithBytes:text.data()
                                     length:text.size()
                                   encoding:NSUTF8StringEncoding] autorelease];
}

// What the URL was made of, be it relative to another.
std::string ownText(CFURLRef url) {
    return utf8([(NSURL *)url relativeString]);
}

std::string absoluteText(NSURL *url) {
    std::string text = utf8([url relativeString]);
    return [url baseURL] == nil ? text : standin::resolved(text, absoluteText([url baseURL]));
}

// As it was given where GNUstep writes it anew ("FILE:/a" as "File:///a"), and folded.
id absoluteString(id url, SEL) {
    return fromUtf8(absoluteText(url));
}

} // namespace

@interface StandInUrls : NSObject
@end

@implementation StandInUrls

+ (void)load {
    // Not by a message, with which the class would get itself ready long before it is used.
    Class const cls = objc_getClass("NSURL");
    standin::replaceMethod(cls, "absoluteString", absoluteString, "@16@0:8");
}

@end

extern "C" standin::WideBoolean getReference(CFURLRef url, FSRef *fsRef) asm("CFURLGetFSRef");

standin::WideBoolean getReference(CFURLRef url, FSRef *fsRef) {
    standin::requireObject(url, "CFURLGetFSRef");
    NSAutoreleasePool *const pool = [[NSAutoreleasePool alloc] init];
    const auto path = standin::fileSystemPath(absoluteText((NSURL *)url));
    [pool drain];
    return path && standin::makeReference(*path, *fsRef) ? 1 : 0;
}

CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef, CFURLRef url) {
    standin::requireObject(url, __func__);
    NSAutoreleasePool *const pool = [[NSAutoreleasePool alloc] init];
    NSURL *result = nil;
    if (const auto text = standin::withoutLastComponent(ownText(url))) {
        result = [[NSURL alloc] initWithString:fromUtf8(*text)
                                 relativeToURL:[(NSURL *)url baseURL]];
    }
    [pool drain];
    return (CFURLRef)result;
}

CFStringRef CFURLCopyLastPathComponent(CFURLRef url) {
    standin::requireObject(url, __func__);
    NSAutoreleasePool *const pool = [[NSAutoreleasePool alloc] init];
    const auto name = standin::lastComponent(ownText(url));
    [pool drain];
    if (!name) {
        return nullptr;
    }
    return CFStringCreateWithCharacters(nullptr, reinterpret_cast<const UniChar *>(name->data()),
                                        static_cast<CFIndex>(name->size()));
}
