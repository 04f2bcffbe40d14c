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
    EXPECT_EQ(withoutLast("file:///a/../"), "file:///a/../../");
    EXPECT_EQ(withoutLast("file:///.a"), "file:///");
}

TEST_F(Urls, AFolderThatIsItselfIsLeftOutBeforeTheDots) {
    EXPECT_EQ(withoutLast("file:///a/."), "file:///a/../");
    EXPECT_EQ(withoutLast("file:///a/./"), "file:///a/../");
    EXPECT_EQ(withoutLast("file:///a/./."), "file:///a/./../") << "one of them";
    EXPECT_EQ(withoutLast("file:///."), "file:///./../") << "not where it starts the path";
    EXPECT_EQ(withoutLast("file:///a./"), "file:///");
}

TEST_F(Urls, AnEmptyLastComponentIsNotDeleted) {
    EXPECT_EQ(withoutLast("file:///a/b//"), "file:///a/b//../");
    EXPECT_EQ(withoutLast("file:///a/b///"), "file:///a/b///../");
    EXPECT_EQ(withoutLast("file:////"), "file:////../");
    EXPECT_EQ(withoutLast("file:///a//b"), "file:///a//");
    EXPECT_EQ(last("file:///a/b//"), u"");
    EXPECT_EQ(last("file:////"), u"");
    EXPECT_EQ(last("file:///////"), u"");
    EXPECT_EQ(last("file:///a//b"), u"b");
}

TEST_F(Urls, WithoutAPathThereIsNoFolderAndAnEmptyComponent) {
    for (const char *text :
         {"mailto:someone@example.com", "file:", "file:a/b", "file:?q", "file://", "data:,x/y"}) {
        EXPECT_EQ(withoutLast(text), "(null)") << text;
        EXPECT_EQ(last(text), u"") << text;
    }
}

TEST_F(Urls, AHostHasAnEmptyPathBehindIt) {
    EXPECT_EQ(withoutLast("http://example.com"), "http://example.com../");
    EXPECT_EQ(last("http://example.com"), u"");
    EXPECT_EQ(withoutLast("file://localhost"), "file://localhost../");
    EXPECT_EQ(last("file://localhost"), u"");
    EXPECT_EQ(last("file://localhost/"), u"/");
}

TEST_F(Urls, WithoutASchemeHaveAPathAllTheSame) {
    EXPECT_EQ(last("/tmp/x"), u"x");
    EXPECT_EQ(withoutLast("/tmp/x"), "/tmp/");
    EXPECT_EQ(last("c.txt"), u"c.txt");
    EXPECT_EQ(withoutLast("c.txt"), "./");
    EXPECT_EQ(last("a/b:c"), u"b:c");
}

TEST_F(Urls, ASemicolonBelongsToThePath) {
    EXPECT_EQ(last("file:///a/b;c"), u"b;c");
    EXPECT_EQ(last("file:///a/;"), u";");
    EXPECT_EQ(last("file:///a;b/c"), u"c");
    EXPECT_EQ(withoutLast("file:///a;b/c"), "file:///a;b/");
}

TEST_F(Urls, RelativeOnesKeepTheirBase) {
    const struct {
        const char *text;
        const char *above;
        const char16_t *last;
    } rows[] = {
        {.text = "x", .above = "./", .last = u"x"},
        {.text = "new/../x", .above = "new/../", .last = u"x"},
        {.text = "new/..", .above = "new/../../", .last = u".."},
        {.text = ".", .above = "../", .last = u"."},
        {.text = "..", .above = "../../", .last = u".."},
        {.text = "x/?q", .above = "./?q", .last = u"x"},
        {.text = "", .above = nullptr, .last = u""},
        {.text = "?q/r", .above = nullptr, .last = u""},
        {.text = "#f/g", .above = nullptr, .last = u""},
    };
    NSURL *const base = [NSURL URLWithString:@"file:///T/a/new"];
    for (const auto &row : rows) {
        NSURL *const relative = [NSURL URLWithString:[NSString stringWithUTF8String:row.text]
                                       relativeToURL:base];
        const CFStringRef component = CFURLCopyLastPathComponent((CFURLRef)relative);
        EXPECT_EQ(units(component), row.last) << row.text;
        CFRelease(component);
        const CFURLRef above =
            CFURLCreateCopyDeletingLastPathComponent(nullptr, (CFURLRef)relative);
        ASSERT_EQ(above == nullptr, row.above == nullptr) << row.text;
        if (above != nullptr) {
            EXPECT_STREQ([[(NSURL *)above relativeString] UTF8String], row.above) << row.text;
            EXPECT_EQ([(NSURL *)above baseURL], base) << row.text;
            CFRelease(above);
        }
    }
}

