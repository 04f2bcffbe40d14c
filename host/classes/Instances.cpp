#include "host/classes/Instances.h"

#include "host/core/PluginCall.h"
#include "host/language/Names.h"

namespace host {

namespace {

void runConstructors(const HostClass *type, ObjectHandle handle) {
    if (type == nullptr)
        return;
    runConstructors(type->superclass, handle);
    if (type->constructor == nullptr)
        return;
    PluginCall call(PluginCall::Kind::constructor, type->name);
    type->constructor(handle);
    call.done();
}

/// An object whose constructor was left by an exception never becomes one.
class Unfinished {
public:
    Unfinished(Heap &heap, ObjectHandle handle) : heap_(heap), handle_(handle) {}
    Unfinished(const Unfinished &) = delete;
    Unfinished &operator=(const Unfinished &) = delete;
    ~Unfinished() {
        if (handle_ != nullptr)
            heap_.unlock(handle_);
    }
    void finish() { handle_ = nullptr; }

private:
    Heap &heap_;
    ObjectHandle handle_;
};

std::any payloadOf(const HostClass *type) {
    while (type != nullptr && type->makePayload == nullptr)
        type = type->superclass;
    return type == nullptr ? std::any{} : type->makePayload();
}

} // namespace

Object &makeObject(Core &core, const HostClass &type) {
    return core.heap.makeObject(type,
                                {.className = type.name,
                                 .initialData = type.initialData,
                                 .dataSize = type.dataSize,
                                 .dataOffset = type.dataOffset},
                                payloadOf(&type));
}

Object *instantiate(Core &core, const HostClass &type) {
    Object &object = makeObject(core, type);
    const ObjectHandle handle = object.handle();
    Unfinished unfinished(core.heap, handle);
    runConstructors(&type, handle);
    unfinished.finish();
    // Looked up again: the constructor may have released the object.
    Object *const made = core.heap.find(handle);
    if (made == nullptr || made->life != Life::alive) {
        core.heap.violation("the constructor of " + type.name + " released its own object");
        return nullptr;
    }
    made->finished = true;
    return made;
}

void runDestructors(Object &object) {
    const ObjectHandle handle = object.handle();
    for (const HostClass *type = object.type; type != nullptr; type = type->superclass) {
        PluginCall call(PluginCall::Kind::destructor, type->name);
        for (const Method &method : type->methods)
            if (sameName(method.parsed.name, "Destructor") && method.parsed.parameters.empty())
                reinterpret_cast<void (*)(ObjectHandle)>(method.function)(handle);
        if (type->destructor != nullptr)
            type->destructor(handle);
        call.done();
    }
}

} // namespace host
