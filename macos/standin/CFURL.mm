// URLs: the file that one names, and the last component of its path.

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>

#include "FileReferences.h"
#include "Misuse.h"

#include <string>
#include <string_view>

namespace {

// A URL's text and where its path and the last component of the path lie in it.
struct Parts {
    std::string text;
    std::size_t pathEnd = 0;
    std::size_t lastStart = 0;
    std::size_t lastEnd = 0; // before a trailing slash

    [[nodiscard]] std::string_view last() const {
        return std::string_view(text).substr(lastStart, lastEnd - lastStart);
    }
};

std::string utf8(NSString *string) {
    const char *text = [string UTF8String];
    return text == nullptr ? std::string() : text;
}

NSString *fromUtf8(std::string_view text) {
    return [[[NSString alloc] initWithBytes:text.data()
                                     length:text.size()
                                   encoding:NSUTF8StringEncoding] autorelease];
}

// False when the URL has no path: an empty one, or no slashes after the scheme ("mailto:").
bool takeApart(NSURL *url, Parts &parts) {
    parts.text = utf8([url absoluteString]);
    const std::string_view text = parts.text;
    std::size_t start = text.find(':') + 1;
    if (start == 0 || text.substr(start, 1) != "/") {
        return false;
    }
    if (text.substr(start, 2) == "//") {
        start = std::min(text.find_first_of("/?#", start + 2), text.size());
    }
    parts.pathEnd = std::min(text.find_first_of("?#", start), text.size());
    if (start == parts.pathEnd) {
        return false;
    }
    parts.lastEnd = parts.pathEnd;
    if (parts.lastEnd - start > 1 && text[parts.lastEnd - 1] == '/') {
        --parts.lastEnd;
    }
    const bool isRoot = parts.lastEnd - start == 1; // whose last component is the slash itself
    parts.lastStart = isRoot ? start : text.rfind('/', parts.lastEnd - 1) + 1;
    return true;
}

} // namespace

Boolean CFURLGetFSRef(CFURLRef url, FSRef *fsRef) {
    standin::requireObject(url, __func__);
    NSAutoreleasePool *const pool = [[NSAutoreleasePool alloc] init];
    auto *const file = (NSURL *)url;
    const bool found =
        [file isFileURL] && [file path] != nil && standin::makeReference(utf8([file path]), *fsRef);
    [pool drain];
    return found;
}

CFURLRef CFURLCreateCopyDeletingLastPathComponent(CFAllocatorRef, CFURLRef url) {
    standin::requireObject(url, __func__);
    NSAutoreleasePool *const pool = [[NSAutoreleasePool alloc] init];
    NSURL *result = nil;
    if (Parts parts; takeApart((NSURL *)url, parts)) {
        const std::string_view last = parts.last();
        if (last == "/" || last == "." || last == "..") {
            // There is nothing to delete that would lead to the folder above.
            const bool hasSlash = parts.text[parts.pathEnd - 1] == '/';
            parts.text.insert(parts.pathEnd, hasSlash ? "../" : "/../");
        } else {
            parts.text.erase(parts.lastStart, parts.pathEnd - parts.lastStart);
        }
        result = [[NSURL alloc] initWithString:fromUtf8(parts.text)];
    }
    [pool drain];
    return (CFURLRef)result;
}

CFStringRef CFURLCopyLastPathComponent(CFURLRef url) {
    standin::requireObject(url, __func__);
    NSAutoreleasePool *const pool = [[NSAutoreleasePool alloc] init];
    NSString *result = nil;
    if (Parts parts; takeApart((NSURL *)url, parts)) {
        NSString *const escaped = fromUtf8(parts.last());
        result =
            [[escaped stringByReplacingPercentEscapesUsingEncoding:NSUTF8StringEncoding] retain];
    }
    [pool drain];
    return (CFStringRef)result;
}
