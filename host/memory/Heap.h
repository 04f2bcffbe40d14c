#pragma once

// Host objects and host strings: memory, references, history.
//
// A reference belongs either to a plug-in or to the host (its arrays and dictionaries, the
// pending exception, a program's variables). Both kinds keep an object alive; telling them apart
// is what makes leaks and over-release visible. A reference changes sides when a service or a
// plug-in's function returns it.
//
// An object's memory is header, class data and guard bytes. A handle is the object's address, a
// string's is opaque. Freed ones stay behind, poisoned, so that every later use is noticed.

#include "host/classes/ClassTable.h"
#include "host/classes/Payload.h"
#include "host/core/PluginRecords.h"
#include "host/memory/History.h"
#include "host/memory/Violations.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host {

/// What the host leaves in every register that a call's declaration does not fill. No address: a
/// function that takes it for an argument, or answers with it, does not fit its declaration.
inline constexpr std::uint64_t registerFiller = 0xF7F7F7F7F7F7F7F7;

enum class Life { alive, dying, freed };

/// What objects and strings have in common.
struct Counted {
    std::uint64_t number = 0;
    std::int64_t references = 1; ///< of both sides
    std::int64_t hostReferences = 0;
    Life life = Life::alive;
    History history;

    [[nodiscard]] std::int64_t pluginReferences() const { return references - hostReferences; }
};

struct Object : Counted {
    const HostClass *type = nullptr;
    Payload payload;
    std::unique_ptr<std::byte[]> memory;
    std::size_t size = 0;  ///< without the guard behind the data
    bool damaged = false;  ///< already reported
    bool finished = false; ///< the constructors ran to their end, so the destructors must

    ObjectHandle handle() const { return reinterpret_cast<ObjectHandle>(memory.get()); }
    std::byte *data() const { return memory.get() + type->dataOffset; }
};

struct String : Counted {
    std::uint32_t encoding = 0;
    std::string bytes;

    [[nodiscard]] StringHandle handle() const {
        return reinterpret_cast<StringHandle>(const_cast<String *>(this));
    }
};

class Heap {
public:
    /// Runs the class's destructors; called once per object, when its last reference goes.
    using Destroyer = void (*)(Object &);

    Heap(Violations &violations, Destroyer destroyer, std::size_t quarantineLimit);
    ~Heap();
    Heap(const Heap &) = delete;
    Heap &operator=(const Heap &) = delete;

    // Making: one reference, which belongs to the plug-in until adopted.
    Object &makeObject(const HostClass &type);
    String &makeString(std::string bytes, std::uint32_t encoding);

    // Finding. "find" takes any pointer and says nothing; freed ones are found too. "check"
    // gives only what may be used, and files a violation otherwise.
    Object *find(ObjectHandle handle) const;
    String *find(StringHandle handle) const;
    Object *check(ObjectHandle handle);
    String *check(StringHandle handle);

    // The plug-in's references.
    void lock(ObjectHandle handle);
    void unlock(ObjectHandle handle);
    void lock(StringHandle handle);
    void unlock(StringHandle handle);

    // The host's. A handle that is not live is passed over in silence: its end was reported.
    void hostLock(ObjectHandle handle);
    void hostUnlock(ObjectHandle handle);
    void hostLock(StringHandle handle);
    void hostUnlock(StringHandle handle);

    /// Turns a reference of the plug-in into one of the host. Violation and false when there is
    /// none to take.
    bool adopt(ObjectHandle handle);
    bool adopt(StringHandle handle);
    /// Turns a reference of the host into one of the plug-in.
    void giveAway(ObjectHandle handle);
    void giveAway(StringHandle handle);

    std::string name(ObjectHandle handle) const; ///< Date#1; "nil"; "invalid"
    std::string name(StringHandle handle) const;
    static std::string name(const Object &object);
    static std::string name(const String &string);

    /// By number, oldest first.
    std::vector<const Object *> liveObjects() const;
    std::vector<const String *> liveStrings() const;
    std::size_t liveObjectCount() const { return liveObjects_; }
    std::size_t liveStringCount() const { return liveStrings_; }

    /// Looks for writes outside instance data and into freed objects.
    void checkMemory(Object &object);
    void checkAllMemory();
    /// What nobody can release any more. For the end of the host's life.
    std::vector<std::string> leaks() const;

    Violations &violations() { return violations_; }
    /// Who acts now, for histories and messages: a service's name, else "the host".
    const char *actor() const { return actor_; }
    void violation(const std::string &what);

    class Acting {
    public:
        Acting(Heap &heap, const char *actor) : heap_(heap), before_(heap.actor_) {
            heap.actor_ = actor;
        }
        ~Acting() { heap_.actor_ = before_; }
        Acting(const Acting &) = delete;
        Acting &operator=(const Acting &) = delete;

    private:
        Heap &heap_;
        const char *before_;
    };

private:
    struct Dying;

    template <typename Thing, typename Handle>
    Thing *checkLive(Thing *thing, Handle handle, std::string_view needed);
    template <typename Thing>
    bool dropPluginReference(Thing &thing);
    void destroy(Object &object);
    void free(Object &object);
    void free(String &string);
    void trimQuarantine();

    Violations &violations_;
    Destroyer destroyer_;
    std::size_t quarantineLimit_;
    const char *actor_ = "the host";
    std::unordered_map<const void *, std::unique_ptr<Object>> objects_;
    std::unordered_map<const void *, std::unique_ptr<String>> strings_;
    std::deque<const void *> quarantine_; ///< oldest first
    std::uint64_t lastObject_ = 0;
    std::uint64_t lastString_ = 0;
    std::size_t liveObjects_ = 0;
    std::size_t liveStrings_ = 0;
    std::size_t freeing_ = 0;
    std::vector<Payload> heldByFreed_;
};

} // namespace host
