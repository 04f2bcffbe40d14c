#pragma once

// Host exceptions between raising and being seen.

#include "host/core/Core.h"
#include "host/memory/Reference.h"

#include <string_view>
#include <utility>
#include <vector>

namespace host {

/// What was raised and not yet seen by a program's call.
class PendingException {
public:
    [[nodiscard]] bool any() const { return pending_.handle() != nullptr; }
    /// One that was pending before becomes a stray.
    void set(ObjectRef exception) {
        makeStray();
        pending_ = std::move(exception);
    }
    /// Nil when there is none.
    ObjectRef take() { return std::exchange(pending_, ObjectRef{}); }
    /// Nobody will see it as the outcome of a call.
    void makeStray() {
        if (any())
            strays_.push_back(take());
    }
    [[nodiscard]] const std::vector<ObjectRef> &strays() const { return strays_; }
    void clear() {
        strays_.clear();
        take();
    }

    /// Keeps what is pending now out of the way until the scope ends.
    class Scope {
    public:
        explicit Scope(PendingException &owner) : owner_(owner), before_(owner.take()) {}
        ~Scope() {
            if (before_.handle() != nullptr)
                owner_.set(std::move(before_));
        }
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;

    private:
        PendingException &owner_;
        ObjectRef before_;
    };

private:
    ObjectRef pending_;
    std::vector<ObjectRef> strays_;
};

/// The exception becomes pending, with a reference of the host's own.
void raise(Core &core, ObjectHandle exception);
/// Makes the exception with a UTF-8 message and raises it.
void raiseNew(Core &core, std::string_view className, std::string_view message);

} // namespace host
