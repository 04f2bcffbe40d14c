#include "host/memory/Heap.h"

#include <algorithm>
#include <cstring>

namespace host {

namespace {

constexpr std::size_t guardSize = 32;
constexpr std::byte guardByte{0xFD};
constexpr std::byte freedByte{0xDB};
/// Objects that end inside of each other's end.
constexpr std::size_t deepestFreeing = 200;
constexpr std::uint64_t liveMagic = 0x6A626F2074736F68; // "host obj"

/// The host's mark at the start of every object. Never read back as truth: the Object beside it
/// is, and a header that differs was overwritten.
struct ObjectHeader {
    std::uint64_t magic;
    const HostClass *type;
    std::uint64_t number;
    std::uint64_t dataSize;
    std::uint64_t seal[2];
};
static_assert(sizeof(ObjectHeader) == objectHeaderSize);

ObjectHeader headerOf(const Object &object) {
    return {.magic = liveMagic,
            .type = object.type,
            .number = object.number,
            .dataSize = object.type->dataSize,
            .seal = {~object.number, liveMagic ^ object.number}};
}

bool isFilled(const std::byte *begin, const std::byte *end, std::byte with) {
    return std::all_of(begin, end, [with](std::byte byte) { return byte == with; });
}

Payload payloadOf(const HostClass *type) {
    while (type != nullptr && type->makePayload == nullptr)
        type = type->superclass;
    return type == nullptr ? Payload{} : type->makePayload();
}

template <typename Things>
auto liveOf(const Things &things) {
    std::vector<const typename Things::mapped_type::element_type *> result;
    for (const auto &[handle, thing] : things)
        if (thing->life != Life::freed)
            result.push_back(thing.get());
    std::ranges::sort(result, {}, [](const auto *thing) { return thing->number; });
    return result;
}

} // namespace

Heap::Heap(Violations &violations, Destroyer destroyer, std::size_t quarantineLimit)
    : violations_(violations), destroyer_(destroyer), quarantineLimit_(quarantineLimit) {}

Heap::~Heap() {
    // Payloads hold references to other objects, which must still be found when they go.
    for (auto &[handle, object] : objects_)
        object->life = Life::freed;
    for (auto &[handle, string] : strings_)
        string->life = Life::freed;
    for (auto &[handle, object] : objects_)
        object->payload = {};
}

Object &Heap::makeObject(const HostClass &type) {
    auto object = std::make_unique<Object>();
    object->type = &type;
    object->number = ++lastObject_;
    object->payload = payloadOf(&type);
    object->size = type.dataOffset + type.dataSize;
    object->memory = std::make_unique<std::byte[]>(object->size + guardSize);
    const ObjectHeader header = headerOf(*object);
    std::byte *const start = object->memory.get();
    std::memcpy(start, &header, sizeof header);
    std::fill(start + sizeof header, start + type.dataOffset, guardByte);
    std::ranges::copy(type.initialData, start + type.dataOffset);
    std::fill_n(start + object->size, guardSize, guardByte);
    object->history.add("made", actor_);
    ++liveObjects_;
    return *objects_.emplace(start, std::move(object)).first->second;
}

String &Heap::makeString(std::string bytes, std::uint32_t encoding) {
    auto string = std::make_unique<String>();
    string->number = ++lastString_;
    string->encoding = encoding;
    string->bytes = std::move(bytes);
    string->history.add("made", actor_);
    ++liveStrings_;
    const void *const handle = string->handle();
    return *strings_.emplace(handle, std::move(string)).first->second;
}

Object *Heap::find(ObjectHandle handle) const {
    const auto found = objects_.find(handle);
    return found == objects_.end() ? nullptr : found->second.get();
}

String *Heap::find(StringHandle handle) const {
    const auto found = strings_.find(handle);
    return found == strings_.end() ? nullptr : found->second.get();
}

void Heap::violation(const std::string &what) {
    violations_.add(std::string(actor_) + ": " + what);
}

template <typename Thing, typename Handle>
Thing *Heap::checkLive(Thing *thing, Handle handle, std::string_view needed) {
    const std::string wanted = " where a live " + std::string(needed) + " is needed";
    if (handle == nullptr)
        violation("got nil" + wanted);
    else if (reinterpret_cast<std::uint64_t>(handle) == registerFiller)
        violation("got what the host had left in a register" + wanted);
    else if (thing == nullptr)
        violation("got a pointer that is no host " + std::string(needed) + wanted);
    else if (thing->life == Life::freed)
        violation("got " + name(*thing) + " after it was freed (" + thing->history.text() + ")");
    else
        return thing;
    return nullptr;
}

Object *Heap::check(ObjectHandle handle) {
    if (const auto asString = strings_.find(handle); asString != strings_.end()) {
        violation("got " + name(*asString->second) + " where an object is needed (" +
                  asString->second->history.text() + ")");
        return nullptr;
    }
    Object *object = checkLive(find(handle), handle, "object");
    if (object != nullptr)
        checkMemory(*object);
    return object;
}

String *Heap::check(StringHandle handle) {
    if (const auto asObject = objects_.find(handle); asObject != objects_.end()) {
        violation("got " + name(*asObject->second) + " where a string is needed (" +
                  asObject->second->history.text() + ")");
        return nullptr;
    }
    return checkLive(find(handle), handle, "string");
}

void Heap::lock(ObjectHandle handle) {
    if (Object *object = check(handle)) {
        ++object->references;
        object->history.add("locked", actor_);
    }
}

void Heap::lock(StringHandle handle) {
    if (String *string = check(handle)) {
        ++string->references;
        string->history.add("locked", actor_);
    }
}

template <typename Thing>
bool Heap::dropPluginReference(Thing &thing) {
    if (thing.pluginReferences() <= 0) {
        violation("releases " + name(thing) + ", of which the plug-in holds no reference (" +
                  thing.history.text() + ")");
        return false;
    }
    thing.history.add("released", actor_);
    --thing.references;
    return true;
}

void Heap::unlock(ObjectHandle handle) {
    Object *object = check(handle);
    if (object != nullptr && dropPluginReference(*object) && object->references == 0)
        destroy(*object);
}

void Heap::unlock(StringHandle handle) {
    String *string = check(handle);
    if (string != nullptr && dropPluginReference(*string) && string->references == 0)
        free(*string);
}

void Heap::hostLock(ObjectHandle handle) {
    Object *object = find(handle);
    if (object == nullptr || object->life == Life::freed)
        return;
    ++object->references;
    ++object->hostReferences;
}

void Heap::hostLock(StringHandle handle) {
    String *string = find(handle);
    if (string == nullptr || string->life == Life::freed)
        return;
    ++string->references;
    ++string->hostReferences;
}

void Heap::hostUnlock(ObjectHandle handle) {
    Object *object = find(handle);
    if (object == nullptr || object->life == Life::freed)
        return;
    --object->hostReferences;
    if (--object->references == 0) {
        object->history.add("released", actor_);
        destroy(*object);
    }
}

void Heap::hostUnlock(StringHandle handle) {
    String *string = find(handle);
    if (string == nullptr || string->life == Life::freed)
        return;
    --string->hostReferences;
    if (--string->references == 0) {
        string->history.add("released", actor_);
        free(*string);
    }
}

namespace {

template <typename Thing>
bool takeOver(Heap &heap, Thing *thing) {
    if (thing == nullptr)
        return false;
    if (thing->pluginReferences() <= 0) {
        heap.violation("returned " + Heap::name(*thing) + " without a reference to hand over (" +
                       thing->history.text() + ")");
        return false;
    }
    thing->history.add("handed to the host", heap.actor());
    ++thing->hostReferences;
    return true;
}

} // namespace

bool Heap::adopt(ObjectHandle handle) {
    return takeOver(*this, check(handle));
}

bool Heap::adopt(StringHandle handle) {
    return takeOver(*this, check(handle));
}

void Heap::giveAway(ObjectHandle handle) {
    if (Object *object = find(handle)) {
        --object->hostReferences;
        object->history.add("handed to the plug-in", actor_);
    }
}

void Heap::giveAway(StringHandle handle) {
    if (String *string = find(handle)) {
        --string->hostReferences;
        string->history.add("handed to the plug-in", actor_);
    }
}

/// Frees the object at the end of its destructors, also when one of them throws. The reference
/// that it takes meanwhile lets them lock and unlock their own object.
struct Heap::Dying {
    Heap &heap;
    Object &object;

