// The family's wrapper classes that the host stands in for.

#include "host/family/Siblings.h"

#include "host/classes/ClassTable.h"
#include "host/core/Core.h"
#include "host/memory/Heap.h"

#include <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>

#include <cstring>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace host::siblings {

namespace {

/// Cocoa classes that have a wrapper class of their own: their name and "ZKT".
constexpr const char *cocoaClasses =
    "NSAffineTransform NSAnimation NSAnimationContext NSAppleEventDescriptor NSAppleScript "
    "NSApplication NSAssertionHandler NSAttributedString NSBezierPath NSBox NSBundle NSCalendar "
    "NSCell NSCharacterSet NSClipView NSCoder NSColor NSColorList NSColorSpace NSComboBox "
    "NSComparisonPredicate NSCompoundPredicate NSCursor NSDateComponents NSDirectoryEnumerator "
    "NSDistributedNotificationCenter NSDockTile NSDraggingImageComponent NSEnumerator NSError "
    "NSEvent NSExpression NSFileHandle NSFileManager NSFileWrapper NSFont NSFontDescriptor "
    "NSFontManager NSFontPanel NSHTTPCookie NSHTTPCookieStorage NSImage NSImageRep NSImageView "
    "NSIndexSet NSLayoutManager NSLocale NSMenu NSMenuItem NSMetadataItem NSMetadataQuery "
    "NSMetadataQueryResultGroup NSNotification NSNotificationCenter NSOperation NSParagraphStyle "
    "NSPasteboard NSPasteboardItem NSPathCell NSPathComponentCell NSPathControl NSPipe "
    "NSPopUpButton NSPredicate NSResponder NSRunLoop NSRunningApplication NSScreen NSScroller "
    "NSSearchField NSSearchFieldCell NSSecureTextField NSSecureTextFieldCell NSShadow "
    "NSSortDescriptor NSSound NSStepper NSTabView NSTabViewItem NSTableColumn NSTableHeaderView "
    "NSTableView NSTask NSText NSTextAttachment NSTextContainer NSTextField NSTextFieldCell "
    "NSTextStorage NSTextTab NSTextView NSTimeZone NSTimer NSToolbar NSToolbarItem NSURLCache "
    "NSURLConnection NSURLDownload NSURLRequest NSUndoManager NSUserDefaults NSUserNotification "
    "NSView NSViewController NSWindow NSWindowController QCComposition QCCompositionRepository "
    "QuartzFilter";

constexpr const char *coreFoundationClasses =
    "CFArrayZKT CFAttributedStringZKT CFBagZKT CFBinaryDataZKT CFBooleanZKT CFBundleZKT CFDateZKT "
    "CFDictionaryZKT CFCharacterSetZKT CFErrorZKT CFNumberZKT CFObjectZKT CFSetZKT CFStringZKT "
    "CFTimeZoneZKT CFURLZKT CFUUIDZKT CTFontCollectionZKT CTFontZKT CTFrameZKT CTFramesetterZKT "
    "CTGlyphInfoZKT CTLineZKT CTParagraphStyleZKT CTRunDelegateZKT CTRunZKT CTTypesetterZKT";

/// Data of a Core Foundation wrapper; the tag tells it from every other class of that name.
struct CoreFoundationData {
    const void *object = nullptr;
    void *classOwn = nullptr;
    std::int64_t tag = 0x52424346;
};

struct Geometry {
    const char *name;
    std::size_t dataSize;
};
constexpr Geometry geometryClasses[] = {
    {"NSRectZKT", 32}, {"NSSizeZKT", 16}, {"NSPointZKT", 16}, {"NSRangeZKT", 16}};

/// The object in the first field of the data: taken out of the registry and given back.
void releaseWrapped(ObjectHandle handle) {
    void *data = Core::current().heap.find(handle)->data();
    id object = nil;
    std::memcpy(&object, data, sizeof object);
    if (object == nil)
        return;
    if (registered((const void *)object) == handle)
        CFDictionaryRemoveValue(static_cast<CFMutableDictionaryRef>(registry()),
                                (const void *)object);
    std::memset(data, 0, sizeof object);
    [object release];
}

std::vector<std::string> words(const char *text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

std::vector<std::byte> bytesOf(const CoreFoundationData &data) {
    std::vector<std::byte> bytes(sizeof data);
    std::memcpy(bytes.data(), &data, sizeof data);
    return bytes;
}

} // namespace

void addWrapperClasses(ClassTable &classes) {
    for (const std::string &name : words(cocoaClasses))
        classes.add(
            HostClass{.name = name + "ZKT", .dataSize = sizeof(id), .destructor = releaseWrapped});
    for (const std::string &name : words(coreFoundationClasses))
        classes.add(HostClass{.name = name,
                              .dataSize = sizeof(CoreFoundationData),
                              .initialData = bytesOf({}),
                              .destructor = releaseWrapped});
    for (const auto &[name, size] : geometryClasses)
        classes.add(HostClass{.name = name, .dataSize = size});
}

} // namespace host::siblings
