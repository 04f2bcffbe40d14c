#include "convert/TableSearch.h"

#include <CoreFoundation/CoreFoundation.h>
#include <objc/runtime.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <dlfcn.h>
#include <functional>
#include <iterator>
#include <limits>
#include <string_view>

namespace {

using RowIndex = std::uint8_t;
constexpr RowIndex noRow = std::numeric_limits<RowIndex>::max();
static_assert(std::size(classRows) < noRow);

// The rows by class name, the shorter names first: where a name is in no row, its length mostly
// tells.
struct NamedRow {
    std::string_view name;
    RowIndex row;

    friend constexpr bool operator<(const NamedRow &one, const NamedRow &other) {
        return one.name.size() != other.name.size() ? one.name.size() < other.name.size()
                                                    : one.name < other.name;
    }
};

constexpr auto namedRows = [] {
    std::array<NamedRow, std::size(classRows) - 1> rows{};
    std::size_t count = 0;
    for (std::size_t row = 0; row != std::size(classRows); ++row)
        if (row != booleanRow)
            rows[count++] = {classRows[row].cocoaClass, static_cast<RowIndex>(row)};
    std::ranges::sort(rows, std::less<>());
    return rows;
}();
static_assert(std::ranges::all_of(namedRows,
                                  [](const NamedRow &row) { return row.name.starts_with("NS"); }));

bool isCoreFoundationBoolean(NSObject *object) {
    return object == (id)kCFBooleanFalse || object == (id)kCFBooleanTrue;
}

bool isKindOf(NSObject *object, const char *className) {
    Class loaded = objc_getClass(className);
    return loaded != Nil && [object isKindOfClass:loaded];
}

// The definition of classRowOf.
[[gnu::noinline, gnu::cold]] const ClassRow *firstRowByMessages(NSObject *object) {
    for (const ClassRow &row : classRows)
        if (row.cocoaClass != nullptr ? isKindOf(object, row.cocoaClass)
                                      : isCoreFoundationBoolean(object))
            return &row;
    return nullptr;
}

// Foundation's classes of the value rows, and NSObject. The plug-in is linked with it, so they are
// there as long as the plug-in is, and are looked up once.
constinit bool foundationLookedUp = false;
constinit Class valueClasses[valueRowCount] = {};
constinit std::uintptr_t lowestValueClass = std::numeric_limits<std::uintptr_t>::max();
constinit Class rootClass = Nil;

// NSObject's own methods; null when they had been replaced by the first conversion. On macOS,
// isKindOfClass: begins with the answer to class, so both must be its own.
constinit IMP isKindOfClassOfNSObject = nullptr;
constinit IMP classOfNSObject = nullptr;

// A method of a class that stands in the same library as the class, else null.
IMP ownMethod(Class cls, SEL selector) {
    IMP method = class_getMethodImplementation(cls, selector);
    Dl_info ofMethod{};
    Dl_info ofClass{};
    const bool isOwn = dladdr(reinterpret_cast<const void *>(method), &ofMethod) != 0 &&
                       dladdr((const void *)cls, &ofClass) != 0 &&
                       ofMethod.dli_fbase == ofClass.dli_fbase;
    return isOwn ? method : nullptr;
}

[[gnu::noinline, gnu::cold]] void lookUpFoundation() {
    for (std::size_t row = 0; row != valueRowCount; ++row)
        if (row != booleanRow) {
            valueClasses[row] = objc_getClass(classRows[row].cocoaClass);
            lowestValueClass = std::min(lowestValueClass, (std::uintptr_t)valueClasses[row]);
        }
    rootClass = [NSObject class];
    isKindOfClassOfNSObject = ownMethod(rootClass, @selector(isKindOfClass:));
    classOfNSObject = ownMethod(rootClass, @selector(class));
    foundationLookedUp = true;
}

// Whether objects of the class are a kind of it and its superclasses, and of nothing else.
bool answersAsNSObject(Class cls) {
    // No method's implementation is null.
    return class_getMethodImplementation(cls, @selector(isKindOfClass:)) ==
               isKindOfClassOfNSObject &&
           class_getMethodImplementation(cls, @selector(class)) == classOfNSObject;
}

// The value row of a class, or noRow.
RowIndex valueRowOf(Class cls) {
    if ((std::uintptr_t)cls < lowestValueClass) // as the program's own are
        return noRow;
    const auto *found = std::ranges::find(valueClasses, cls);
    return found != std::end(valueClasses) ? static_cast<RowIndex>(found - std::begin(valueClasses))
                                           : noRow;
}

// The row of any other class, or noRow. Such classes come and go, so that a name says little: the
// row's class is the one that is loaded under the name now.
RowIndex pairRowOf(Class cls, const char *name) {
    const auto *found = std::ranges::lower_bound(namedRows, NamedRow{name, noRow}, std::less<>());
    return found != namedRows.end() && found->name == name && objc_getClass(name) == cls
               ? found->row
               : noRow;
}

// The same as firstRowByMessages, for an object whose class answers as NSObject does: of the rows
// that its superclasses have, the first counts.
const ClassRow *firstRowOfAncestors(NSObject *object, Class cls) {
    RowIndex first = noRow;
    for (Class each = cls; each != Nil && each != rootClass; each = class_getSuperclass(each)) {
        if (const RowIndex value = valueRowOf(each); value != noRow) {
            first = value;
            break;
        }
        const char *name = class_getName(each);
        if (name[0] == 'N' && name[1] == 'S') // unlike most
            first = std::min(first, pairRowOf(each, name));
    }
    if (first > booleanRow && isCoreFoundationBoolean(object))
        first = booleanRow;
    return first != noRow ? &classRows[first] : nullptr;
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
    if (!foundationLookedUp) [[unlikely]]
        lookUpFoundation();
    Class cls = object_getClass(object);
    return answersAsNSObject(cls) ? firstRowOfAncestors(object, cls) : firstRowByMessages(object);
}

const char *lateClassOf(NSObject *object) {
    for (LateClass *each : lateClasses)
        if (Class loaded = each->get(); loaded != Nil && [object isKindOfClass:loaded])
            return each->name;
    return nullptr;
}
