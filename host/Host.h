#pragma once

// The reference host: everything that a host application offers a plug-in, strictly.
//
//     host::Host host{{.version = 2013.04}};
//     host.loadPlugin("NSProcessInfoZKT.bundle");
//     auto info = host.callShared("NSProcessInfoZKT", "processInfo").object();
//     std::puts(host.get(info, "hostName").text().c_str());
//
// The host knows plug-in functions only through the class records that were registered: it
// parses their declarations and calls through them. What the plug-in does wrong (leaks, over-
// release, use after release, wrong handles, damaged memory, bad records) is a violation.
//
// One host at a time per process, because the resolver that plug-ins get is a plain C function.
// All of it belongs to one thread, like the plug-in interface itself.

#include "host/core/HostOptions.h"
#include "host/core/PluginRecords.h"
#include "host/image/Image.h"
#include "host/language/Encodings.h"
#include "host/language/Value.h"
#include "host/services/Services.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class ClassTable;
struct Core;

/// Totals for the closing line.
struct Account {
    std::size_t calls = 0;       ///< host services and host methods that plug-ins called
    std::size_t liveObjects = 0; ///< at this moment
    std::size_t liveStrings = 0;
    std::size_t leaks = 0; ///< objects and strings that nobody can release any more
    std::size_t violations = 0;
};

/// "7 calls, 0 objects and 0 strings live, no leaks, no violations"
std::string describe(const Account &account);

class Host {
public:
    /// Throws UsageError when another host lives.
    explicit Host(HostOptions options = {});
    /// Shuts down. Violations that nobody has looked at go to the handler of onUnexamined.
    ~Host();
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;

    /// The one host; throws UsageError when there is none.
    static Host &current();
    static bool exists();
    /// Called by a dying host with each violation that violations() never returned. The default
    /// writes them to stderr. host/GoogleTest.h makes them test failures.
    static void onUnexamined(std::function<void(const std::string &)> handler);

    // Plug-ins

    /// Opens the image and calls its entry point with the host's resolver. Throws ImageError.
    /// The image stays for the life of the process, since Foundation keeps what it saw of it.
    Image &loadPlugin(const std::filesystem::path &file, const ImageOptions &options = {});
    /// For tests that call an entry point themselves (with a resolver of their own that may pass
    /// requests on to this one).
    static Resolver resolver();

    // Programs: what code of the host's language does. Members are found by name, without regard
    // to case. Each call runs in an autorelease pool of its own. Throws UsageError for a class,
    // member or argument that does not exist or fit; what the plug-in throws passes through
    // unchanged.

    /// "new": class constructor, then the "Constructor" method if the class has one that takes
    /// the arguments. The value is the object; nil when the constructor raised.
    Outcome newObject(std::string_view className, const Values &arguments = {});
    /// What PluginNewInstance does: class constructor only. Nil when the class is unknown.
    ObjectRef newInstance(std::string_view className);
    Outcome get(ObjectHandle object, std::string_view property);
    Outcome set(ObjectHandle object, std::string_view property, const Value &value);
    Outcome call(ObjectHandle object, std::string_view method, const Values &arguments = {});
    Outcome callShared(std::string_view className, std::string_view method,
                       const Values &arguments = {});
    [[nodiscard]] std::int64_t constant(std::string_view className, std::string_view name) const;
    /// Drops a reference and shows what the destructors raised, if they ran.
    Outcome release(ObjectRef object);
    StringRef makeString(std::string_view bytes, std::uint32_t encoding = encoding::utf8);

    // Switches

    Services &services();
    /// PluginNewInstance answers nil for the class until showClass. Any name will do.
    void hideClass(std::string_view name);
    void showClass(std::string_view name);
    void addClass(const ClassSpec &spec);
    /// REALLoadObjectMethod and REALLoadGlobalMethod do not find a host method with this
    /// declaration (compared as they compare: case, blanks and parameter names do not matter).
    void hideMethod(std::string_view declaration);
    void showMethod(std::string_view declaration);
    void setMemoryBlockLimit(std::uint64_t bytes);
    /// Changes what REALGetRBVersion answers; nullopt hides the service.
    void setVersion(std::optional<double> version);

    // What the host saw. Line formats: host/core/Trace.h.

    [[nodiscard]] std::vector<std::string> trace() const;   ///< everything, in order
    [[nodiscard]] std::vector<std::string> calls() const;   ///< services and host methods called
    [[nodiscard]] std::vector<std::string> lookups() const; ///< requests to the resolver
    void clearTrace();
    void setTracing(bool on);

    /// In order; empty when the plug-in behaved. Leaks appear after shutDown().
    [[nodiscard]] const std::vector<std::string> &violations() const;
    [[nodiscard]] Account account() const;
    /// Releases what the host itself owns and files everything that is still live, and not held
    /// by an ObjectRef or StringRef, as a leak with its history. A second call does nothing.
    void shutDown();

    // Raw access. Handles need not be valid: a bad one gives nil, 0 or "" and is a UsageError
    // only where stated.

    /// The exception raised and not yet seen by a call (raw function calls leave it here). Takes
    /// it off the host.
    std::optional<RaisedException> takePendingException();
    [[nodiscard]] bool hasPendingException() const;
    /// Exceptions raised while no program call was running, or replaced by a later one.
    [[nodiscard]] std::vector<RaisedException> strayExceptions() const;

    /// What it was made with, apart from what switches have changed since.
    [[nodiscard]] const HostOptions &options() const;
    [[nodiscard]] const ClassTable &classes() const;
    [[nodiscard]] std::int32_t interfaceVersion() const; ///< 0 before RegisterPluginVersion

    /// In order of registration; the pointers that the plug-in passed.
    [[nodiscard]] std::vector<const PluginClassRecord *> registeredRecords() const;
    /// Function pointers of a registered class's rows. Throw UsageError when there is no such row
    /// or it has no function.
    [[nodiscard]] void *getterOf(std::string_view className, std::string_view property) const;
    [[nodiscard]] void *setterOf(std::string_view className, std::string_view property) const;
    [[nodiscard]] void *methodOf(std::string_view className, std::string_view method) const;
    [[nodiscard]] void *sharedMethodOf(std::string_view className, std::string_view method) const;

    std::string className(ObjectHandle object) const; ///< "" when not a live object
    std::string name(ObjectHandle object) const;      ///< NSProcessInfoZKT#1
    std::string name(StringHandle string) const;      ///< String#1
    std::string history(ObjectHandle object) const;
    /// Start of the instance data of the object's own class; null when not a live object.
    void *dataOf(ObjectHandle object) const;
    /// Including the reference of an ObjectRef that the caller holds; 0 when not live.
    std::int64_t references(ObjectHandle object) const;
    std::int64_t references(StringHandle string) const;
    bool isLive(ObjectHandle object) const;
    bool isLive(StringHandle string) const;
    std::string bytes(StringHandle string) const;
    std::uint32_t encodingOf(StringHandle string) const;        ///< encoding::unknown for nil
    std::string text(StringHandle string) const;                ///< in UTF-8
    [[nodiscard]] std::vector<std::string> liveObjects() const; ///< NSProcessInfoZKT#1, ...
    [[nodiscard]] std::vector<std::string> liveStrings() const;

private:
    template <typename Body>
    Outcome perform(Body body);

    [[nodiscard]] Core &core() const;

    struct State;
    std::unique_ptr<State> state_;
};

} // namespace host
