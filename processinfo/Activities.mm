#include "processinfo/Handlers.h"

#include "bridge/NewNSString.h"
#include "frame/CocoaTrap.h"
#include "frame/HostServices.h"
#include "frame/RaiseException.h"
#include "processinfo/ActivityData.h"
#include "processinfo/Classes.h"

// Activities begin and end on the process's shared object, asked for at each use: they work on an
// unbound instance too.

namespace {

ActivityData &activityData(REALobjectStruct *activity) {
    return instanceData<ActivityData>(activity,
                                      static_cast<std::size_t>(processActivityClass.dataOffset));
}

void endAndRelease(const ActivityData &data) {
    id token = (id)data.token;
    [[NSProcessInfo processInfo] endActivity:token];
    [token release];
}

} // namespace

namespace processinfo {

REALobjectStruct *beginActivityWithOptions(REALobjectStruct *, std::int64_t options,
                                           REALstringStruct *reason) {
    // An exception after the activity instance was made abandons it.
    return trapCocoaExceptions<REALobjectStruct *>(nullptr, [&]() -> REALobjectStruct * {
        if (![[NSProcessInfo processInfo]
                respondsToSelector:@selector(beginActivityWithOptions:reason:)])
            return nullptr;
        REALobjectStruct *activity = REALnewInstance("NSProcessInfoActivityZKT");
        if (activity == nullptr)
            return nullptr;

        NSString *text = NewNSString(reason);
        id token = [[NSProcessInfo processInfo]
            beginActivityWithOptions:static_cast<NSActivityOptions>(options)
                              reason:text];
        ActivityData &data = activityData(activity);
        data.token = [token retain];
        data.active = true;
        data.options = options;
        if (reason != nullptr) {
            data.reason = reason;
            REALLockString(reason);
        }
        return activity;
    });
}

void endActivity(REALobjectStruct *, REALobjectStruct *activity) {
    if (activity == nullptr) {
        RaiseException("NilObjectException", "activity is nil");
        return;
    }
    trapCocoaExceptions([&] {
        if (![[NSProcessInfo processInfo] respondsToSelector:@selector(endActivity:)])
            return;
        ActivityData &data = activityData(activity);
        if (data.active)
            endAndRelease(data);
        data.token = nullptr;
        data.active = false;
    });
}

} // namespace processinfo

namespace processinfo::activity {

void Constructor(REALobjectStruct *) {}

void Destructor(REALobjectStruct *instance) {
    ActivityData &data = activityData(instance);
    if (data.active)
        trapCocoaExceptions([&] { endAndRelease(data); });
    data.active = false;
    data.token = nullptr;
    if (data.reason != nullptr) {
        REALUnlockString(data.reason);
        data.reason = nullptr;
    }
}

} // namespace processinfo::activity
