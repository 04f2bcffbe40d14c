#pragma once

#include "bridge/MemoryBlocks.h"
#include "convert/Collections.h"
#include "convert/Conversion.h"
#include "convert/Values.h"
#include "convert/WrapperFactory.h"
#include "frame/FamilyHooks.h"

#include <Foundation/Foundation.h>

#include <objc/runtime.h>

#include <cstddef>

// A Cocoa class and what becomes of the objects that are a kind of it.
struct ClassRow {
    const char *cocoaClass; // null: the row is Core Foundation's two booleans, by identity
    REALobjectStruct *(*convert)(NSObject *object, const char *cocoaClass);
};

namespace ways {

template <auto convert>
REALobjectStruct *value(NSObject *object, const char *) {
    return convert((id)object);
}

inline REALobjectStruct *registered(NSObject *object, const char *cocoaClass) {
    return newRegisteredWrapper(object, cocoaClass);
}

inline REALobjectStruct *nearest(NSObject *object, const char *cocoaClass) {
    return NewNSObjectZKT(object, objc_getClass(cocoaClass));
}

inline REALobjectStruct *view(NSObject *object, const char *cocoaClass) {
    if ([NSValue respondsToSelector:@selector(NewQTKitNSViewZKT:)])
        if (REALobjectStruct *result = [NSValue NewQTKitNSViewZKT:object])
            return result;
    return nearest(object, cocoaClass);
}

} // namespace ways

