#pragma once

// Values as a program of the host's language sees them, and the outcome of a call.

#include "host/core/PluginRecords.h"
#include "host/core/UsageError.h"
#include "host/language/Encodings.h"
#include "host/memory/Reference.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace host {

using ValueAlternatives =
    std::variant<std::monostate, std::int64_t, std::uint64_t, double, bool, StringRef, ObjectRef>;

/// One value. Nil strings and nil objects are both the monostate.
class Value : public ValueAlternatives {
public:
    using ValueAlternatives::ValueAlternatives;
    Value() = default;
    Value(int number) : ValueAlternatives(std::int64_t{number}) {}
    Value(long long number) : ValueAlternatives(std::int64_t{number}) {}
    /// Makes a UTF-8 string in the current host; "" is nil, as the empty string of a program is.
    Value(const char *utf8Text);
    Value(std::string_view utf8Text);
    Value(StringRef string) {
        if (string.handle() != nullptr)
            emplace<StringRef>(std::move(string));
    }
    Value(ObjectRef object) {
        if (object.handle() != nullptr)
            emplace<ObjectRef>(std::move(object));
    }

    [[nodiscard]] bool isNil() const { return std::holds_alternative<std::monostate>(*this); }

    /// Each throws UsageError when the value is something else. A nil value is an empty owner
    /// for string() and object(), and "" for text().
    [[nodiscard]] std::int64_t integer() const;
    [[nodiscard]] std::uint64_t unsignedInteger() const;
    [[nodiscard]] double number() const;
    [[nodiscard]] bool boolean() const;
    [[nodiscard]] StringRef string() const;
    [[nodiscard]] ObjectRef object() const;
    /// The string's text in UTF-8.
    [[nodiscard]] std::string text() const;
};

StringRef makeString(std::string_view bytes, std::uint32_t encoding = encoding::utf8);
/// In UTF-8; "" for nil and for what is no live string.
std::string textOf(StringHandle string);

/// For messages: 12, "abc", true, NSProcessInfoZKT#1, nil.
std::string describe(const Value &value);

/// A host exception that became visible when the plug-in's function returned.
struct RaisedException {
    std::string className;
    std::optional<std::string> message; ///< UTF-8; empty when Message is the null string
    std::int64_t errorNumber = 0;
    std::string cocoaName = {};   ///< of the NSException inside an NSExceptionZKT, else ""
    std::string cocoaReason = {}; ///< likewise
    ObjectRef object;
};

/// What a call gave: its value, and the host exception that it left behind, if any. With an
/// exception the value is the function's fallback, which a program would never see.
struct Outcome {
    Value value;
    std::optional<RaisedException> exception;

    [[nodiscard]] bool raised() const { return exception.has_value(); }

    /// The value of a call that must not have raised: each throws UsageError naming the
    /// exception if there is one.
    // NOLINTNEXTLINE(modernize-use-nodiscard): procedures are asked only for what it throws.
    const Value &result() const;
    [[nodiscard]] bool isNil() const { return result().isNil(); }
    [[nodiscard]] std::int64_t integer() const { return result().integer(); }
    [[nodiscard]] std::uint64_t unsignedInteger() const { return result().unsignedInteger(); }
    [[nodiscard]] double number() const { return result().number(); }
    [[nodiscard]] bool boolean() const { return result().boolean(); }
    [[nodiscard]] StringRef string() const { return result().string(); }
    [[nodiscard]] ObjectRef object() const & { return result().object(); }
    /// Moved out, so that the owner that it gives is the only one.
    ObjectRef object() &&;
    [[nodiscard]] std::string text() const { return result().text(); }
};

using Values = std::vector<Value>;

} // namespace host
