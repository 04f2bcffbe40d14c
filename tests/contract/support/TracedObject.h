#pragma once

#include "OwnObject.h"
#include "TraceLines.h"

#import <Foundation/Foundation.h>

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>

/// As the trace shows text: "abc", nil.
std::string traced(NSString *text);

/// Stands for any Foundation object that an operation meets. Each message is a line of the host's
/// trace: [shared endActivity:token], [token retain].
@interface TracedObject : NSObject {
@public
    std::string name;                           // in the trace
    std::set<std::string, std::less<>> unknown; // selectors that it denies to know
    std::function<void(std::string_view)>
        onMessage;              // gets the selector, behind its line; may throw
    id activity;                // what an activity begins with; not retained
    std::optional<id> retained; // what retain answers and does instead; not retained
    id arguments;               // not retained
    signed char automaticTerminationSupportEnabled;
}
- (id)beginActivityWithOptions:(std::uint64_t)options reason:(NSString *)reason;
- (void)endActivity:(id)activity;
- (void)disableSuddenTermination;
- (void)enableSuddenTermination;
- (void)disableAutomaticTermination:(NSString *)reason;
- (void)enableAutomaticTermination:(NSString *)reason;
- (void)setProcessName:(NSString *)name;
- (signed char)automaticTerminationSupportEnabled;
- (void)setAutomaticTerminationSupportEnabled:(signed char)enabled;
- (id)arguments;
@end

/// A new object with this name in the trace, released at the end.
struct Traced : OwnObject<TracedObject> {
    explicit Traced(std::string name) { (*this)->name = std::move(name); }
};

/// An action for onMessage: raises the NSException "Refused" at this selector.
std::function<void(std::string_view)> refusing(std::string selector);