// In the order of the tests: a row counts only for objects that no earlier row matches. Where a
// row's class is a kind of another's, it says so: it stands before that one's row, which would take
// its objects, or is hidden by it. The order, hidden rows included, is the family's contract.
inline constexpr ClassRow classRows[] = {
    {"NSURL", ways::value<newUrlValue>},
    {"NSString", ways::value<newStringVariant>},
    {"NSData", ways::value<NSDataRB>},
    {"NSArray", ways::value<newHostArray>},
    {"NSSet", ways::value<newHostArrayOfSet>},
    {nullptr, ways::value<newBooleanVariant>}, // are NSNumbers too, but no numbers
    {"NSNumber", ways::value<newNumberVariant>},
    {"NSDate", ways::value<newHostDate>},
    {"NSDictionary", ways::value<NSDictionaryRB>},
    {"NSPathComponentCell", ways::registered}, // before NSCell
    {"NSPathCell", ways::registered},          // before NSCell
    {"NSPathControl", ways::registered},       // before NSView
    {"NSPipe", ways::registered},
    {"NSTask", ways::registered},
    {"NSFileHandle", ways::registered},
    {"NSClipView", ways::registered}, // before NSView
    {"NSAnimation", ways::registered},
    {"NSCoder", ways::registered},
    {"NSTimeZone", ways::registered},
    {"NSDateComponents", ways::registered},
    {"NSAnimationContext", ways::registered},
    {"NSTimer", ways::registered},
    {"NSBox", ways::registered},                 // before NSView
    {"NSComboBox", ways::registered},            // before NSTextField
    {"NSImageView", ways::registered},           // before NSView
    {"NSPopUpButton", ways::registered},         // before NSView
    {"NSTextField", ways::registered},           // before NSView
    {"NSSearchFieldCell", ways::registered},     // before NSCell
    {"NSSecureTextField", ways::registered},     // hidden by NSTextField
    {"NSSecureTextFieldCell", ways::registered}, // before NSCell
    {"NSApplication", ways::registered},         // before NSResponder
    {"NSSearchField", ways::registered},         // hidden by NSTextField
    {"NSTabView", ways::registered},             // before NSView
    {"NSTabViewItem", ways::registered},
    {"NSStepper", ways::registered}, // before NSView
    {"NSURLRequest", ways::registered},
    {"NSURLDownload", ways::registered},
    {"NSURLConnection", ways::registered},
    {"NSFontPanel", ways::registered}, // before NSWindow
    {"NSFontManager", ways::registered},
    {"NSImage", ways::registered},
    {"NSImageRep", ways::nearest},
    {"NSShadow", ways::registered},
    {"NSAffineTransform", ways::registered},
    {"NSFont", ways::registered},
    {"NSToolbarItem", ways::registered},
    {"NSToolbar", ways::registered},
    {"NSScreen", ways::registered},
    {"NSCharacterSet", ways::registered},
    {"NSTextStorage", ways::registered}, // before NSAttributedString
    {"NSColor", ways::registered},
    {"NSAttributedString", ways::nearest},
    {"NSAssertionHandler", ways::registered},
    {"NSMenu", ways::registered},
    {"NSFontDescriptor", ways::registered},
    {"NSMenuItem", ways::registered},
    {"NSError", ways::registered},
    {"NSViewController", ways::registered},   // before NSResponder
    {"NSWindowController", ways::registered}, // before NSResponder
    {"NSHTTPCookie", ways::registered},
    {"NSHTTPCookieStorage", ways::registered},
    {"NSPasteboard", ways::registered},
    {"NSBundle", ways::registered},
    {"NSEnumerator", ways::registered},
    {"NSDirectoryEnumerator", ways::registered}, // hidden by NSEnumerator
    {"NSRunningApplication", ways::registered},
    {"NSURLCache", ways::registered},
    {"NSCell", ways::nearest},
    {"NSFileManager", ways::registered},
    {"NSSound", ways::registered},
    {"NSBezierPath", ways::registered},
    {"NSCursor", ways::registered},
    {"NSEvent", ways::registered},
    {"NSIndexSet", ways::nearest},
    {"NSCalendar", ways::registered},
    {"NSView", ways::view},      // before NSResponder
    {"NSWindow", ways::nearest}, // before NSResponder
    {"NSColorList", ways::registered},
    {"NSColorSpace", ways::registered},
    {"NSTableColumn", ways::registered},
    {"NSUndoManager", ways::registered},
    {"NSScroller", ways::registered}, // hidden by NSView
    {"NSResponder", ways::nearest},
    {"NSTextFieldCell", ways::nearest},      // hidden by NSCell
    {"NSText", ways::nearest},               // hidden by NSView
    {"NSTableHeaderView", ways::registered}, // hidden by NSView
    {"NSOperation", ways::registered},
    {"NSNotification", ways::registered},
    {"NSNotificationCenter", ways::nearest},
    {"NSDistributedNotificationCenter", ways::registered}, // hidden by NSNotificationCenter
    {"NSUserDefaults", ways::registered},
    {"NSDockTile", ways::registered},
    {"NSLocale", ways::registered},
    {"NSAppleEventDescriptor", ways::registered},
    {"NSAppleScript", ways::registered},
    {"NSTableView", ways::registered}, // hidden by NSView
    {"NSLayoutManager", ways::registered},
    {"NSTextContainer", ways::registered},
    {"NSTextView", ways::nearest}, // hidden by NSView
    {"NSTextTab", ways::registered},
    {"NSParagraphStyle", ways::registered},
    {"NSPasteboardItem", ways::registered},
    {"NSRunLoop", ways::registered},
    {"NSMetadataQuery", ways::registered},
    {"NSMetadataItem", ways::registered},
    {"NSPredicate", ways::registered},
    {"NSCompoundPredicate", ways::registered}, // hidden by NSPredicate
    {"NSSortDescriptor", ways::registered},
    {"NSMetadataQueryResultGroup", ways::registered},
    {"NSComparisonPredicate", ways::registered}, // hidden by NSPredicate
    {"NSFileWrapper", ways::registered},
    {"NSTextAttachment", ways::registered},
    {"NSExpression", ways::registered},
};

// The rows of values come first; their classes are Foundation's own, and none is a kind of another.
inline constexpr std::size_t valueRowCount = 9;
inline constexpr std::size_t booleanRow = 5;
static_assert(classRows[booleanRow].cocoaClass == nullptr);
static_assert(classRows[valueRowCount - 1].convert == ways::value<NSDictionaryRB> &&
              classRows[valueRowCount].convert == ways::registered);
