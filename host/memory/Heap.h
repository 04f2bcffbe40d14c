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

#include "host/core/PluginRecords.h"
#include "host/memory/History.h"
#include "host/memory/Violations.h"

#include <any>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host {

/// What the host leaves in every register that a call's declaration does not fill. No address: a
/// function that takes it for an argument, or answers with it, does not fit its declaration.
inline constexpr std::uint64_t registerFiller = 0xF7F7F7F7F7F7F7F7;

struct HostClass;

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

/// The memory that an instance of a class needs.
struct Layout {
    std::string_view className;                  ///< must live as long as the instance
    std::span<const std::byte> initialData = {}; ///< likewise
    std::size_t dataSize = 0;
    std::size_t dataOffset = objectHeaderSize;
};

struct Object : Counted {
    const HostClass *type = nullptr;
    Layout layout;
    std::any payload; ///< what its class keeps in C++
    std::unique_ptr<std::byte[]> memory;
    std::size_t size = 0;  ///< without the guard behind the data
    bool damaged = false;  ///< already reported
    bool finished = false; ///< the constructors ran to their end, so the destructors must

    [[nodiscard]] ObjectHandle handle() const {
        return reinterpret_cast<ObjectHandle>(memory.get());
    }
    [[nodiscard]] std::byte *data() const { return memory.get() + layout.dataOffset; }
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
    Object &makeObject(const HostClass &type, const Layout &layout, std::any payload);
    String &makeString(std::string bytes, std::uint32_t encoding);

    // Finding. "find" takes any pointer and says nothing; freed ones are found too. "check"
    // gives only what may be used, and files a violation otherwise.
    Object *find(ObjectHandle handle) const;
    String *find(StringHandle handle) const;
    Object *findLive(ObjectHandle handle) const;
    String *findLive(StringHandle handle) const;
    Object *check(ObjectHandle handle);
    String *check(StringHandle handle);

    // Below, a handle is an ObjectHandle or a StringHandle.

    // The plug-in's references.
    template <typename Handle>
    void lock(Handle handle);
    template <typename Handle>
    void unlock(Handle handle);

    // The host's. A handle that is not live is passed over in silence: its end was reported.
    template <typename Handle>
    void hostLock(Handle handle);
    template <typename Handle>
    void hostUnlock(Handle handle);

    /// Turns a reference of the plug-in into one of the host. Violation and false when there is
    /// none to take.
    template <typename Handle>
    bool adopt(Handle handle);
    /// Turns a reference of the host into one of the plug-in.
    template <typename Handle>
    void giveAway(Handle handle);

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

    template <typename Handle, typename Thing, typename Others>
    Thing *checkLive(Handle handle, Thing *thing, const Others &others, std::string_view needed);
    template <typename Thing>
    bool dropPluginReference(Thing &thing);
    /// The last reference is gone.
    void end(Object &object);
    void end(String &string);
    void free(Object &object);
    template <typename Thing>
    void retire(Thing &thing);
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
    std::vector<std::any> heldByFreed_;
};

} // namespace host
