#pragma once

#include "Alone.h"

#import <Foundation/Foundation.h>

#include <cstddef>
#include <functional>
#include <vector>

/// Stands in for +[NSProcessInfo processInfo] while it lives: answers as it was told, once each,
/// and from then on as Foundation does, which asks for the object itself, to write its log for
/// example. One at a time.
class ScriptedProcessInfo {
public:
    /// Each gives an object (borrowed) or nil, or throws.
    explicit ScriptedProcessInfo(std::vector<std::function<id()>> answers);
    ~ScriptedProcessInfo();
    ScriptedProcessInfo(const ScriptedProcessInfo &) = delete;
    ScriptedProcessInfo &operator=(const ScriptedProcessInfo &) = delete;

    /// Every time the same object.
    static std::vector<std::function<id()>> times(std::size_t count, id object);

    /// Answers that nobody has asked for.
    [[nodiscard]] std::size_t left() const;

private:
    Alone<ScriptedProcessInfo> alone_;
};
