#include "host/Host.h"

#include "host/classes/Builtins.h"
#include "host/classes/ClassTable.h"
#include "host/classes/Exceptions.h"
#include "host/classes/Instances.h"
#include "host/classes/NativeData.h"
#include "host/core/Cocoa.h"
#include "host/core/Core.h"
#include "host/core/PluginCall.h"
#include "host/core/Text.h"
#include "host/core/UsageError.h"
#include "host/crash/CrashHandler.h"
#include "host/family/Siblings.h"
#include "host/memory/Heap.h"
#include "host/memory/Violations.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <utility>

namespace host {

namespace {

Host *currentHost = nullptr;

void printUnexamined(const std::string &violation) {
    std::fprintf(stderr, "violation: %s\n", violation.c_str());
}

std::function<void(const std::string &)> &unexaminedHandler() {
    static std::function<void(const std::string &)> handler = printUnexamined;
    return handler;
}

void *resolve(const char *serviceName) {
    return Core::current().services.find(serviceName);
}

RaisedException seen(ObjectRef exception) {
    const Object &object = *Core::current().heap.find(exception.handle());
    RaisedException result{
        .className = object.type->name, .message = {}, .object = std::move(exception)};
    if (const auto *data = std::any_cast<ExceptionData>(&object.payload)) {
        if (data->message.handle() != nullptr)
            result.message = textOf(data->message.handle());
        result.errorNumber = data->errorNumber;
    }
    if (object.type->name == siblings::exceptionClassName) {
        void *cocoa = nullptr;
        std::memcpy(static_cast<void *>(&cocoa), object.data(), sizeof cocoa);
        result.cocoaName = siblings::cocoaName(cocoa);
        result.cocoaReason = siblings::cocoaReason(cocoa);
    }
    return result;
}

} // namespace

std::string describe(const Account &account) {
    return counted(account.calls, "call", "calls") + ", " +
           counted(account.liveObjects, "object", "objects") + " and " +
           counted(account.liveStrings, "string", "strings") + " live, " +
           (account.leaks == 0 ? "no leaks" : counted(account.leaks, "leak", "leaks")) + ", " +
           (account.violations == 0 ? "no violations"
                                    : counted(account.violations, "violation", "violations"));
}

struct Host::State {
    explicit State(HostOptions options)
        : heap(violations, runDestructors, options.quarantineLimit),
          core{.options = std::move(options),
               .heap = heap,
               .classes = classes,
               .pending = pending,
               .services = services} {}

