#include "LightHost.h"

#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace light_host {

namespace {

enum class Kind : std::uint8_t { string, variant, array, dictionary };

/// A host object or a host string. Cells are taken from and given back to a list of free ones.
struct Cell {
    std::uint32_t references = 1;
    Kind kind;
    Cell *content = nullptr; // a string Variant's string; the next one of a free cell
    union {
        std::int64_t integer;
        double number;
        std::vector<Cell *> *elements; // of an array; of a dictionary, keys and values in turn
    } value{};
};

bool isCollection(const Cell *cell) {
    return cell->kind == Kind::array || cell->kind == Kind::dictionary;
}

Cell *freeCells = nullptr;
std::size_t liveCells = 0;

Cell *newCell(Kind kind) {
    ++liveCells;
    if (freeCells == nullptr)
        return new Cell{.kind = kind};
    Cell *cell = std::exchange(freeCells, freeCells->content);
    cell->references = 1;
    cell->kind = kind;
    cell->content = nullptr;
    return cell;
}

void lock(Cell *cell) {
    if (cell != nullptr)
        ++cell->references;
}

void unlock(Cell *cell) {
    if (cell == nullptr || --cell->references != 0)
        return;
    unlock(cell->content);
    if (isCollection(cell)) {
        for (Cell *each : *cell->value.elements)
            unlock(each);
        delete cell->value.elements;
    }
    cell->content = std::exchange(freeCells, cell);
    --liveCells;
}

double version() {
    return 2013.04;
}

void nothing() {}

Cell *newCollection(Kind kind) {
    Cell *collection = newCell(kind);
    collection->value.elements = new std::vector<Cell *>;
    return collection;
}

Cell *newInstance(const char *className) {
    return std::strcmp(className, "Dictionary") == 0 ? newCollection(Kind::dictionary) : nullptr;
}

Cell *buildString(const char *, std::int32_t length) {
    Cell *string = newCell(Kind::string);
    string->value.integer = length;
    return string;
}

Cell *stringVariant(Cell *string) {
    Cell *variant = newCell(Kind::variant);
    lock(string);
    variant->content = string;
    return variant;
}

Cell *integerVariant(std::int64_t value) {
    Cell *variant = newCell(Kind::variant);
    variant->value.integer = value;
    return variant;
}

Cell *booleanVariant(bool value) {
    return integerVariant(value ? 1 : 0);
}

Cell *doubleVariant(double value) {
    Cell *variant = newCell(Kind::variant);
    variant->value.number = value;
    return variant;
}

Cell *createArray(std::int64_t, std::int64_t) {
    return newCollection(Kind::array);
}

void append(Cell *collection, Cell *element) {
    lock(element);
    collection->value.elements->push_back(element);
}

void insert(Cell *array, std::int64_t, Cell *element) {
    append(array, element);
}

auto *insertProcedure(Cell *) {
    return insert;
}

void setValue(Cell *dictionary, Cell *key, Cell *value) {
    append(dictionary, key);
    append(dictionary, value);
}

void *objectMethod(Cell *, const char *declaration) {
    constexpr std::string_view setter = "Value(key As Variant, Assigns _value As Variant)";
    return declaration == setter ? reinterpret_cast<void *>(setValue) : nullptr;
}

struct Service {
    const char *name;
    void *entryPoint;
};

template <class Function>
void *address(Function *function) {
    return reinterpret_cast<void *>(function);
}

// NOLINTNEXTLINE(bugprone-throwing-static-initialization): nothing in it throws
const Service services[] = {
    {"REALGetRBVersion", address(version)},
    {"RegisterPluginVersion", address(nothing)},
    {"PluginRegisterClass", address(nothing)},
    {"PluginNewInstance", address(newInstance)},
    {"REALLockObject", address(lock)},
    {"REALUnlockObject", address(unlock)},
    {"REALLockString", address(lock)},
    {"REALUnlockString", address(unlock)},
    {"REALBuildString", address(buildString)},
    {"REALSetStringEncoding", address(nothing)},
    {"StringToVariant", address(stringVariant)},
    {"IntegerToVariant", address(integerVariant)},
    {"BooleanToVariant", address(booleanVariant)},
    {"DoubleToVariant", address(doubleVariant)},
    {"RuntimeArrayCreateSingleDimBoundedArray", address(createArray)},
    {"PluginObjectArrayInsertProc", address(insertProcedure)},
    {"REALLoadObjectMethod", address(objectMethod)},
};

} // namespace

void *service(const char *name) {
    for (const Service &each : services)
        if (std::strcmp(each.name, name) == 0)
            return each.entryPoint;
    return nullptr;
}

void release(REALobjectStruct *object) {
    unlock(reinterpret_cast<Cell *>(object));
}

std::size_t live() {
    return liveCells;
}

} // namespace light_host
