// References and handles.

#include "Plugin.h"

namespace {

/// The control: what the other plug-ins do, done right.
void none(Plugin &plugin) {
    plugin.setMethod("act(text as String) as WrongZKT", [](ObjectHandle self, StringHandle text) {
        service<const void *(StringHandle)>("StringGetCString")(text);
        unlockObject(newInstance("Date"));
        unlockString(buildString("made"));
        std::memset(dataOf(self), 1, 16);
        lockObject(self);
        return self;
    });
}

void leakedObject(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) { newInstance("Date"); });
}

void leakedString(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) { buildString("forgotten"); });
}

void resultLockedTwice(Plugin &plugin) {
    plugin.setMethod("act as Date", [](ObjectHandle) {
        const ObjectHandle date = newInstance("Date");
        lockObject(date);
        return date;
    });
}

void lentObjectReleased(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle self) { unlockObject(self); });
}

void lentStringReleased(Plugin &plugin) {
    plugin.setMethod("act(text as String)",
                     [](ObjectHandle, StringHandle text) { unlockString(text); });
}

void objectReleasedTwice(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) {
        const ObjectHandle date = newInstance("Date");
        unlockObject(date);
        unlockObject(date);
    });
}

void stringReleasedTwice(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) {
        const StringHandle text = buildString("made");
        unlockString(text);
        unlockString(text);
    });
}

void objectUsedAfterRelease(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) {
        const ObjectHandle date = newInstance("Date");
        unlockObject(date);
        std::int64_t year = 0;
        service<bool(ObjectHandle, const char *, std::int64_t *)>("REALGetPropValueInteger")(
            date, "Year", &year);
    });
}

void stringUsedAfterRelease(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) {
        const StringHandle text = buildString("made");
        unlockString(text);
        service<const void *(StringHandle)>("StringGetCString")(text);
    });
}

void stringForAnObject(Plugin &plugin) {
    plugin.setMethod("act(text as String)", [](ObjectHandle, StringHandle text) {
        lockObject(reinterpret_cast<ObjectHandle>(text));
    });
}

void dataForAnObject(Plugin &plugin) {
    plugin.setMethod(
        "act", [](ObjectHandle self) { lockObject(reinterpret_cast<ObjectHandle>(dataOf(self))); });
}

void nilReleased(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) { unlockObject(newInstance("NoSuchClassZKT")); });
}

void keptInDestructor(Plugin &plugin) {
    plugin.type.destructor = [](ObjectHandle self) { lockObject(self); };
}

void releasedInConstructor(Plugin &plugin) {
    plugin.type.constructor = [](ObjectHandle self) { unlockObject(self); };
}

void dateRaised(Plugin &plugin) {
    plugin.setMethod("act", [](ObjectHandle) {
        const ObjectHandle date = newInstance("Date");
        service<void(ObjectHandle)>("RuntimeRaiseException")(date);
        unlockObject(date);
    });
}

constexpr Fault faults[] = {
    {"none", none},
    {"leakedObject", leakedObject},
    {"leakedString", leakedString},
    {"resultLockedTwice", resultLockedTwice},
    {"lentObjectReleased", lentObjectReleased},
    {"lentStringReleased", lentStringReleased},
    {"objectReleasedTwice", objectReleasedTwice},
    {"stringReleasedTwice", stringReleasedTwice},
    {"objectUsedAfterRelease", objectUsedAfterRelease},
    {"stringUsedAfterRelease", stringUsedAfterRelease},
    {"stringForAnObject", stringForAnObject},
    {"dataForAnObject", dataForAnObject},
    {"nilReleased", nilReleased},
    {"keptInDestructor", keptInDestructor},
    {"releasedInConstructor", releasedInConstructor},
    {"dateRaised", dateRaised},
};

} // namespace

std::span<const Fault> referenceFaults() {
    return faults;
}
