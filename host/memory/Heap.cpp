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
            .dataSize = object.layout.dataSize,
            .seal = {~object.number, liveMagic ^ object.number}};
}

bool isFilled(const std::byte *begin, const std::byte *end, std::byte with) {
    return std::all_of(begin, end, [with](std::byte byte) { return byte == with; });
}

template <typename Thing>
Thing *unlessFreed(Thing *thing) {
    return thing == nullptr || thing->life == Life::freed ? nullptr : thing;
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

template <typename Handle, typename Thing>
std::string nameOf(Handle handle, const Thing *thing) {
    return handle == nullptr ? "nil" : thing == nullptr ? "invalid" : Heap::name(*thing);
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

Object &Heap::makeObject(const HostClass &type, const Layout &layout, std::any payload) {
    auto object = std::make_unique<Object>();
    object->type = &type;
    object->layout = layout;
    object->number = ++lastObject_;
    object->payload = std::move(payload);
    object->size = layout.dataOffset + layout.dataSize;
    object->memory = std::make_unique<std::byte[]>(object->size + guardSize);
    const ObjectHeader header = headerOf(*object);
    std::byte *const start = object->memory.get();
    std::memcpy(start, &header, sizeof header);
    std::fill(start + sizeof header, start + layout.dataOffset, guardByte);
    std::ranges::copy(layout.initialData, start + layout.dataOffset);
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

Object *Heap::findLive(ObjectHandle handle) const {
    return unlessFreed(find(handle));
}

String *Heap::findLive(StringHandle handle) const {
    return unlessFreed(find(handle));
}

void Heap::violation(const std::string &what) {
    violations_.add(std::string(actor_) + ": " + what);
}

/// Others are the things of the other kind.
template <typename Handle, typename Thing, typename Others>
Thing *Heap::checkLive(Handle handle, Thing *thing, const Others &others, std::string_view needed) {
    const std::string wanted = " where a live " + std::string(needed) + " is needed";
    if (const auto other = others.find(handle); other != others.end())
        violation("got " + name(*other->second) + " where " + (needed == "object" ? "an " : "a ") +
                  std::string(needed) + " is needed (" + other->second->history.text() + ")");
    else if (handle == nullptr)
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
    Object *object = checkLive(handle, find(handle), strings_, "object");
    if (object != nullptr)
        checkMemory(*object);
    return object;
}

String *Heap::check(StringHandle handle) {
    return checkLive(handle, find(handle), objects_, "string");
}

template <typename Handle>
void Heap::lock(Handle handle) {
    if (auto *thing = check(handle)) {
        ++thing->references;
        thing->history.add("locked", actor_);
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

template <typename Handle>
void Heap::unlock(Handle handle) {
    auto *thing = check(handle);
    if (thing != nullptr && dropPluginReference(*thing) && thing->references == 0)
        end(*thing);
}

template <typename Handle>
void Heap::hostLock(Handle handle) {
    if (auto *thing = findLive(handle)) {
        ++thing->references;
        ++thing->hostReferences;
    }
}

template <typename Handle>
void Heap::hostUnlock(Handle handle) {
    auto *thing = findLive(handle);
    if (thing == nullptr)
        return;
    --thing->hostReferences;
    if (--thing->references == 0) {
        thing->history.add("released", actor_);
        end(*thing);
    }
}

template <typename Handle>
bool Heap::adopt(Handle handle) {
    auto *thing = check(handle);
    if (thing == nullptr)
        return false;
    if (thing->pluginReferences() <= 0) {
        violation("returned " + name(*thing) + " without a reference to hand over (" +
                  thing->history.text() + ")");
        return false;
    }
    thing->history.add("handed to the host", actor_);
    ++thing->hostReferences;
    return true;
}

template <typename Handle>
void Heap::giveAway(Handle handle) {
    if (auto *thing = find(handle)) {
        --thing->hostReferences;
        thing->history.add("handed to the plug-in", actor_);
    }
}

template void Heap::lock(ObjectHandle);
template void Heap::lock(StringHandle);
template void Heap::unlock(ObjectHandle);
template void Heap::unlock(StringHandle);
template void Heap::hostLock(ObjectHandle);
template void Heap::hostLock(StringHandle);
template void Heap::hostUnlock(ObjectHandle);
template void Heap::hostUnlock(StringHandle);
template bool Heap::adopt(ObjectHandle);
template bool Heap::adopt(StringHandle);
template void Heap::giveAway(ObjectHandle);
template void Heap::giveAway(StringHandle);

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

void Heap::end(Object &object) {
    if (object.life != Life::alive)
        return;
    const Dying dying(*this, object);
    if (object.finished)
        destroyer_(object);
}

void Heap::free(Object &object) {
    checkMemory(object);
    std::any held = std::exchange(object.payload, {});
    // What holds what holds what, and so on, ends one after the other, not inside each other.
    if (freeing_ == deepestFreeing)
        heldByFreed_.push_back(std::exchange(held, {}));
    std::fill_n(object.memory.get(), object.size + guardSize, freedByte);
    --liveObjects_;
    retire(object);
    ++freeing_;
    held = {};
    while (freeing_ == 1 && !heldByFreed_.empty()) {
        held = std::move(heldByFreed_.back());
        heldByFreed_.pop_back();
        held = {};
    }
    --freeing_;
}

void Heap::end(String &string) {
    // The bytes stay where they were, so that a pointer to them reads poison, not other data.
    std::ranges::fill(string.bytes, static_cast<char>(freedByte));
    --liveStrings_;
    retire(string);
}

template <typename Thing>
void Heap::retire(Thing &thing) {
    thing.life = Life::freed;
    thing.references = thing.hostReferences = 0;
    thing.history.add("freed", actor_);
    quarantine_.push_back(thing.handle());
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
    return std::string(object.layout.className) + '#' + std::to_string(object.number);
}

std::string Heap::name(const String &string) {
    return "String#" + std::to_string(string.number);
}

std::string Heap::name(ObjectHandle handle) const {
    return nameOf(handle, find(handle));
}

std::string Heap::name(StringHandle handle) const {
    return nameOf(handle, find(handle));
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
            damage = "was overwritten behind its " + std::to_string(object.layout.dataSize) +
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
