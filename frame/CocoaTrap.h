#pragma once

#include <Foundation/Foundation.h>

/// Logs the exception and raises it in the host as an NSExceptionZKT. The family's exception
/// support is not probed for: without it the send itself fails, and that exception leaves this
/// function.
void raiseInHost(NSException *exception);

/// The Cocoa exception trap: the result of the message sends, or the fallback after an NSException,
/// which is raised in the host. Anything else thrown passes through.
template <class Result, class Sends>
Result trapCocoaExceptions(Result fallback, Sends sends) {
    @try {
        return sends();
    } @catch (NSException *exception) {
        raiseInHost(exception);
    }
    return fallback;
}

/// The same for operations without a result.
template <class Sends>
void trapCocoaExceptions(Sends sends) {
    @try {
        sends();
    } @catch (NSException *exception) {
        raiseInHost(exception);
    }
}
