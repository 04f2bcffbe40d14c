#import "ClassPairs.h"

#include <objc/runtime.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string_view>

namespace {

constexpr ClassPair walking(const char *name) noexcept {
    return {.name = name, .objects = Pairing::walks, .rowRegisters = false};
}
constexpr ClassPair like(const char *name, const char *earlier) noexcept {
    return {.name = name, .objects = Pairing::asEarlierRow, .takenBy = earlier};
}
constexpr ClassPair behind(const char *name, const char *earlier, bool rowRegisters) noexcept {
    return {.name = name,
            .objects = Pairing::behindWalkingRow,
            .takenBy = earlier,
            .rowRegisters = rowRegisters};
}
constexpr bool registering = true;

} // namespace

constinit const std::array<ClassPair, pairCount> classPairs = {{
    {"NSPathComponentCell"},
    {"NSPathCell"},
    {"NSPathControl"},
    {"NSPipe"},
    {"NSTask"},
    {"NSFileHandle"},
    {"NSClipView"},
    {"NSAnimation"},
    {"NSCoder"},
    {"NSTimeZone"},
    {"NSDateComponents"},
    {"NSAnimationContext"},
    {"NSTimer"},
    {"NSBox"},
    {"NSComboBox"},
    {"NSImageView"},
    {"NSPopUpButton"},
    {"NSTextField"},
    {"NSSearchFieldCell"},
    like("NSSecureTextField", "NSTextField"),
    {"NSSecureTextFieldCell"},
    {"NSApplication"},
    like("NSSearchField", "NSTextField"),
    {"NSTabView"},
    {"NSTabViewItem"},
    {"NSStepper"},
    {"NSURLRequest"},
    {"NSURLDownload"},
    {"NSURLConnection"},
    {"NSFontPanel"},
    {"NSFontManager"},
    {"NSImage"},
    walking("NSImageRep"),
    {"NSShadow"},
    {"NSAffineTransform"},
    {"NSFont"},
    {"NSToolbarItem"},
    {"NSToolbar"},
    {"NSScreen"},
    {"NSCharacterSet"},
    {"NSTextStorage"},
    {"NSColor"},
    walking("NSAttributedString"),
    {"NSAssertionHandler"},
    {"NSMenu"},
    {"NSFontDescriptor"},
    {"NSMenuItem"},
    {"NSError"},
    {"NSViewController"},
    {"NSWindowController"},
    {"NSHTTPCookie"},
    {"NSHTTPCookieStorage"},
    {"NSPasteboard"},
    {"NSBundle"},
    {"NSEnumerator"},
    like("NSDirectoryEnumerator", "NSEnumerator"),
    {"NSRunningApplication"},
    {"NSURLCache"},
    walking("NSCell"),
    {"NSFileManager"},
    {"NSSound"},
    {"NSBezierPath"},
    {"NSCursor"},
    {"NSEvent"},
    walking("NSIndexSet"),
    {"NSCalendar"},
    {.name = "NSView", .objects = Pairing::hookThenWalks, .rowRegisters = false},
    walking("NSWindow"),
    {"NSColorList"},
    {"NSColorSpace"},
    {"NSTableColumn"},
    {"NSUndoManager"},
    behind("NSScroller", "NSView", registering),
    walking("NSResponder"),
    behind("NSTextFieldCell", "NSCell", !registering),
    behind("NSText", "NSView", !registering),
    behind("NSTableHeaderView", "NSView", registering),
    {"NSOperation"},
    {"NSNotification"},
    walking("NSNotificationCenter"),
    behind("NSDistributedNotificationCenter", "NSNotificationCenter", registering),
    {"NSUserDefaults"},
    {"NSDockTile"},
    {"NSLocale"},
    {"NSAppleEventDescriptor"},
    {"NSAppleScript"},
    behind("NSTableView", "NSView", registering),
    {"NSLayoutManager"},
    {"NSTextContainer"},
    behind("NSTextView", "NSView", !registering),
    {"NSTextTab"},
    {"NSParagraphStyle"},
    {"NSPasteboardItem"},
    {"NSRunLoop"},
    {"NSMetadataQuery"},
    {"NSMetadataItem"},
    {"NSPredicate"},
    like("NSCompoundPredicate", "NSPredicate"),
    {"NSSortDescriptor"},
    {"NSMetadataQueryResultGroup"},
    like("NSComparisonPredicate", "NSPredicate"),
    {"NSFileWrapper"},
    {"NSTextAttachment"},
    {"NSExpression"},
}};