    Dying(Heap &itsHeap, Object &itsObject) : heap(itsHeap), object(itsObject) {
        object.life = Life::dying;
        object.references = 1;
        object.hostReferences = 1;
    }
    Dying(const Dying &) = delete;
    ~Dying() {
        if (object.references != 1)
            heap.violation(name(object) + " was locked in its destructor and kept (" +
                           object.history.text() + ")");
        heap.free(object);
    }
};

void Heap::destroy(Object &object) {
    if (object.life != Life::alive)
        return;
    const Dying dying(*this, object);
    if (object.finished)
        destroyer_(object);
}

void Heap::free(Object &object) {
    checkMemory(object);
    Payload held = std::exchange(object.payload, Payload{});
    // What holds what holds what, and so on, ends one after the other, not inside each other.
    if (freeing_ == deepestFreeing)
        heldByFreed_.push_back(std::exchange(held, Payload{}));
    object.life = Life::freed;
    object.references = object.hostReferences = 0;
    object.history.add("freed", actor_);
    std::fill_n(object.memory.get(), object.size + guardSize, freedByte);
    --liveObjects_;
    quarantine_.push_back(object.handle());
    trimQuarantine();
    ++freeing_;
    held = {};
    while (freeing_ == 1 && !heldByFreed_.empty()) {
        held = std::move(heldByFreed_.back());
        heldByFreed_.pop_back();
        held = {};
    }
    --freeing_;
}

void Heap::free(String &string) {
    string.life = Life::freed;
    string.references = string.hostReferences = 0;
    string.history.add("freed", actor_);
    // The bytes stay where they were, so that a pointer to them reads poison, not other data.
    std::ranges::fill(string.bytes, static_cast<char>(freedByte));
    --liveStrings_;
    quarantine_.push_back(string.handle());
    trimQuarantine();
}

void Heap::trimQuarantine() {
    while (quarantine_.size() > quarantineLimit_) {
        const void *const oldest = quarantine_.front();
        quarantine_.pop_front();
        if (const auto object = objects_.find(oldest); object != objects_.end()) {
            checkMemory(*object->second);
            objects_.erase(object);
        } else {
            strings_.erase(oldest);
        }
    }
}

std::string Heap::name(const Object &object) {
    return object.type->name + '#' + std::to_string(object.number);
}

std::string Heap::name(const String &string) {
    return "String#" + std::to_string(string.number);
}

std::string Heap::name(ObjectHandle handle) const {
    if (handle == nullptr)
        return "nil";
    const Object *object = find(handle);
    return object == nullptr ? "invalid" : name(*object);
}

std::string Heap::name(StringHandle handle) const {
    if (handle == nullptr)
        return "nil";
    const String *string = find(handle);
    return string == nullptr ? "invalid" : name(*string);
}

std::vector<const Object *> Heap::liveObjects() const {
    return liveOf(objects_);
}

std::vector<const String *> Heap::liveStrings() const {
    return liveOf(strings_);
}

void Heap::checkMemory(Object &object) {
    if (object.damaged)
        return;
    const std::byte *const start = object.memory.get();
    const std::byte *const end = start + object.size;
    std::string damage;
    if (object.life == Life::freed) {
        if (!isFilled(start, end + guardSize, freedByte))
            damage = "was written to after it was freed";
    } else {
        const ObjectHeader header = headerOf(object);
        if (std::memcmp(start, &header, sizeof header) != 0 ||
            !isFilled(start + sizeof header, object.data(), guardByte))
            damage = "was overwritten before its instance data";
        else if (!isFilled(end, end + guardSize, guardByte))
            damage = "was overwritten behind its " + std::to_string(object.type->dataSize) +
                     " bytes of instance data";
    }
    if (damage.empty())
        return;
    object.damaged = true;
    violation(name(object) + ' ' + damage + " (" + object.history.text() + ")");
}

void Heap::checkAllMemory() {
    std::vector<Object *> ordered;
    ordered.reserve(objects_.size());
    for (const auto &[handle, object] : objects_)
        ordered.push_back(object.get());
    std::ranges::sort(ordered, {}, [](const Object *object) { return object->number; });
    for (Object *object : ordered)
        checkMemory(*object);
}

std::vector<std::string> Heap::leaks() const {
    std::vector<std::string> result;
    const auto report = [&result](const auto *thing) {
        // What only other live objects or a program's variables hold is not lost.
        if (const std::int64_t count = thing->pluginReferences(); count > 0)
            result.push_back(name(*thing) + " leaked, " + std::to_string(count) +
                             (count == 1 ? " reference" : " references") + " never released (" +
                             thing->history.text() + ")");
    };
    std::ranges::for_each(liveObjects(), report);
    std::ranges::for_each(liveStrings(), report);
    return result;
}

} // namespace host
