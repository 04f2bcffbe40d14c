#pragma once

// The classes that the host knows: its own, those registered by plug-ins and those added for
// tests.

#include "host/core/HostOptions.h"
#include "host/core/PluginRecords.h"
#include "host/language/Declaration.h"
#include "host/language/Value.h"

#include <any>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct Object;

struct Property {
    std::string name;
    Type type;
    std::int64_t flags = 0;
    // Of a plug-in's class:
    void *getter = nullptr;
    void *setter = nullptr;
    std::int64_t parameter = 0;
    // Of the host's own:
    Value (*read)(const Object &) = nullptr;
    void (*write)(Object &, const Value &) = nullptr;

    [[nodiscard]] bool isField() const { return accessorIsField(getter); }
    [[nodiscard]] bool isWritable() const { return setter != nullptr || write != nullptr; }
};

struct Method {
    std::string declaration; ///< as written
    MethodDeclaration parsed;
    void *function = nullptr; ///< (object, parameters...); shared methods without the object
    std::int64_t flags = 0;
};

struct Constant {
    std::string declaration;
    std::string name;
    std::int64_t value = 0;
};

struct HostClass {
    std::string name;
    const HostClass *superclass = nullptr;
    std::size_t dataSize = 0;
    std::size_t dataOffset = objectHeaderSize;
    std::vector<std::byte> initialData = {};
    std::any (*makePayload)() = nullptr; ///< what an instance keeps in C++; inherited
    void (*constructor)(ObjectHandle) = nullptr;
    void (*destructor)(ObjectHandle) = nullptr;
    std::vector<Property> properties = {};
    std::vector<Method> methods = {};
    std::vector<Method> sharedMethods = {};
    std::vector<Constant> constants = {};
    const PluginClassRecord *record = nullptr; ///< of a plug-in's class
    bool isInternal = false;                   ///< Variant, Array: no program names them

    [[nodiscard]] bool isKindOf(const HostClass &other) const;
    /// All search the superclasses too; null when absent.
    [[nodiscard]] const Property *property(std::string_view propertyName) const;
    /// The method with this name that can take so many arguments.
    [[nodiscard]] const Method *method(std::string_view methodName,
                                       std::size_t argumentCount) const;
    [[nodiscard]] const Method *method(const MethodDeclaration &signature) const;
    // Not inherited:
    [[nodiscard]] const Method *sharedMethod(std::string_view methodName,
                                             std::size_t argumentCount) const;
    [[nodiscard]] const Constant *constant(std::string_view constantName) const;
};

/// Classes never go and keep their addresses.
class ClassTable {
public:
    /// Null when the host does not know the class (hidden ones included).
    [[nodiscard]] const HostClass *find(std::string_view name) const;
    /// Whether hidden or not.
    [[nodiscard]] const HostClass *findAny(std::string_view name) const;
    /// Throws UsageError for a name that is taken.
    HostClass &add(HostClass type);
    void add(const ClassSpec &spec);

    void hide(std::string_view name);
    void show(std::string_view name);

    void addGlobal(Method method) { globals_.push_back(std::move(method)); }
    /// The global method, hidden or not; null when absent.
    [[nodiscard]] const Method *global(const MethodDeclaration &signature) const;
    /// Look-ups do not find a hidden declaration, neither as a class's method nor as a global one.
    void hideMethod(MethodDeclaration method) { hiddenMethods_.push_back(std::move(method)); }
    void showMethod(const MethodDeclaration &method);
    [[nodiscard]] bool isHidden(const MethodDeclaration &method) const;

    /// Where the data of a plug-in's class is placed; objectHeaderSize unless stated.
    void placeData(std::string_view className, std::size_t offset);
    [[nodiscard]] std::size_t dataOffsetFor(std::string_view className) const;

    /// In order of registration.
    [[nodiscard]] std::vector<const HostClass *> registered() const;
    [[nodiscard]] std::vector<const HostClass *> all() const;

private:
    std::vector<std::unique_ptr<HostClass>> classes_;
    std::map<std::string, HostClass *, std::less<>> byName_; ///< by folded name
    std::vector<std::string> hidden_;                        ///< folded
    std::vector<Method> globals_;
    std::vector<MethodDeclaration> hiddenMethods_;
    std::map<std::string, std::size_t, std::less<>> dataOffsets_;
};

/// Whether so many arguments fit the parameters, defaults counted.
bool accepts(const MethodDeclaration &method, std::size_t argumentCount);

} // namespace host