TEST_F(Urls, HaveTheTextThatTheyWereMadeOf) {
    for (const char *text : {"file:///a/b", "FILE:/a", "file:a/b", "http://u:p@example.com:8/a?#",
                             "http://example.com/a/../b", "mailto:x@y", "/tmp/x", ""}) {
        EXPECT_STREQ([[(NSURL *)url(text) absoluteString] UTF8String], text);
    }
    NSURL *const file = [NSURL fileURLWithPath:@"/a b"];
    EXPECT_STREQ([[file absoluteString] UTF8String], "file:///a%20b");
}

TEST_F(Urls, RelativeOnesAreFoldedIntoTheirBase) {
    const struct {
        const char *text;
        const char *absolute;
    } rows[] = {
        {.text = "x", .absolute = "http://h/a/b/x"},
        {.text = "x?r#g", .absolute = "http://h/a/b/x?r#g"},
        {.text = "./x", .absolute = "http://h/a/b/x"},
        {.text = "../x", .absolute = "http://h/a/x"},
        {.text = "..", .absolute = "http://h/a/"},
        {.text = ".", .absolute = "http://h/a/b/"},
        {.text = "x/./y/..", .absolute = "http://h/a/b/x/"},
        {.text = "../../../x", .absolute = "http://h/../x"}, // nothing left to go up from
        {.text = ".x/..y", .absolute = "http://h/a/b/.x/..y"},
        {.text = "x//../y", .absolute = "http://h/a/b/x/y"},
        {.text = "/x/../y", .absolute = "http://h/x/../y"}, // only what is joined
        {.text = "", .absolute = "http://h/a/b/c?q#f"},
        {.text = "?r", .absolute = "http://h/a/b/c?r"},
        {.text = "#g", .absolute = "http://h/a/b/c?q#g"},
        {.text = "?r#g", .absolute = "http://h/a/b/c?r#g"},
        {.text = "//i/x/../y?r", .absolute = "http://i/x/../y?r"},
        {.text = "file:///x", .absolute = "file:///x"},
    };
    NSURL *const base = [NSURL URLWithString:@"http://h/a/b/c?q#f"];
    for (const auto &row : rows) {
        NSURL *const relative = [NSURL URLWithString:[NSString stringWithUTF8String:row.text]
                                       relativeToURL:base];
        EXPECT_STREQ([[relative absoluteString] UTF8String], row.absolute) << row.text;
    }
    NSURL *const host = [NSURL URLWithString:@"http://h"];
    EXPECT_STREQ([[[NSURL URLWithString:@"x/.." relativeToURL:host] absoluteString] UTF8String],
                 "http://h/x/..");
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
    EXPECT_EQ(last("file:///a/%C3b"), u"(null)");
}

// As bytes that stand alone, each time.
TEST_F(Urls, EscapesBesideEachOtherAreOneText) {
    EXPECT_EQ(last("file:///%C3%BCx%C3%9F"), u"\u00FCx\u00DF");
    EXPECT_EQ(last("file:///%EF%BB%BFa"), u"a") << "a byte order mark is dropped at its start";
    EXPECT_EQ(last("file:///a%EF%BB%BFb"), u"ab");
    EXPECT_EQ(last("file:///%61%EF%BB%BFb"), u"a\uFEFFb");
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
