#pragma once

#include "bridge/NSDataRB.h"
#include "convert/Collections.h"
#include "convert/Values.h"
#include "convert/WrapperFactory.h"
#include "frame/FamilyHooks.h"

#include <Foundation/Foundation.h>

#include <objc/runtime.h>

#include <cstddef>

/// A Cocoa class and what becomes of the objects that are a kind of it.
struct ClassRow {
    const char *cocoaClass; // null: the row is Core Foundation's two booleans, by identity
    REALobjectStruct *(*convert)(NSObject *object, const char *cocoaClass);
};

namespace how {

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

} // namespace how

/// In the order of the tests: a row counts only for objects that no earlier row matches. Where a
/// row's class is a kind of another's, it says so: it stands before that one's row, which would
/// take its objects, or is hidden by it. The order, hidden rows included, is the family's contract.
inline constexpr ClassRow classRows[] = {
    {"NSURL", how::value<newURLValue>},
    {"NSString", how::value<newStringVariant>},
    {"NSData", how::value<NSDataRB>},
    {"NSArray", how::value<newHostArray>},
    {"NSSet", how::value<newHostArrayOfSet>},
    {nullptr, how::value<newBooleanVariant>}, // are NSNumbers too, but no numbers
    {"NSNumber", how::value<newNumberVariant>},
    {"NSDate", how::value<newHostDate>},
    {"NSDictionary", how::value<NSDictionaryRB>},
    {"NSPathComponentCell", how::registered}, // before NSCell
    {"NSPathCell", how::registered},          // before NSCell
    {"NSPathControl", how::registered},       // before NSView
    {"NSPipe", how::registered},
    {"NSTask", how::registered},
    {"NSFileHandle", how::registered},
    {"NSClipView", how::registered}, // before NSView
    {"NSAnimation", how::registered},
    {"NSCoder", how::registered},
    {"NSTimeZone", how::registered},
    {"NSDateComponents", how::registered},
    {"NSAnimationContext", how::registered},
    {"NSTimer", how::registered},
    {"NSBox", how::registered},                 // before NSView
    {"NSComboBox", how::registered},            // before NSTextField
    {"NSImageView", how::registered},           // before NSView
    {"NSPopUpButton", how::registered},         // before NSView
    {"NSTextField", how::registered},           // before NSView
    {"NSSearchFieldCell", how::registered},     // before NSCell
    {"NSSecureTextField", how::registered},     // hidden by NSTextField
    {"NSSecureTextFieldCell", how::registered}, // before NSCell
    {"NSApplication", how::registered},         // before NSResponder
    {"NSSearchField", how::registered},         // hidden by NSTextField
    {"NSTabView", how::registered},             // before NSView
    {"NSTabViewItem", how::registered},
    {"NSStepper", how::registered}, // before NSView
    {"NSURLRequest", how::registered},
    {"NSURLDownload", how::registered},
    {"NSURLConnection", how::registered},
    {"NSFontPanel", how::registered}, // before NSWindow
    {"NSFontManager", how::registered},
    {"NSImage", how::registered},
    {"NSImageRep", how::nearest},
    {"NSShadow", how::registered},
    {"NSAffineTransform", how::registered},
    {"NSFont", how::registered},
    {"NSToolbarItem", how::registered},
    {"NSToolbar", how::registered},
    {"NSScreen", how::registered},
    {"NSCharacterSet", how::registered},
    {"NSTextStorage", how::registered}, // before NSAttributedString
    {"NSColor", how::registered},
    {"NSAttributedString", how::nearest},
    {"NSAssertionHandler", how::registered},
    {"NSMenu", how::registered},
    {"NSFontDescriptor", how::registered},
    {"NSMenuItem", how::registered},
    {"NSError", how::registered},
    {"NSViewController", how::registered},   // before NSResponder
    {"NSWindowController", how::registered}, // before NSResponder
    {"NSHTTPCookie", how::registered},
    {"NSHTTPCookieStorage", how::registered},
    {"NSPasteboard", how::registered},
    {"NSBundle", how::registered},
    {"NSEnumerator", how::registered},
    {"NSDirectoryEnumerator", how::registered}, // hidden by NSEnumerator
    {"NSRunningApplication", how::registered},
    {"NSURLCache", how::registered},
    {"NSCell", how::nearest},
    {"NSFileManager", how::registered},
    {"NSSound", how::registered},
    {"NSBezierPath", how::registered},
    {"NSCursor", how::registered},
    {"NSEvent", how::registered},
    {"NSIndexSet", how::nearest},
    {"NSCalendar", how::registered},
    {"NSView", how::view},      // before NSResponder
    {"NSWindow", how::nearest}, // before NSResponder
    {"NSColorList", how::registered},
    {"NSColorSpace", how::registered},
    {"NSTableColumn", how::registered},
    {"NSUndoManager", how::registered},
    {"NSScroller", how::registered}, // hidden by NSView
    {"NSResponder", how::nearest},
    {"NSTextFieldCell", how::nearest},      // hidden by NSCell
    {"NSText", how::nearest},               // hidden by NSView
    {"NSTableHeaderView", how::registered}, // hidden by NSView
    {"NSOperation", how::registered},
    {"NSNotification", how::registered},
    {"NSNotificationCenter", how::nearest},
    {"NSDistributedNotificationCenter", how::registered}, // hidden by NSNotificationCenter
    {"NSUserDefaults", how::registered},
    {"NSDockTile", how::registered},
    {"NSLocale", how::registered},
    {"NSAppleEventDescriptor", how::registered},
    {"NSAppleScript", how::registered},
    {"NSTableView", how::registered}, // hidden by NSView
    {"NSLayoutManager", how::registered},
    {"NSTextContainer", how::registered},
    {"NSTextView", how::nearest}, // hidden by NSView
    {"NSTextTab", how::registered},
    {"NSParagraphStyle", how::registered},
    {"NSPasteboardItem", how::registered},
    {"NSRunLoop", how::registered},
    {"NSMetadataQuery", how::registered},
    {"NSMetadataItem", how::registered},
    {"NSPredicate", how::registered},
    {"NSCompoundPredicate", how::registered}, // hidden by NSPredicate
    {"NSSortDescriptor", how::registered},
    {"NSMetadataQueryResultGroup", how::registered},
    {"NSComparisonPredicate", how::registered}, // hidden by NSPredicate
    {"NSFileWrapper", how::registered},
    {"NSTextAttachment", how::registered},
    {"NSExpression", how::registered},
};

/// The rows of values come first; their classes are Foundation's own, and none is a kind of
/// another.
inline constexpr std::size_t valueRowCount = 9;
inline constexpr std::size_t booleanRow = 5;
static_assert(classRows[booleanRow].cocoaClass == nullptr);
static_assert(classRows[valueRowCount - 1].convert == how::value<NSDictionaryRB> &&
              classRows[valueRowCount].convert == how::registered);
