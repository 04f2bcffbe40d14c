#include "host/classes/Registration.h"

#include "host/classes/ClassTable.h"
#include "host/core/Core.h"
#include "host/language/Names.h"
#include "host/memory/Heap.h"

#include <algorithm>
#include <set>

namespace host {

namespace {

/// Classes of the family that no loaded part may have registered (yet).
bool isFamilyName(std::string_view name) {
    return name.ends_with("ZKT");
}

// The flags that plug-ins give this host's classes, fields and functions.
constexpr std::uint64_t classFlags = 4;
constexpr std::int64_t propertyFlags = 6;
constexpr std::int64_t methodFlags = 4;
constexpr std::int64_t extraMethodFlag = 0x80;

/// Reads a record and notes what is wrong with it.
class Reader {
public:
    Reader(const Core &core, const PluginClassRecord &record) : core_(core), record_(record) {}

    HostClass read();
    std::vector<std::string> faults;

private:
    void fault(const std::string &text) {
        const bool named = record_.name != nullptr && *record_.name != '\0';
        faults.push_back((named ? record_.name : "a class without a name") + (": " + text));
    }
    void unknownFlags(const std::string &place, std::int64_t flags) {
        fault(place + ": the flags " + std::to_string(flags) + " are not supported");
    }
    void readHeader(HostClass &type);
    Property readProperty(const PluginPropertyRecord &row, const std::string &place);
    Method readMethod(const PluginMethodRecord &row, const std::string &place);
    std::vector<Method> readMethods(const PluginMethodRecord *rows, std::uint64_t count,
                                    const std::string &what);
    Constant readConstant(const PluginConstantRecord &row, const std::string &place);
    void checkType(const Type &type, const std::string &place);
    void checkEmpty(const void *table, std::uint64_t count, const std::string &what);

    template <typename Row>
    bool hasRows(const Row *rows, std::uint64_t count, const std::string &what) {
        if ((rows == nullptr) == (count == 0))
            return rows != nullptr;
        fault(rows == nullptr ? std::to_string(count) + ' ' + what + " without a table"
                              : "a table of " + what + " with the count 0");
        return false;
    }
    template <typename Row>
    void checkReserved(const Row &row, const std::string &place) {
        if (std::ranges::any_of(row.reserved, [](std::uint64_t slot) { return slot != 0; }))
            fault(place + ": a reserved slot is not zero");
    }

