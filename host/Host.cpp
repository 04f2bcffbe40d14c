#include "host/Host.h"

#include "host/classes/Builtins.h"
#include "host/classes/Instances.h"
#include "host/classes/Invoker.h"
#include "host/core/Cocoa.h"
#include "host/core/PluginCall.h"
#include "host/crash/CrashHandler.h"
#include "host/family/Siblings.h"
#include "host/language/Encodings.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
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
    return Host::current().services().find(serviceName);
}

RaisedException seen(ObjectRef exception) {
    const Host &host = Host::current();
    const Object &object = *host.heap().find(exception.handle());
    RaisedException result{
        .className = object.type->name, .message = {}, .object = std::move(exception)};
    if (const auto *data = std::get_if<ExceptionData>(&object.payload)) {
        if (data->message.handle() != nullptr)
            result.message = host.text(data->message.handle());
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

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
    return std::to_string(count) + ' ' + std::string(count == 1 ? one : many);
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
    explicit State(HostOptions itsOptions)
        : options(std::move(itsOptions)),
          heap(violations, runDestructors, options.quarantineLimit) {}

    HostOptions options;
    AutoreleasePool pool; ///< for what is autoreleased outside of program calls
    Violations violations;
    ClassTable classes;
    Heap heap;
    Services services;
    Trace trace;
    std::vector<Method> globals = globalMethods();
    std::vector<MethodDeclaration> hiddenMethods;
    ObjectRef pending;
    std::vector<RaisedException> stray;
    std::int32_t interfaceVersion = 0;
    std::size_t calls = 0;
    std::size_t leaks = 0;
    bool isShutDown = false;
};

Host::Host(HostOptions options) {
    if (currentHost != nullptr)
        throw UsageError("there is a host already in this process");
    state_ = std::make_unique<State>(std::move(options));
    currentHost = this;
    tracer().setOn(state_->options.tracing);
    addBuiltinClasses(*this);
    // The activity class finds its data through its record only: elsewhere than all others.
    classes().placeData("NSProcessInfoActivityZKT", 64);
    if (!state_->options.version)
        services().hide("REALGetRBVersion");
    const Siblings present = state_->options.siblings;
    const bool allPresent = present == Siblings::all || present == Siblings::wrappers;
    if (present == Siblings::exceptions || allPresent)
        siblings::installExceptions();
    if (present == Siblings::registry || allPresent)
        siblings::installRegistry();
    if (present == Siblings::wrappers)
        siblings::addWrapperClasses();
}

Host::~Host() {
    shutDown();
    for (const std::string &violation : state_->violations.unexamined())
        unexaminedHandler()(violation);
    // What dies now does so without its destructors: it was reported.
    state_.reset();
    currentHost = nullptr;
}

Host &Host::current() {
    if (currentHost == nullptr)
        throw UsageError("there is no host in this process");
    return *currentHost;
}

bool Host::exists() {
    return currentHost != nullptr && currentHost->state_ != nullptr;
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

StringRef Host::makeString(std::string_view stringBytes, std::uint32_t stringEncoding) {
    return StringRef::adopt(heap().makeString(std::string(stringBytes), stringEncoding).handle());
}

Services &Host::services() {
    return state_->services;
}

void Host::hideClass(std::string_view name) {
    classes().hide(name);
}

void Host::showClass(std::string_view name) {
    classes().show(name);
}

void Host::addClass(const ClassSpec &spec) {
    classes().add(spec);
}

void Host::hideMethod(std::string_view declaration) {
    state_->hiddenMethods.push_back(parseMethod(declaration));
}

void Host::showMethod(std::string_view declaration) {
    std::erase_if(state_->hiddenMethods, [shown = parseMethod(declaration)](const auto &hidden) {
        return sameSignature(hidden, shown);
    });
}

void Host::setMemoryBlockLimit(std::uint64_t limit) {
    state_->options.memoryBlockLimit = limit;
}

void Host::setVersion(std::optional<double> version) {
    state_->options.version = version;
    if (version)
        services().restore("REALGetRBVersion");
    else
        services().hide("REALGetRBVersion");
}

std::vector<std::string> Host::trace() const {
    return state_->trace.all();
}

std::vector<std::string> Host::calls() const {
    return state_->trace.calls();
}

std::vector<std::string> Host::lookups() const {
    return state_->trace.lookups();
}

void Host::clearTrace() {
    state_->trace.clear();
}

void Host::setTracing(bool on) {
    state_->trace.setOn(on);
}

const std::vector<std::string> &Host::violations() const {
    return state_->violations.examine();
}

Account Host::account() const {
    return {.calls = state_->calls,
            .liveObjects = heap().liveObjectCount(),
            .liveStrings = heap().liveStringCount(),
            .leaks = state_->leaks,
            .violations = state_->violations.count()};
}

void Host::shutDown() {
    if (std::exchange(state_->isShutDown, true))
        return;
    state_->stray.clear();
    takePending();
    heap().checkAllMemory();
    for (const std::string &leak : heap().leaks()) {
        state_->violations.add(leak);
        ++state_->leaks;
    }
}

Heap &Host::heap() {
    return state_->heap;
}

const Heap &Host::heap() const {
    return state_->heap;
}

ClassTable &Host::classes() {
    return state_->classes;
}

const ClassTable &Host::classes() const {
    return state_->classes;
}

Trace &Host::tracer() {
    return state_->trace;
}

const HostOptions &Host::options() const {
    return state_->options;
}

void Host::countCall() {
    ++state_->calls;
}

void Host::raise(ObjectHandle exception) {
    const Object *object = heap().check(exception);
    if (object == nullptr)
        return;
    if (!object->type->isKindOf(*classes().findAny("RuntimeException"))) {
        heap().violation("got " + Heap::name(*object) + ", which is no exception (" +
                         object->history.text() + ")");
        return;
    }
    ObjectRef raised = ObjectRef::share(exception);
    if (ObjectRef before = takePending(); before.handle() != nullptr)
        state_->stray.push_back(seen(std::move(before)));
    state_->pending = std::move(raised);
}

ObjectRef Host::takePending() {
    return std::exchange(state_->pending, ObjectRef{});
}

// Only memory that runs out could throw here, and then the end of the process is right.
// NOLINTNEXTLINE(bugprone-exception-escape)
Host::ExceptionScope::~ExceptionScope() {
    if (before_.handle() != nullptr)
        host_.raise(before_.handle());
}

std::optional<RaisedException> Host::takePendingException() {
    ObjectRef exception = takePending();
    if (exception.handle() == nullptr)
        return std::nullopt;
    return seen(std::move(exception));
}

bool Host::hasPendingException() const {
    return state_->pending.handle() != nullptr;
}

const std::vector<RaisedException> &Host::strayExceptions() const {
    return state_->stray;
}

void Host::makePendingStray() {
    if (auto exception = takePendingException())
        state_->stray.push_back(*std::move(exception));
}

std::optional<MethodDeclaration> Host::parseLookup(const char *declaration) {
    if (declaration == nullptr) {
        heap().violation("got no declaration");
        return std::nullopt;
    }
    try {
        MethodDeclaration wanted = parseMethod(declaration);
        const bool hidden = std::ranges::any_of(state_->hiddenMethods, [&](const auto &method) {
            return sameSignature(method, wanted);
        });
        return hidden ? std::nullopt : std::optional(std::move(wanted));
    } catch (const DeclarationError &error) {
        heap().violation(error.what());
        return std::nullopt;
    }
}

const Method *Host::globalMethod(const MethodDeclaration &signature) const {
    const auto found = std::ranges::find_if(state_->globals, [&](const Method &method) {
        return sameSignature(method.parsed, signature);
    });
    return found == state_->globals.end() ? nullptr : &*found;
}

void Host::setInterfaceVersion(std::int32_t version) {
    state_->interfaceVersion = version;
}

std::int32_t Host::interfaceVersion() const {
    return state_->interfaceVersion;
}

} // namespace host
