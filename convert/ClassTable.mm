#include "convert/ClassTable.h"

#include "bridge/CocoaStrings.h"
#include "bridge/FolderItems.h"
#include "bridge/MemoryBlocks.h"
#include "convert/Collections.h"
#include "convert/Conversion.h"
#include "convert/Values.h"
#include "convert/WrapperFactory.h"
#include "frame/FamilyHooks.h"
#include "frame/HostReference.h"

#include <CoreFoundation/CoreFoundation.h>
#include <objc/runtime.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string_view>

namespace {

REALobjectStruct *newStringVariant(NSString *string) {
    StringReference text{CFString2RBString((CFStringRef)string)};
    ObjectReference variant{REALNewVariantString(text.get())};
    text.reset();
    return variant.handOver();
}

REALobjectStruct *newUrlValue(NSURL *url) {
    if (REALobjectStruct *folderItem = NSURLRBFile((CFURLRef)url))
        return folderItem;
    return newStringVariant([url absoluteString]);
}

bool isCoreFoundationBoolean(NSObject *object) {
    return object == (id)kCFBooleanFalse || object == (id)kCFBooleanTrue;
}

REALobjectStruct *newBooleanVariant(NSObject *object) {
    return REALNewVariantBoolean(object == (id)kCFBooleanTrue);
}

// The ways to convert an object, as the rows have them.

template <auto convert>
REALobjectStruct *value(NSObject *object, const char *) {
    return convert((id)object);
}

REALobjectStruct *registered(NSObject *object, const char *cocoaClass) {
    return newRegisteredWrapper(object, cocoaClass);
}

REALobjectStruct *nearest(NSObject *object, const char *cocoaClass) {
    return NewNSObjectZKT(object, objc_getClass(cocoaClass));
}

REALobjectStruct *view(NSObject *object, const char *cocoaClass) {
    if ([NSValue respondsToSelector:@selector(NewQTKitNSViewZKT:)])
        if (REALobjectStruct *result = [NSValue NewQTKitNSViewZKT:object])
            return result;
    return nearest(object, cocoaClass);
}

// In the order of the tests: a row counts only for objects that no earlier row matches. The order
// is the family's contract, with the rows that an earlier one hides.
constexpr ClassRow classRows[] = {
    {"NSURL", value<newUrlValue>},
    {"NSString", value<newStringVariant>},
    {"NSData", value<NSDataRB>},
    {"NSArray", value<newHostArray>},
    {"NSSet", value<newHostArrayOfSet>},
    {nullptr, value<newBooleanVariant>}, // numbers too, which they must not become
    {"NSNumber", value<newNumberVariant>},
    {"NSDate", value<newHostDate>},
    {"NSDictionary", value<NSDictionaryRB>},
    {"NSPathComponentCell", registered}, // stands before what it is too: an NSTextFieldCell
    {"NSPathCell", registered},          // stands before what it is too: an NSCell
    {"NSPathControl", registered},       // stands before what it is too: an NSView
    {"NSPipe", registered},
    {"NSTask", registered},
    {"NSFileHandle", registered},
    {"NSClipView", registered}, // stands before what it is too: an NSView
    {"NSAnimation", registered},
    {"NSCoder", registered},
    {"NSTimeZone", registered},
    {"NSDateComponents", registered},
    {"NSAnimationContext", registered},
    {"NSTimer", registered},
    {"NSBox", registered},                 // stands before what it is too: an NSView
    {"NSComboBox", registered},            // stands before what it is too: an NSTextField
    {"NSImageView", registered},           // stands before what it is too: an NSView
    {"NSPopUpButton", registered},         // stands before what it is too: an NSView
    {"NSTextField", registered},           // stands before what it is too: an NSView
    {"NSSearchFieldCell", registered},     // stands before what it is too: an NSTextFieldCell
    {"NSSecureTextField", registered},     // never reached: an NSTextField
    {"NSSecureTextFieldCell", registered}, // stands before what it is too: an NSTextFieldCell
    {"NSApplication", registered},         // stands before what it is too: an NSResponder
    {"NSSearchField", registered},         // never reached: an NSTextField
    {"NSTabView", registered},             // stands before what it is too: an NSView
    {"NSTabViewItem", registered},
    {"NSStepper", registered}, // stands before what it is too: an NSView
    {"NSURLRequest", registered},
    {"NSURLDownload", registered},
    {"NSURLConnection", registered},
    {"NSFontPanel", registered}, // stands before what it is too: an NSWindow
    {"NSFontManager", registered},
    {"NSImage", registered},
    {"NSImageRep", nearest},
    {"NSShadow", registered},
    {"NSAffineTransform", registered},
    {"NSFont", registered},
    {"NSToolbarItem", registered},
    {"NSToolbar", registered},
    {"NSScreen", registered},
    {"NSCharacterSet", registered},
    {"NSTextStorage", registered}, // stands before what it is too: an NSAttributedString
    {"NSColor", registered},
    {"NSAttributedString", nearest},
    {"NSAssertionHandler", registered},
    {"NSMenu", registered},
    {"NSFontDescriptor", registered},
    {"NSMenuItem", registered},
    {"NSError", registered},
    {"NSViewController", registered},   // stands before what it is too: an NSResponder
    {"NSWindowController", registered}, // stands before what it is too: an NSResponder
    {"NSHTTPCookie", registered},
    {"NSHTTPCookieStorage", registered},
    {"NSPasteboard", registered},
    {"NSBundle", registered},
    {"NSEnumerator", registered},
    {"NSDirectoryEnumerator", registered}, // never reached: an NSEnumerator
    {"NSRunningApplication", registered},
    {"NSURLCache", registered},
    {"NSCell", nearest},
    {"NSFileManager", registered},
    {"NSSound", registered},
    {"NSBezierPath", registered},
    {"NSCursor", registered},
    {"NSEvent", registered},
    {"NSIndexSet", nearest},
    {"NSCalendar", registered},
    {"NSView", view},      // stands before what it is too: an NSResponder
    {"NSWindow", nearest}, // stands before what it is too: an NSResponder
    {"NSColorList", registered},
    {"NSColorSpace", registered},
    {"NSTableColumn", registered},
    {"NSUndoManager", registered},
    {"NSScroller", registered}, // never reached: an NSView
    {"NSResponder", nearest},
    {"NSTextFieldCell", nearest},      // never reached: an NSCell
    {"NSText", nearest},               // never reached: an NSView
    {"NSTableHeaderView", registered}, // never reached: an NSView
    {"NSOperation", registered},
    {"NSNotification", registered},
    {"NSNotificationCenter", nearest},
    {"NSDistributedNotificationCenter", registered}, // never reached: an NSNotificationCenter
    {"NSUserDefaults", registered},
    {"NSDockTile", registered},
    {"NSLocale", registered},
    {"NSAppleEventDescriptor", registered},
    {"NSAppleScript", registered},
    {"NSTableView", registered}, // never reached: an NSView
    {"NSLayoutManager", registered},
    {"NSTextContainer", registered},
    {"NSTextView", nearest}, // never reached: an NSView
    {"NSTextTab", registered},
    {"NSParagraphStyle", registered},
    {"NSPasteboardItem", registered},
    {"NSRunLoop", registered},
    {"NSMetadataQuery", registered},
    {"NSMetadataItem", registered},
    {"NSPredicate", registered},
    {"NSCompoundPredicate", registered}, // never reached: an NSPredicate
    {"NSSortDescriptor", registered},
    {"NSMetadataQueryResultGroup", registered},
    {"NSComparisonPredicate", registered}, // never reached: an NSPredicate
    {"NSFileWrapper", registered},
    {"NSTextAttachment", registered},
    {"NSExpression", registered},
};

using RowIndex = std::uint8_t;
constexpr RowIndex noRow = std::numeric_limits<RowIndex>::max();
static_assert(std::size(classRows) < noRow);

constexpr RowIndex booleanRow = [] {
    const auto *row = std::find_if(std::begin(classRows), std::end(classRows),
                                   [](const ClassRow &each) { return each.cocoaClass == nullptr; });
    return static_cast<RowIndex>(row - std::begin(classRows));
}();

// The rows by class name: open addressing, with names placed by their length and three characters.
class RowsByName {
public:
    constexpr RowsByName() {
        slots_.fill(noRow);
        for (std::size_t row = 0; row != std::size(classRows); ++row)
            if (row != booleanRow)
                place(static_cast<RowIndex>(row));
    }