    AutoreleasePool pool; ///< for what is autoreleased outside of program calls
    Violations violations;
    ClassTable classes;
    Heap heap;
    Services services;
    PendingException pending;
    Core core;
    std::size_t leaks = 0;
    bool isShutDown = false;
};

Host::Host(HostOptions options) {
    if (currentHost != nullptr)
        throw UsageError("there is a host already in this process");
    state_ = std::make_unique<State>(std::move(options));
    currentHost = this;
    Core &core = state_->core;
    Core::setCurrent(&core);
    core.trace.setOn(core.options.tracing);
    addBuiltinClasses(core.classes);
    // The activity class finds its data through its record only: elsewhere than all others.
    core.classes.placeData("NSProcessInfoActivityZKT", 64);
    if (!core.options.version)
        core.services.hide("REALGetRBVersion");
    const Siblings present = core.options.siblings;
    const bool allPresent = present == Siblings::all || present == Siblings::wrappers;
    if (present == Siblings::exceptions || allPresent)
        siblings::installExceptions(core);
    if (present == Siblings::registry || allPresent)
        siblings::installRegistry();
    if (present == Siblings::wrappers)
        siblings::addWrapperClasses(core.classes);
}

Host::~Host() {
    shutDown();
    for (const std::string &violation : state_->violations.unexamined())
        unexaminedHandler()(violation);
    // What dies now does so without its destructors: it was reported.
    Core::setCurrent(nullptr);
    state_.reset();
    currentHost = nullptr;
}

Host &Host::current() {
    if (currentHost == nullptr)
        throw UsageError("there is no host in this process");
    return *currentHost;
}

bool Host::exists() {
    return Core::currentIfAny() != nullptr;
}

void Host::onUnexamined(std::function<void(const std::string &)> handler) {
    unexaminedHandler() = std::move(handler);
}

namespace {

// In a signal handler.
void sayWhoIsAtWork(crash::Writer &writer) {
    if (const PluginCall *call = PluginCall::current()) {
        for (const std::string_view word : call->words())
            writer << word;
        writer << " crashed: ";
    }
}

} // namespace

Image &Host::loadPlugin(const std::filesystem::path &file, const ImageOptions &imageOptions) {
    static std::vector<std::unique_ptr<Image>> images;
    Image &image = *images.emplace_back(openImage(file, imageOptions));
    crash::addImage(image.file(), image.memory().data(), image.memory().size());
    crash::setActor(sayWhoIsAtWork);
    void *const pool = pushAutoreleasePool();
    PluginCall call(PluginCall::Kind::entryPoint, "");
    image.entryPoint()(resolver());
    call.done();
    popAutoreleasePool(pool);
    return image;
}

Resolver Host::resolver() {
    return resolve;
}

StringRef Host::makeString(std::string_view bytes, std::uint32_t encoding) {
    return host::makeString(bytes, encoding);
}

Services &Host::services() {
    return state_->services;
}

void Host::hideClass(std::string_view name) {
    state_->classes.hide(name);
}

void Host::showClass(std::string_view name) {
    state_->classes.show(name);
}

void Host::addClass(const ClassSpec &spec) {
    state_->classes.add(spec);
}

void Host::hideMethod(std::string_view declaration) {
    state_->classes.hideMethod(parseMethod(declaration));
}

void Host::showMethod(std::string_view declaration) {
    state_->classes.showMethod(parseMethod(declaration));
}

void Host::setMemoryBlockLimit(std::uint64_t limit) {
    state_->core.options.memoryBlockLimit = limit;
}

void Host::setVersion(std::optional<double> version) {
    state_->core.options.version = version;
    if (version)
        services().restore("REALGetRBVersion");
    else
        services().hide("REALGetRBVersion");
}

std::vector<std::string> Host::trace() const {
    return state_->core.trace.all();
}

std::vector<std::string> Host::calls() const {
    return state_->core.trace.calls();
}

std::vector<std::string> Host::lookups() const {
    return state_->core.trace.lookups();
}

void Host::clearTrace() {
    state_->core.trace.clear();
}

void Host::setTracing(bool on) {
    state_->core.trace.setOn(on);
}

const std::vector<std::string> &Host::violations() const {
    return state_->violations.examine();
}

Account Host::account() const {
    return {.calls = state_->core.calls,
            .liveObjects = state_->heap.liveObjectCount(),
            .liveStrings = state_->heap.liveStringCount(),
            .leaks = state_->leaks,
            .violations = state_->violations.count()};
}

void Host::shutDown() {
    if (std::exchange(state_->isShutDown, true))
        return;
    state_->pending.clear();
    state_->heap.checkAllMemory();
    for (const std::string &leak : state_->heap.leaks()) {
        state_->violations.add(leak);
        ++state_->leaks;
    }
}

Core &Host::core() const {
    return state_->core;
}

const ClassTable &Host::classes() const {
    return state_->classes;
}

const HostOptions &Host::options() const {
    return state_->core.options;
}

std::int32_t Host::interfaceVersion() const {
    return state_->core.interfaceVersion;
}

std::optional<RaisedException> Host::takePendingException() {
    ObjectRef exception = state_->pending.take();
    if (exception.handle() == nullptr)
        return std::nullopt;
    return seen(std::move(exception));
}

bool Host::hasPendingException() const {
    return state_->pending.any();
}

std::vector<RaisedException> Host::strayExceptions() const {
    std::vector<RaisedException> result;
    std::ranges::transform(state_->pending.strays(), std::back_inserter(result), seen);
    return result;
}

} // namespace host
