#pragma once

#include "OwnObject.h"

#import <Foundation/Foundation.h>

#include <CoreFoundation/CoreFoundation.h>

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// Is a kind of whatever the test says, and shows in the host's trace what it is asked:
/// [isKindOfClass:NSURL], [respondsToSelector:_cfTypeID], [_cfTypeID], [class], [retain].
@interface ShapedObject : NSObject {
@public
    std::set<std::string, std::less<>> kinds; // of which classes it says to be a kind
    std::optional<Class> itsClass;            // what class answers instead of the real one
    // What _cfTypeID answers, one after the other, the last one for ever. While there is none it
    // denies to know the message.
    std::vector<CFTypeID> types;
    std::function<void(std::string_view)> onMessage; // gets what the line shows; may throw
    std::size_t typesAsked;
}
@end

/// One that is a kind of these classes.
struct Shaped : OwnObject<ShapedObject> {
    explicit Shaped(std::set<std::string, std::less<>> kinds = {}) {
        (*this)->kinds = std::move(kinds);
    }
};

/// One that is no kind of anything, with these answers to _cfTypeID.
struct Typed : OwnObject<ShapedObject> {
    explicit Typed(std::vector<CFTypeID> types) { (*this)->types = std::move(types); }
};

/// An action for onMessage: raises the NSException "Refused", with the message as its reason.
std::function<void(std::string_view)> refusingTo(std::string message);
