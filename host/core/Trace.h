#pragma once

// What plug-ins asked of the host, as lines of text that tests compare whole.
//
//   find REALLockObject            the resolver was asked and had the service
//   miss REALLockObject            ... and had not
//   REALLockObject(Date#1)         a call without a result
//   REALBuildString("abc", 3) = String#2
//   Dictionary.Value(Dictionary#1, Variant#2, nil)    a host method of an object, object first
//   LenB(String#2) = 3             a global host method
//   StringArray.Insert(Array#1, 0, String#2)          an array's insert procedure
//   ObjectArray.Insert(Array#1, 0, Variant#2)
//
// A line stands where its call began, so the calls made inside another one follow it; its result
// is added when it returns. A call left by an exception ends in " threw", one that has not
// returned yet has no result.
//
// Arguments and results:
//   objects and strings   class and number: NSProcessInfoZKT#1, Variant#3, Array#4, String#2.
//                         Objects of all classes share one numbering, strings have another;
//                         both count from 1 and never reuse a number. A freed one is shown
//                         with its name, a pointer that never was one as "invalid".
//   nil                   a null handle or pointer
//   text and bytes        "abc" with \", \\ and \xNN for bytes outside 0x20..0x7E; after 64
//                         bytes "..." follows the closing quote
//   encodings             0x08000100, eight digits
//   integers              decimal
//   doubles               shortest form that reads back the same: 2013.04, 1, nan, inf
//   Booleans              true, false
//   class records         the class name as text
//   other pointers        pointer, or nil
//
// While a service is replaced, text and bytes are shown as "pointer": what a test passes to its
// own function need not be readable.

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

/// Told of lines as they happen. Each call is followed by its end; in between others may stand.
struct TraceListener {
    /// A line that is complete: a look-up.
    std::function<void(const std::string &line)> stood;
    /// The line of a call that has begun.
    std::function<void(std::size_t place, const std::string &line)> begun;
    /// The same with what its end added to it, which may be nothing.
    std::function<void(std::size_t place, const std::string &line, std::string_view added)> ended;
};

class Trace {
public:
    [[nodiscard]] bool on() const { return on_; }
    void setOn(bool on) { on_ = on; }

    void lookup(std::string_view name, bool found);
    /// Adds the line of a call and returns its place for the result.
    std::size_t begin(std::string line);
    /// The call has returned; the text is its result, or nothing.
    void end(std::size_t place, std::string_view text);
    void setListener(TraceListener listener) { listener_ = std::move(listener); }

    [[nodiscard]] std::vector<std::string> all() const;
    [[nodiscard]] std::vector<std::string> calls() const;
    [[nodiscard]] std::vector<std::string> lookups() const;
    void clear();

private:
    struct Entry {
        bool isCall;
        std::string text;
    };
    [[nodiscard]] std::vector<std::string> select(bool calls) const;

    bool on_ = true;
    std::vector<Entry> entries_;
    std::optional<TraceListener> listener_;
    /// Places handed out before a clear() belong to lines that are gone.
    std::size_t firstPlace_ = 0;
};

} // namespace host
