#import "FaultMatrixScene.h"

#include "ActingScene.h"
#include "ActivityScene.h"
#include "host/classes/ClassTable.h"
#include "host/classes/Inspect.h"
#include "host/classes/NativeData.h"
#include "host/core/Cocoa.h"
#include "host/core/Core.h"
#include "host/core/Text.h"
#include "host/memory/Heap.h"

#include <cstdio>
#include <cstring>
#include <iterator>
#include <map>
#include <regex>
#include <unistd.h>
#include <utility>

namespace matrix {

namespace {

/// What geometry classes hold, 0 to 4 numbers.
template <class Number>
std::string numbers(const void *data, std::size_t count) {
    std::vector<Number> values(count);
    std::memcpy(values.data(), data, count * sizeof(Number));
    std::string text;
    for (const Number value : values)
        text += (text.empty() ? "" : ", ") + std::to_string(static_cast<std::int64_t>(value));
    return text;
}

/// "Name: reason" of each of the trap's lines in what was written to stderr.
Lines logged() {
    std::string text;
    lseek(STDERR_FILENO, 0, SEEK_SET);
    char buffer[4096];
    for (ssize_t count = 0; (count = read(STDERR_FILENO, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(count));
    static const std::regex line(R"(\] A ([^\n]*), Info: \(null\)\n)");
    Lines lines;
    for (std::sregex_iterator each(text.begin(), text.end(), line), end; each != end; ++each)
        lines.push_back((*each)[1]);
    return lines;
}

std::string shown(const host::RaisedException &exception) {
    return exception.className + ": " +
           (exception.cocoaName.empty() ? exception.message.value_or("nil")
                                        : exception.cocoaName + ": " + exception.cocoaReason);
}

} // namespace

Scene::Scene(std::optional<double> version, bool withInstance)
    : LoadedPlugin{{.version = version}} {
    object->answers.string = @"abc";
    object->answers.arguments = @[ @"abc", @"def" ];
    object->answers.environment = @{@"k" : @"v"};
    shared->activity = token;
    if (withInstance) {
        info = host.newInstance(processInfoClass);
        setHandle(host, info, object);
    }
    host.clearTrace();
}

Scene::~Scene() {
    own->onMessage = shared->onMessage = nullptr;
    if (info.handle() != nullptr)
        setHandle(host, info, nullptr);
}

void Scene::substituteShared() {
    substitute_ = std::make_unique<SharedObjectSubstitute>(image, shared);
}

void Scene::refuse() {
    object->answers.raising = [NSException exceptionWithName:@"Trouble"
                                                      reason:@"on the way"
                                                    userInfo:nil];
    const auto trouble = [](std::string_view selector) {
        if (selector != "release" && selector != "retain" && selector != "respondsToSelector:")
            raiseNSException("Trouble", "on the way");
    };
    own->onMessage = shared->onMessage = trouble;
}

host::ObjectRef Scene::begunActivity() {
    host::ObjectRef activity = host.newInstance(activityClass);
    ActivityFields fields{.token = token, .options = 255, .active = 1};
    [token retain];
    fields.reason = host::Core::current().heap.makeString("why", host::encoding::utf8).handle();
    std::memcpy(host.dataOf(activity), &fields, sizeof fields);
    return activity;
}

std::string Scene::stateOf(host::ObjectHandle activity) const {
    const ActivityFields fields = fieldsOf(host, activity);
    return std::string(fields.token == nullptr               ? "no token"
                       : fields.token == (const void *)token ? "token"
                                                             : "another token") +
           ", " + describe(fields.reason) + ", " + std::to_string(fields.options) +
           (fields.active == 1   ? ", active"
            : fields.active == 0 ? ", ended"
                                 : ", odd");
}

std::string Scene::seen(const host::Outcome &outcome) {
    if (outcome.exception)
        raised_.push_back(*outcome.exception);
    if (const auto *reference = std::get_if<host::ObjectRef>(&outcome.value))
        results_.push_back(*reference);
    if (const auto *reference = std::get_if<host::StringRef>(&outcome.value))
        strings_.push_back(*reference);
    return describe(outcome.value);
}

std::string Scene::taken(host::ObjectHandle result, id wrapped) {
    const host::Object *found = host::Core::current().heap.find(result);
    std::string text = describe(result, wrapped);
    if (found != nullptr && found->pluginReferences() <= 0)
        return text + " without a reference";
    results_.push_back(host::ObjectRef::adopt(result));
    return text;
}

std::string Scene::taken(host::StringHandle result) {
    strings_.push_back(host::StringRef::adopt(result));
    return describe(result);
}

std::string Scene::describe(const host::Value &value, id wrapped) const {
    return describeDeep(value,
                        [&](host::ObjectHandle handle) { return describeOther(handle, wrapped); });
}

std::string Scene::describe(host::StringHandle string) const {
    return describe(host::Value(host::StringRef::share(string)));
}

std::string Scene::describe(host::ObjectHandle handle, id wrapped) const {
    if (handle != nullptr && !host.isLive(handle))
        return "no object";
    return describe(host::Value(host::ObjectRef::share(handle)), wrapped);
}

std::string Scene::describeOther(host::ObjectHandle handle, id wrapped) const {
    const std::string name = host.className(handle);
    const void *data = host.dataOf(handle);
    if (name == activityClass)
        return "activity(" + stateOf(handle) + ')';
    if (name == "NSRectZKT")
        return name + '(' + numbers<double>(data, 4) + ')';
    if (name == "NSSizeZKT" || name == "NSPointZKT")
        return name + '(' + numbers<double>(data, 2) + ')';
    if (name == "NSRangeZKT")
        return name + '(' + numbers<std::uint64_t>(data, 2) + ')';
    void *held = nullptr;
    std::memcpy(static_cast<void *>(&held), data, sizeof held);
    return name + (held == nullptr                 ? ""
                   : wrapped == nil                ? "(an object)"
                   : held == (const void *)wrapped ? "(the object)"
                                                   : "(another object)");
}

std::map<std::string, std::string> Scene::liveActivities() const {
    std::map<std::string, std::string> activities;
    for (const host::Object *each : host::Core::current().heap.liveObjects())
        if (each->type->name == activityClass) {
            const host::ObjectHandle handle = const_cast<host::Object *>(each)->handle();
            activities[host.name(handle)] = describe(handle);
        }
    return activities;
}

std::string Scene::runWith(const Services &services, Fault fault, bool once,
                           const std::function<void()> &body) {
    bool thrown = false;
    for (const std::string_view service : services)
        if (fault == Fault::missing)
            host.services().hide(service);
        else if (fault == Fault::null)
            host.services().answerNull(service);
        else
            host.services().fail(service, [&thrown, fault, once] {
                if (!std::exchange(thrown, true) || !once)
                    throwOf(fault);
            });
    std::string left = leaving(body);
    for (const std::string_view service : services)
        host.services().restore(service);
    return left;
}

Aftermath Scene::runAgain(const Act &act, const Services &services, Fault fault, bool once) {
    runWith(services, fault, once, [&] { act.run(); });
    host.takePendingException();
    raised_.clear();
    const auto strays = static_cast<std::ptrdiff_t>(host.strayExceptions().size());
    Aftermath again = run(act, {}, Fault::none);
    again.raised.erase(again.raised.begin(), again.raised.begin() + strays);
    return again.ofOneRun();
}

Aftermath Scene::run(const Act &act, const Services &services, Fault fault, bool once) {
    Aftermath after;
    after.left = runWith(services, fault, once, [&] { after.value = act.run(); });
    if (act.state)
        after.state = act.state();

    for (const host::RaisedException &stray : host.strayExceptions())
        after.raised.push_back(shown(stray));
    if (const auto pending = host.takePendingException())
        raised_.push_back(*pending);
    for (const host::RaisedException &exception : raised_)
        after.raised.push_back(shown(exception));
    for (const std::string &line : host.calls())
        if (line.starts_with('['))
            after.effects.push_back(line);
    after.logged = logged();

    const std::map<std::string, std::string> activities = liveActivities();
    host.shutDown();
    static const std::regex leak(R"((([A-Za-z]+)#\d+) leaked, (\d+) references? never .*)");
    for (const std::string &violation : host.violations())
        if (std::smatch parts; std::regex_match(violation, parts, leak)) {
            const auto activity = activities.find(parts[1]);
            after.held.insert(after.held.end(), std::stoul(parts[3]),
                              activity == activities.end() ? parts[2].str() : activity->second);
        } else
            after.hostComplaints.push_back(violation.substr(0, violation.find(" (made")));
    return after;
}

Act reading(Scene &scene, const char *property) {
    return {[&scene, property] { return scene.seen(scene.host.get(scene.info, property)); }};
}

Act calling(Scene &scene, const char *method, host::Values arguments) {
    return {[&scene, method, arguments = std::move(arguments)] {
        return scene.seen(scene.host.call(scene.info, method, arguments));
    }};
}

Act handingOver(Act act, host::ObjectRef object, void **place) {
    act.run = [run = std::move(act.run), object = std::move(object), place] {
        *place = host::ObjectRef(object).release();
        return run();
    };
    return act;
}

Act converting(Scene &scene, id object) {
    auto *convert = imageFunction<host::ObjectHandle(id)>(scene.image, "NewVariantFromNSObject");
    return {[&scene, object, convert] {
        const NSUInteger references = [object retainCount];
        const host::ObjectHandle result = host::inAutoreleasePool([&] { return convert(object); });
        std::string text = scene.taken(result, object);
        if (const NSUInteger kept = [object retainCount] - references; kept != 0)
            text += ", retained " + std::to_string(kept);
        return text;
    }};
}

} // namespace matrix