constinit const std::array<ClassPair, 5> lateClassPairs = {{
    {"NSUserNotification"},
    {"NSDraggingImageComponent"},
    {"QuartzFilter"},
    {"QCComposition"},
    {"QCCompositionRepository"},
}};

// AppKit's class tree, as far as a class's parent is not NSObject.
struct Parent {
    const char *name;
    const char *parent;
};
static constexpr Parent parents[] = {
    {"NSActionCell", "NSCell"},
    {"NSApplication", "NSResponder"},
    {"NSBox", "NSView"},
    {"NSButton", "NSControl"},
    {"NSClipView", "NSView"},
    {"NSComboBox", "NSTextField"},
    {"NSControl", "NSView"},
    {"NSFontPanel", "NSPanel"},
    {"NSImageView", "NSControl"},
    {"NSPanel", "NSWindow"},
    {"NSPathCell", "NSActionCell"},
    {"NSPathComponentCell", "NSTextFieldCell"},
    {"NSPathControl", "NSControl"},
    {"NSPopUpButton", "NSButton"},
    {"NSScroller", "NSControl"},
    {"NSSearchField", "NSTextField"},
    {"NSSearchFieldCell", "NSTextFieldCell"},
    {"NSSecureTextField", "NSTextField"},
    {"NSSecureTextFieldCell", "NSTextFieldCell"},
    {"NSStepper", "NSControl"},
    {"NSTabView", "NSView"},
    {"NSTableHeaderView", "NSView"},
    {"NSTableView", "NSControl"},
    {"NSText", "NSView"},
    {"NSTextField", "NSControl"},
    {"NSTextFieldCell", "NSActionCell"},
    {"NSTextStorage", "NSMutableAttributedString"},
    {"NSTextView", "NSText"},
    {"NSView", "NSResponder"},
    {"NSViewController", "NSResponder"},
    {"NSWindow", "NSResponder"},
    {"NSWindowController", "NSResponder"},
};

Class makeClass(const std::string &name, Class superclass) {
    const Class made = objc_allocateClassPair(superclass, name.c_str(), 0);
    if (made == Nil)
        throw std::logic_error("the class " + name + " cannot be made");
    objc_registerClassPair(made);
    return made;
}

Class classNamed(const std::string &name) {
    if (const Class existing = objc_lookUpClass(name.c_str()))
        return existing;
    const auto *const found = std::ranges::find(parents, name, &Parent::name);
    return makeClass(name,
                     found == std::end(parents) ? [NSObject class] : classNamed(found->parent));
}

void makeAllClasses() {
    for (const ClassPair &pair : classPairs)
        classNamed(pair.name);
    for (const ClassPair &pair : lateClassPairs)
        classNamed(pair.name);
}

// Where a plain init is not how such an object is made.
struct Maker {
    std::string_view name;
    id (*make)();
};
static constexpr Maker makers[] = {
    {"NSDirectoryEnumerator",
     []() -> id { return [[NSFileManager defaultManager] enumeratorAtPath:@"/"]; }},
    {"NSError", []() -> id { return [NSError errorWithDomain:@"domain" code:1 userInfo:nil]; }},
    {"NSRunLoop", []() -> id { return [NSRunLoop currentRunLoop]; }},
    // Foundation has no init for mutable attributed strings of a class that it does not know.
    {"NSTextStorage",
     []() -> id {
         return [NSAllocateObject(classNamed("NSTextStorage"), 0, nullptr) autorelease];
     }},
    {"NSTimer",
     []() -> id {
         return [NSTimer timerWithTimeInterval:1
                                        target:@"target"
                                      selector:@selector(length)
                                      userInfo:nil
                                       repeats:NO];
     }},
    // Its own init connects to a server. What is made here is never deallocated by its class.
    {"NSDistributedNotificationCenter",
     []() -> id {
         static const id center =
             NSAllocateObject([NSDistributedNotificationCenter class], 0, nullptr);
         return center;
     }},
};

id objectOf(const ClassPair &pair) {
    const auto *const maker = std::ranges::find(makers, pair.name, &Maker::name);
    if (maker != std::end(makers))
        return maker->make();
    return [[[classNamed(pair.name) alloc] init] autorelease];
}
