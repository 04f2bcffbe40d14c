#include "convert/WrapperFactory.h"

#include "frame/HeldUntilReset.h"
#include "frame/Registry.h"

#include <objc/runtime.h>

#include <cstddef>
#include <cstring>

namespace {

constexpr std::size_t longestClassName = 199;

// The host's name for a Cocoa class.
class HostClassName {
public:
    // Of a name of at most longestClassName characters.
    HostClassName(const char *cocoaClass, std::size_t length) {
        std::memcpy(text_, cocoaClass, length);
        std::memcpy(text_ + length, suffix, sizeof suffix);
    }
    [[nodiscard]] const char *text() const { return text_; }

private:
    static constexpr char suffix[] = "ZKT";
    char text_[256];
};

// Gives the new instance, with the object in it: the first field of a wrapper's data.
REALobjectStruct *wrapping(NSObject *object, REALobjectStruct *newInstance) {
    ObjectReference instance{newInstance};
    instanceData<NSObject *>(newInstance) = [object retain];
    return instance.handOver();
}

// The first instance that the host makes on the way from the object's class to the root. With a
// required class every instance is passed over, unreleased, unless the object is a kind of it.
REALobjectStruct *walkClasses(NSObject *object, Class required) {
    for (Class each = [object class]; each != Nil; each = class_getSuperclass(each)) {
        const char *name = object_getClassName((id)each);
        const std::size_t length = name != nullptr ? std::strlen(name) : longestClassName + 1;
        if (length > longestClassName)
            continue;
        ObjectReference instance{REALnewInstance(HostClassName(name, length).text())};
        if (!instance)
            continue;
        const bool fits = required == Nil || [object isKindOfClass:required];
        REALobjectStruct *made = instance.handOver();
        if (fits)
            return wrapping(object, made);
    }
    return nullptr;
}

} // namespace

REALobjectStruct *newRegisteredWrapper(NSObject *object, const char *cocoaClass) {
    if (REALobjectStruct *known = registry::wrapperOf(object))
        return known;
    REALobjectStruct *made =
        REALnewInstance(HostClassName(cocoaClass, std::strlen(cocoaClass)).text());
    if (made == nullptr)
        return nullptr;
    ObjectReference instance{wrapping(object, made)};
    registry::enter(object, instance.get());
    return instance.handOver();
}

REALobjectStruct *NewNSObjectZKT(NSObject *object, Class required) {
    return object != nil && required != Nil ? walkClasses(object, required) : nullptr;
}

REALobjectStruct *newNearestWrapper(NSObject *object) {
    return walkClasses(object, Nil);
}
