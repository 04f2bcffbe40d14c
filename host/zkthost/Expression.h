#pragma once

// One expression of the host's language, as far as calling a member takes it.
//
//     hostName                                         a member of the shared object
//     argument(0)
//     processName = "x"
//     beginActivity(NSActivityBackground, "work").Options
//     New NSProcessInfoActivityZKT.Handle              a member of a new instance
//     NSProcessInfoZKT.NSMACHOperatingSystem           a member of the class
//
// Names in any case. Values: 12, -1, &hFF, 1.5, "text" ("" inside stands for "), true, false, nil.

#include "host/language/Value.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace zkthost {

struct Expression;

struct Member {
    std::string name;
    std::vector<Expression> arguments;
};

using Literal = std::variant<std::monostate, std::int64_t, double, bool, std::string>;

struct Expression {
    std::optional<Literal> literal = {}; ///< else the chain
    bool isNew = false;                  ///< the chain begins with the class to make one of
    std::vector<Member> chain = {};
    std::unique_ptr<Expression> assigned = {}; ///< what the last member is set to
};

/// Throws InputError with the column (from 1) and what was expected there.
Expression parseExpression(std::string_view text);

} // namespace zkthost
