#pragma once

#include "Alone.h"

#include "host/image/Image.h"

#import <Foundation/Foundation.h>

#include <functional>
#include <vector>

/// Substitutes the shared process-information object for one image: while this lives, each
/// +[NSProcessInfo processInfo] that the image sends is a line of the host's trace, and the answer
/// is the test's. All other senders, Foundation's own log among them, get Foundation's object. One
/// at a time.
class SharedObjectSubstitute {
public:
    /// Borrows the object. Nil is an answer too.
    SharedObjectSubstitute(const host::Image &image, id object);
    ~SharedObjectSubstitute();
    SharedObjectSubstitute(const SharedObjectSubstitute &) = delete;
    SharedObjectSubstitute &operator=(const SharedObjectSubstitute &) = delete;

    /// The coming requests get these one after the other, the last one for ever. Borrows them.
    void answer(std::vector<id> objects);
    /// At the n-th request from now on, counted from 1, the action runs instead, and may throw.
    void interrupt(std::size_t n, std::function<void()> action);

private:
    Alone<SharedObjectSubstitute> alone_;
};
