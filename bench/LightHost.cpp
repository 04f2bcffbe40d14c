#include "LightHost.h"

#include "frame/HostTypes.h"

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace light_host {

namespace {

enum class Kind : std::uint8_t { string, variant, array, dictionary, block, instance, wrapper };

/// A host object or a host string. Cells are taken from and given back to a list of free ones.
struct Cell {
    std::uint32_t references = 1;
    Kind kind;
    Cell *content = nullptr; // a string Variant's string; the next one of a free cell
    union {
        std::int64_t integer;
        double number;
        void *bytes;                   // of a memory block
        std::vector<Cell *> *elements; // of an array; of a dictionary, keys and values in turn
    } value{};
};

/// An instance of a class that has data; a wrapper's begins with an object that it retained.
struct Instance {
    Cell cell;
    std::byte header[instanceDataOffset - sizeof(Cell)]{};
    CFTypeRef object = nullptr;
    std::int64_t more[3]{};
};
static_assert(offsetof(Instance, object) == instanceDataOffset);

bool isCollection(const Cell *cell) {
    return cell->kind == Kind::array || cell->kind == Kind::dictionary;
}

bool hasData(const Cell *cell) {
    return cell->kind == Kind::instance || cell->kind == Kind::wrapper;
}

Cell *freeCells = nullptr;
Cell *freeInstances = nullptr;
std::size_t liveCells = 0;

// From the list of free ones, which may be empty; null then.
Cell *reused(Cell *&freeOnes, Kind kind) {
    ++liveCells;
    if (freeOnes == nullptr)
        return nullptr;
    Cell *cell = std::exchange(freeOnes, freeOnes->content);
    cell->references = 1;
    cell->kind = kind;
    cell->content = nullptr;
    return cell;
}

Cell *newCell(Kind kind) {
    Cell *cell = reused(freeCells, kind);
    return cell != nullptr ? cell : new Cell{.kind = kind};
}

Instance *newInstanceWithData(Kind kind) {
    auto *instance = reinterpret_cast<Instance *>(reused(freeInstances, kind));
    if (instance == nullptr)
        instance = new Instance{.cell = {.kind = kind}};
    instance->object = nullptr;
    return instance;
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
    if (cell->kind == Kind::block)
        std::free(cell->value.bytes);
    if (cell->kind == Kind::wrapper)
        CFRelease(reinterpret_cast<Instance *>(cell)->object);
    cell->content = std::exchange(hasData(cell) ? freeInstances : freeCells, cell);
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

constexpr std::int64_t coreFoundationTag = 0x52424346; // in the data's third field

struct Class {
    std::string_view name;
    Kind kind;
    std::int64_t tag = 0;
};

constexpr Class classes[] = {
    {"Date", Kind::instance},
    {"NSRectZKT", Kind::instance},
    {"NSSizeZKT", Kind::instance},
    {"NSPointZKT", Kind::instance},
    {"NSRangeZKT", Kind::instance},
    {"NSErrorZKT", Kind::wrapper},
    {"NSIndexSetZKT", Kind::wrapper},
    {"NSObjectZKT", Kind::wrapper},
    {"CFObjectZKT", Kind::wrapper, coreFoundationTag},
};

Cell *newInstance(const char *className) {
    const std::string_view name = className;
    if (name == "Dictionary")
        return newCollection(Kind::dictionary);
    for (const Class &each : classes)
        if (each.name == name) {
            Instance *instance = newInstanceWithData(each.kind);
            instance->more[1] = each.tag;
            return &instance->cell;
        }
    return nullptr;
}

void setDate(Instance *date, std::int64_t year, std::int64_t month, std::int64_t day,
             std::int64_t hour, std::int64_t minute, std::int64_t second) {
    date->more[0] = 372 * year + 31 * month + day;
    date->more[1] = 3600 * hour + 60 * minute + second;
}

Cell *newMemoryBlock(std::int32_t size) {
    Cell *block = newCell(Kind::block);
    block->value.bytes = std::malloc(static_cast<std::size_t>(size));
    return block;
}

void *bytesOf(Cell *block) {
    return block->value.bytes;
}

Cell *folderItem(const void *, const void *) {
    return newCell(Kind::variant);
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

Cell *unsignedVariant(std::uint32_t value) {
    return integerVariant(value);
}

Cell *doubleVariant(double value) {
    Cell *variant = newCell(Kind::variant);
    variant->value.number = value;
    return variant;
}

Cell *singleVariant(float value) {
    return doubleVariant(value);
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

struct Service {
    const char *name;
    void *entryPoint;
};

template <class Function>
void *address(Function *function) {
    return reinterpret_cast<void *>(function);
}

void *objectMethod(Cell *object, const char *declaration) {
    constexpr std::string_view setter = "Value(key As Variant, Assigns _value As Variant)";
    if (object->kind == Kind::dictionary)
        return declaration == setter ? address(setValue) : nullptr;
    return object->kind == Kind::block ? address(bytesOf) : address(setDate);
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
    {"UInt32ToVariant", address(unsignedVariant)},
    {"DoubleToVariant", address(doubleVariant)},
    {"SingleToVariant", address(singleVariant)},
    {"RuntimeArrayCreateSingleDimBoundedArray", address(createArray)},
    {"PluginObjectArrayInsertProc", address(insertProcedure)},
    {"REALLoadObjectMethod", address(objectMethod)},
    {"newMemoryBlock", address(newMemoryBlock)},
    {"REALFolderItemFromParentFSRef", address(folderItem)},
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
