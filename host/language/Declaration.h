#pragma once

// Declarations in the host's language, as class records and method look-ups carry them.
//
//     argument(index as integer) as string
//     processInfo as NSProcessInfoZKT
//     arguments as string()
//     Value(key As Variant, Assigns _value As Variant)
//     Year as Integer, Month as Integer = 1            a parameter list without a name
//     NSActivityBackground = &h000000FF                a constant
//
// Keywords, types and names in any case; blanks wherever they do no harm.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// A text that is no declaration: the text, the column (from 1) and what was expected there.
class DeclarationError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

enum class TypeKind {
    boolean, ///< one byte
    integer, ///< 64 bits; also written Int64
    int32,
    uint32,
    uint64,
    real, ///< "Double"
    single,
    string,
    pointer, ///< "Ptr"
    variant,
    object, ///< an instance of a class
};

struct Type {
    TypeKind kind = TypeKind::integer;
    std::string className = {}; ///< for object: as written
    bool isArray = false;

    [[nodiscard]] bool isHandle() const;      ///< passed as a host object or host string
    bool operator==(const Type &other) const; ///< class names without regard to case
};

/// What the word names where a type stands: one of the host's, or else a class.
Type typeNamed(std::string_view word);
/// Of the types that are no classes.
std::vector<std::string> namesOfTypes();

/// As a program would write it: "Integer", "String()", "NSProcessInfoZKT".
std::string describe(const Type &type);
/// Bytes of a field of this type.
std::size_t widthOf(const Type &type);

struct Parameter {
    std::string name;
    Type type;
    bool assigns = false;
    std::optional<std::string> defaultValue = {}; ///< the literal as written
};

struct MethodDeclaration {
    std::string name; ///< "" for a parameter list
    std::vector<Parameter> parameters;
    std::optional<Type> result;
};

/// "argument(index As Integer) As String"
std::string describe(const MethodDeclaration &method);

struct ConstantDeclaration {
    std::string name;
    std::int64_t value;
};

/// All throw DeclarationError.
Type parseType(std::string_view text);
MethodDeclaration parseMethod(std::string_view text);
ConstantDeclaration parseConstant(std::string_view text);
/// An integer literal: decimal, &h, &o or &b, with a sign if need be.
std::int64_t parseInteger(std::string_view literal);

/// Whether a look-up for one finds the other, as the host's compiler resolves overloads: name,
/// number and types of parameters, "Assigns" and the result; names of parameters and defaults
/// do not matter.
bool sameSignature(const MethodDeclaration &a, const MethodDeclaration &b);

} // namespace host