    const Core &core_;
    const PluginClassRecord &record_;
};

std::string placeOf(std::string_view what, std::uint64_t index, const char *text) {
    std::string place = std::string(what) + ' ' + std::to_string(index + 1);
    if (text != nullptr)
        place += " (" + std::string(text) + ')';
    return place;
}

void Reader::checkType(const Type &type, const std::string &place) {
    if (type.kind == TypeKind::object && !isFamilyName(type.className) &&
        !sameName(type.className, record_.name == nullptr ? "" : record_.name) &&
        core_.classes.findAny(type.className) == nullptr)
        fault(place + ": unknown type " + type.className);
}

Property Reader::readProperty(const PluginPropertyRecord &row, const std::string &place) {
    Property property{.name = row.name == nullptr ? "" : row.name,
                      .type = {},
                      .flags = row.flags,
                      .getter = row.getter,
                      .setter = row.setter,
                      .parameter = row.parameter};
    if (property.name.empty())
        fault(place + ": no name");
    if (row.group != 0)
        fault(place + ": groups are not supported");
    if (row.flags != propertyFlags)
        unknownFlags(place, row.flags);
    checkReserved(row, place);
    if (row.type == nullptr) {
        fault(place + ": no type");
        return property;
    }
    try {
        property.type = parseType(row.type);
    } catch (const DeclarationError &error) {
        fault(place + ": type " + error.what());
        return property;
    }
    checkType(property.type, place);
    if (accessorIsField(row.getter) != accessorIsField(row.setter)) {
        fault(place + ": only one accessor is marked as a field");
    } else if (property.isField()) {
        const std::uint64_t width = widthOf(property.type);
        if (row.parameter < 0 || record_.dataSize < width ||
            static_cast<std::uint64_t>(row.parameter) > record_.dataSize - width)
            fault(place + ": its field at " + std::to_string(row.parameter) + " passes the " +
                  std::to_string(record_.dataSize) + " bytes of instance data");
    } else if (row.getter == nullptr) {
        fault(place + ": no getter");
    }
    return property;
}

Method Reader::readMethod(const PluginMethodRecord &row, const std::string &place) {
    Method method{.declaration = row.declaration == nullptr ? "" : row.declaration,
                  .parsed = {},
                  .function = row.function,
                  .flags = row.flags};
    if (row.function == nullptr)
        fault(place + ": no function");
    if (row.secondFunction != nullptr)
        fault(place + ": second functions are not supported");
    if ((row.flags & ~extraMethodFlag) != methodFlags)
        unknownFlags(place, row.flags);
    checkReserved(row, place);
    if (row.declaration == nullptr) {
        fault(place + ": no declaration");
        return method;
    }
    try {
        method.parsed = parseMethod(row.declaration);
    } catch (const DeclarationError &error) {
        fault(place + ": " + error.what());
        return method;
    }
    if (method.parsed.name.empty())
        fault(place + ": no name in the declaration");
    for (const Parameter &parameter : method.parsed.parameters)
        checkType(parameter.type, place);
    if (method.parsed.result)
        checkType(*method.parsed.result, place);
    return method;
}

std::vector<Method> Reader::readMethods(const PluginMethodRecord *rows, std::uint64_t count,
                                        const std::string &what) {
    std::vector<Method> methods;
    if (!hasRows(rows, count, what + 's'))
        return methods;
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::string place = placeOf(what, i, rows[i].declaration);
        Method method = readMethod(rows[i], place);
        const bool twice = std::ranges::any_of(methods, [&](const Method &other) {
            return !other.parsed.name.empty() && sameSignature(other.parsed, method.parsed);
        });
        if (twice)
            fault(place + ": declared twice");
        methods.push_back(std::move(method));
    }
    return methods;
}

Constant Reader::readConstant(const PluginConstantRecord &row, const std::string &place) {
    Constant constant;
    checkReserved(row, place);
    if (row.declaration == nullptr) {
        fault(place + ": no declaration");
        return constant;
    }
    try {
        auto [name, value] = parseConstant(row.declaration);
        constant = {row.declaration, std::move(name), value};
    } catch (const DeclarationError &error) {
        fault(place + ": " + error.what());
    }
    return constant;
}

void Reader::checkEmpty(const void *table, std::uint64_t count, const std::string &what) {
    if (table != nullptr || count != 0)
        fault(what + " are not supported");
}

void Reader::readHeader(HostClass &type) {
    if (record_.name == nullptr || *record_.name == '\0')
        fault("no name");
    else if (core_.classes.findAny(record_.name) != nullptr)
        fault("the class is registered already");
    if (record_.superclass != nullptr) {
        type.superclass = core_.classes.findAny(record_.superclass);
        if (type.superclass == nullptr)
            fault(std::string("unknown superclass ") + record_.superclass);
        else if (type.superclass->dataSize != 0)
            fault(std::string("superclass ") + record_.superclass + " has instance data");
    }
    if (record_.version != core_.interfaceVersion)
        fault("interface version " + std::to_string(record_.version) +
              ", but the plug-in told the host " + std::to_string(core_.interfaceVersion));
    if (record_.padding != 0)
        fault("the padding behind the version is not zero");
    if (record_.dataSize % 16 != 0)
        fault("the data size " + std::to_string(record_.dataSize) + " is no multiple of 16");
    if (record_.dataOffset != 0)
        fault("the data offset is the host's to write, but is " +
              std::to_string(record_.dataOffset));
    if (record_.flags != classFlags)
        fault("the flags " + std::to_string(record_.flags) + " are not supported");
    checkEmpty(record_.events, record_.eventCount, "events");
    checkEmpty(record_.eventInstances, record_.eventInstanceCount, "event instances");
    checkEmpty(record_.interfaces, 0, "interfaces");
    checkEmpty(record_.bindings, record_.bindingCount, "bindings");
    checkEmpty(record_.sharedProperties, record_.sharedPropertyCount, "shared properties");
    checkEmpty(record_.delegates, record_.delegateCount, "delegates");
    checkEmpty(record_.enumerations, record_.enumerationCount, "enumerations");
}

HostClass Reader::read() {
    HostClass type{.name = record_.name == nullptr ? "" : record_.name,
                   .dataSize = record_.dataSize,
                   .constructor = record_.constructor,
                   .destructor = record_.destructor,
                   .record = &record_};
    readHeader(type);
    type.dataOffset = core_.classes.dataOffsetFor(type.name);
    std::set<std::string> names;
    const auto checkName = [&](const std::string &name, const std::string &place) {
        if (!name.empty() && !names.insert(foldedName(name)).second)
            fault(place + ": declared twice");
    };
    if (hasRows(record_.properties, record_.propertyCount, "properties"))
        for (std::uint64_t i = 0; i < record_.propertyCount; ++i) {
            const std::string place = placeOf("property", i, record_.properties[i].name);
            type.properties.push_back(readProperty(record_.properties[i], place));
            checkName(type.properties.back().name, place);
        }
    type.methods = readMethods(record_.methods, record_.methodCount, "method");
    type.sharedMethods =
        readMethods(record_.sharedMethods, record_.sharedMethodCount, "shared method");
    if (hasRows(record_.constants, record_.constantCount, "constants"))
        for (std::uint64_t i = 0; i < record_.constantCount; ++i) {
            const std::string place = placeOf("constant", i, record_.constants[i].declaration);
            type.constants.push_back(readConstant(record_.constants[i], place));
            checkName(type.constants.back().name, place);
        }
    return type;
}

} // namespace

void registerRecord(Core &core, PluginClassRecord *record) {
    if (record == nullptr) {
        core.heap.violation("got no class record");
        return;
    }
    Reader reader(core, *record);
    HostClass type = reader.read();
    for (const std::string &fault : reader.faults)
        core.heap.violation(fault);
    if (!reader.faults.empty())
        return;
    record->dataOffset = type.dataOffset;
    core.classes.add(std::move(type));
}

} // namespace host
