// Random sequences of what programs do with instances and activities, beside a model of what comes
// of it: which object each instance wraps, what the registry holds, which activities run.

#include "FuzzedPlugin.h"

#include "host/core/Cocoa.h"
#include "host/family/Siblings.h"
#include "macos/standin/StandIn.h"

#import <Foundation/Foundation.h>

#include <array>
#include <fuzzer/FuzzedDataProvider.h>
#include <map>
#include <optional>
#include <vector>

namespace {

constexpr const char *infoClass = "NSProcessInfoZKT";

/// An instance that the program holds, perhaps several times.
struct Instance {
    host::ObjectRef reference;
    id wrapped = nil;
};

struct Activity {
    host::ObjectRef reference;
    bool running = true;
    std::int64_t options = 0;
    std::string reason;
};

class Program {
public:
    explicit Program(FuzzedDataProvider &input) : input_(input) {
        for (id &object : objects_)
            object = [[NSObject alloc] init];
    }
    ~Program() {
        for (id object : objects_)
            [object release];
    }
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    void run() {
        while (input_.remaining_bytes() > 0) {
            step();
            check();
        }
        while (!instances_.empty()) {
            drop(instances_.begin()->first);
            check();
        }
        activities_.clear();
        require(standin::activities().empty(), "an activity goes on");
    }

private:
    using Operation = void (Program::*)();
    using Instances = std::map<host::ObjectHandle, Instance>;

    static host::Host &host() { return plugin().host; }
    static id shared() { return [NSProcessInfo processInfo]; }
    std::size_t below(std::size_t limit) {
        return input_.ConsumeIntegralInRange<std::size_t>(0, limit - 1);
    }
    auto some(Instances &instances) {
        return std::next(instances.begin(), static_cast<long>(below(instances.size())));
    }

    void step() {
        constexpr std::array<Operation, 10> operations = {
            &Program::makeNew,      &Program::makeUnbound, &Program::takeShared,
            &Program::dropSome,     &Program::bindAgain,   &Program::writeHandle,
            &Program::beginOne,     &Program::endSome,     &Program::dropActivity,
            &Program::readArgument,
        };
        (this->*input_.PickValueInArray(operations))();
    }

    void makeNew() { keep(host().newObject(infoClass).object(), shared(), true); }
    void makeUnbound() { keep(host().newInstance(infoClass), nil, false); }

    void takeShared() {
        const host::ObjectRef given = host().callShared(infoClass, "processInfo").object();
        if (const auto known = registry_.find(shared()); known != registry_.end()) {
            require(given.handle() == known->second, "another instance than the registered one");
            return; // the reference that came with it is dropped
        }
        keep(given, shared(), true);
    }

    void keep(host::ObjectRef reference, id wrapped, bool registers) {
        const host::ObjectHandle handle = reference.handle();
        require(handle != nullptr, "no instance");
        if (registers)
            registry_[wrapped] = handle;
        instances_[handle] = {std::move(reference), wrapped};
    }

    void dropSome() {
        if (!instances_.empty())
            drop(some(instances_)->first);
    }

    void drop(host::ObjectHandle handle) {
        const auto instance = instances_.find(handle);
        if (instance->second.wrapped != nil)
            registry_.erase(instance->second.wrapped); // whoever was entered for it
        host().release(std::move(instance->second.reference));
        instances_.erase(instance);
    }

    void bindAgain() {
        if (instances_.empty())
            return;
        auto &[handle, instance] = *some(instances_);
        const host::Outcome outcome = host().call(handle, "Constructor");
        require(outcome.raised() == (instance.wrapped != nil), "bound twice, or not once");
        if (outcome.raised())
            return;
        instance.wrapped = shared();
        registry_[shared()] = handle;
    }

    /// The instance owns what it wraps, so that a program that writes "Handle" has to see to the
    /// references itself. It must leave registered instances alone: they are taken out of the
    /// registry by what they wrap in the end.
    void writeHandle() {
        if (instances_.empty())
            return;
        auto &[handle, instance] = *some(instances_);
        const auto known = registry_.find(instance.wrapped);
        if (known != registry_.end() && known->second == handle)
            return;
        id object = input_.ConsumeBool() ? input_.PickValueInArray(objects_) : nil;
        [object retain];
        host().set(handle, "Handle", reinterpret_cast<long long>(object));
        [instance.wrapped release];
        instance.wrapped = object;
    }

    void beginOne() {
        if (instances_.empty())
            return;
        const auto options = static_cast<std::int64_t>(input_.ConsumeIntegral<std::uint32_t>());
        const std::string reason(below(4), 'r');
        host::Outcome outcome =
            host().call(some(instances_)->first, "beginActivity",
                        {host::Value(options), host::Value(std::string_view(reason))});
        activities_.push_back({std::move(outcome).object(), true, options, reason});
        require(activities_.back().reference.handle() != nullptr, "no activity");
    }

    void endSome() {
        if (instances_.empty() || activities_.empty())
            return;
        Activity &activity = activities_[below(activities_.size())];
        host().call(some(instances_)->first, "endActivity", {activity.reference});
        activity.running = false;
    }

    void dropActivity() {
        if (!activities_.empty())
            activities_.erase(activities_.begin() + static_cast<long>(below(activities_.size())));
    }

    void readArgument() {
        if (instances_.empty())
            return;
        const auto &[handle, instance] = *some(instances_);
        if (instance.wrapped != shared())
            return;
        const std::int64_t count = host().get(handle, "argumentsCount").integer();
        const auto index = input_.ConsumeIntegralInRange<std::int64_t>(-2, count + 1);
        const host::Outcome outcome = host().call(handle, "argument", {host::Value(index)});
        require(outcome.raised() == (index < 0 || index >= count), "bounds");
    }

    void check() const {
        require(host::siblings::registryCount() == registry_.size(), "size of the registry");
        for (const auto &[object, handle] : registry_)
            require(host::siblings::registered(object) == handle, "entry of the registry");
        for (const auto &[handle, instance] : instances_)
            require(host().get(handle, "Handle").integer() ==
                        reinterpret_cast<std::int64_t>(instance.wrapped),
                    "wrapped object");
        std::size_t running = 0;
        for (const Activity &activity : activities_) {
            running += activity.running ? 1 : 0;
            const bool ended = host().get(activity.reference, "Handle").integer() == 0;
            require(ended == !activity.running, "token of an activity");
            require(host().get(activity.reference, "Options").integer() == activity.options &&
                        host().get(activity.reference, "Reason").text() == activity.reason,
                    "fields of an activity");
        }
        require(standin::activities().size() == running, "running activities");
        for (id object : objects_) {
            NSUInteger holders = 1;
            for (const auto &[handle, instance] : instances_)
                holders += instance.wrapped == object ? 1 : 0;
            require([object retainCount] == holders, "references to a wrapped object");
        }
    }

    FuzzedDataProvider &input_;
    std::array<id, 3> objects_{};
    Instances instances_;
    std::vector<Activity> activities_;
    std::map<id, host::ObjectHandle> registry_;
};

} // namespace

/// The plug-in logs every Cocoa exception; here they are too many to read.
static void ignoreLogLine(NSString *) {}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    _NSLog_printf_handler = ignoreLogLine;
    const host::AutoreleasePool pool;
    FuzzedDataProvider input(data, size);
    Program(input).run();
    plugin().requireCleanHost();
    return 0;
}