    // The row of that name, or noRow.
    [[nodiscard]] constexpr RowIndex find(std::string_view name) const {
        if (name.size() < shortestName)
            return noRow;
        std::size_t slot = firstSlot(name);
        while (slots_[slot] != noRow && classRows[slots_[slot]].cocoaClass != name)
            slot = nextSlot(slot);
        return slots_[slot];
    }

private:
    static constexpr std::size_t slotCount = 512; // a power of two, mostly empty
    static constexpr std::size_t shortestName = 5;

    static constexpr std::size_t firstSlot(std::string_view name) {
        const auto at = [=](std::size_t i) { return static_cast<unsigned char>(name[i]); };
        return (name.size() * 67 + at(2) * 31U + at(name.size() / 2) * 7U + at(name.size() - 2)) %
               slotCount;
    }
    static constexpr std::size_t nextSlot(std::size_t slot) { return (slot + 1) % slotCount; }

    constexpr void place(RowIndex row) {
        std::size_t slot = firstSlot(classRows[row].cocoaClass);
        while (slots_[slot] != noRow)
            slot = nextSlot(slot);
        slots_[slot] = row;
    }

    std::array<RowIndex, slotCount> slots_{};
};
constexpr RowsByName rowsByName;

static_assert(std::all_of(std::begin(classRows), std::end(classRows), [](const ClassRow &row) {
    return row.cocoaClass == nullptr || &classRows[rowsByName.find(row.cocoaClass)] == &row;
}));

bool isKindOf(NSObject *object, const char *className) {
    Class loaded = objc_getClass(className);
    return loaded != Nil && [object isKindOfClass:loaded];
}

// The definition of classRowOf.
const ClassRow *firstRowByMessages(NSObject *object) {
    for (const ClassRow &row : classRows)
        if (row.cocoaClass != nullptr ? isKindOf(object, row.cocoaClass)
                                      : isCoreFoundationBoolean(object))
            return &row;
    return nullptr;
}

// The same for an object that is a kind of its classes and of nothing else: of the rows that its
// classes have, the first counts. A row's class is the loaded one of that name, not any namesake.
const ClassRow *firstRowOfAncestors(NSObject *object) {
    RowIndex first = noRow;
    for (Class each = object_getClass(object); each != Nil; each = class_getSuperclass(each)) {
        const RowIndex row = rowsByName.find(object_getClassName((id)each));
        if (row < first && objc_getClass(classRows[row].cocoaClass) == each)
            first = row;
    }
    if (first > booleanRow && isCoreFoundationBoolean(object))
        first = booleanRow;
    return first != noRow ? &classRows[first] : nullptr;
}

// Whether the object answers isKindOfClass: as NSObject does, which follows its classes, beginning
// with what it answers to class. NSObject's methods are kept from the first time: one that is
// replaced later counts as another answer.
bool answersAsNSObject(NSObject *object) {
    static constinit IMP isKindOfClass = nullptr;
    static constinit IMP ownClass = nullptr;
    if (isKindOfClass == nullptr || ownClass == nullptr) {
        Class root = [NSObject class];
        isKindOfClass = class_getMethodImplementation(root, @selector(isKindOfClass:));
        ownClass = class_getMethodImplementation(root, @selector(class));
    }
    Class actual = object_getClass(object);
    return isKindOfClass != nullptr && ownClass != nullptr &&
           class_getMethodImplementation(actual, @selector(isKindOfClass:)) == isKindOfClass &&
           class_getMethodImplementation(actual, @selector(class)) == ownClass;
}

struct LateClass {
    const char *name;
    Class loaded = Nil;
    bool lookedUp = false;

    // The class as it was, loaded or not, when first asked for.
    Class get() {
        if (!lookedUp) {
            loaded = objc_getClass(name);
            lookedUp = true;
        }
        return loaded;
    }
};

constinit LateClass NSUserNotificationClass{"NSUserNotification"};
constinit LateClass NSDraggingImageComponentClass{"NSDraggingImageComponent"};
constinit LateClass QuartzFilterClass{"QuartzFilter"};
constinit LateClass QCCompositionClass{"QCComposition"};
constinit LateClass QCCompositionRepositoryClass{"QCCompositionRepository"};

constexpr LateClass *lateClasses[] = {&NSUserNotificationClass, &NSDraggingImageComponentClass,
                                      &QuartzFilterClass, &QCCompositionClass,
                                      &QCCompositionRepositoryClass};

} // namespace

const ClassRow *classRowOf(NSObject *object) {
    return answersAsNSObject(object) ? firstRowOfAncestors(object) : firstRowByMessages(object);
}

const char *lateClassOf(NSObject *object) {
    for (LateClass *each : lateClasses)
        if (Class loaded = each->get(); loaded != Nil && [object isKindOfClass:loaded])
            return each->name;
    return nullptr;
}
