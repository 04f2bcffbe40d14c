// The last path component of URLs, and the folder above.

#import "Cocoa.h"

namespace {

class Urls : public CocoaTest {
protected:
    static CFURLRef url(const char *text) {
        return (CFURLRef)[NSURL URLWithString:[NSString stringWithUTF8String:text]];
    }

    static std::string withoutLast(const char *text) {
        const CFURLRef result = CFURLCreateCopyDeletingLastPathComponent(nullptr, url(text));
        if (result == nullptr) {
            return "(null)";
        }
        const std::string string = [[(NSURL *)result absoluteString] UTF8String];
        EXPECT_EQ([(NSURL *)result retainCount], 1U);
        CFRelease(result);
        return string;
    }

    static std::u16string last(const char *text) {
        const CFStringRef component = CFURLCopyLastPathComponent(url(text));
        const std::u16string result = units(component);
        if (component != nullptr) {
            CFRelease(component);
        }
        return result;
    }
};

TEST_F(Urls, TheFolderAboveEndsInASlash) {
    EXPECT_EQ(withoutLast("file:///a/b"), "file:///a/");
    EXPECT_EQ(withoutLast("file:///a/b/"), "file:///a/");
    EXPECT_EQ(withoutLast("file:///a"), "file:///");
    EXPECT_EQ(withoutLast("file:///a%20b/c%2Fd"), "file:///a%20b/");
    EXPECT_EQ(withoutLast("file://localhost/a/b"), "file://localhost/a/");
}

TEST_F(Urls, WhatFollowsThePathStays) {
    EXPECT_EQ(withoutLast("http://example.com/a/b?q=/x#y/z"), "http://example.com/a/?q=/x#y/z");
}

TEST_F(Urls, AboveTheRootIsSpeltWithDots) {
    EXPECT_EQ(withoutLast("file:///"), "file:///../");
    EXPECT_EQ(withoutLast("file:///a/.."), "file:///a/../../");
    EXPECT_EQ(withoutLast("file:///a/."), "file:///a/./../");
}

TEST_F(Urls, WithoutAPathThereIsNoFolderAndNoComponent) {
    for (const char *text : {"mailto:someone@example.com", "http://example.com", "relative"}) {
        EXPECT_EQ(withoutLast(text), "(null)") << text;
        EXPECT_EQ(last(text), u"(null)") << text;
    }
}

TEST_F(Urls, TheLastComponentIsUnescaped) {
    EXPECT_EQ(last("file:///a/b"), u"b");
    EXPECT_EQ(last("file:///a/b/"), u"b");
    EXPECT_EQ(last("file:///a/b%20c%C3%A9"), u"b c\u00E9");
    EXPECT_EQ(last("file:///a/b%2Fc"), u"b/c");
    EXPECT_EQ(last("http://example.com/a/b?q=/x"), u"b");
    EXPECT_EQ(last("file:///"), u"/");
}

TEST_F(Urls, EscapesThatAreNoTextGiveNull) {
    EXPECT_EQ(last("file:///a/%FF"), u"(null)");
}

TEST_F(Urls, FileUrlsOfPathsGoBothWays) {
    const auto file = (CFURLRef)[NSURL fileURLWithPath:@"/no such folder/Gr\u00FC\u00DFe"];
    const CFStringRef name = CFURLCopyLastPathComponent(file);
    EXPECT_EQ(units(name), u"Gr\u00FC\u00DFe");
    CFRelease(name);
    const CFURLRef folder = CFURLCreateCopyDeletingLastPathComponent(nullptr, file);
    EXPECT_STREQ([[(NSURL *)folder path] UTF8String], "/no such folder");
    CFRelease(folder);
}

} // namespace
