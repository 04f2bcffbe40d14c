#include "host/memory/Reference.h"

#include "host/core/Core.h"
#include "host/memory/Heap.h"

namespace host {

namespace {

/// The heap, while there is one.
template <typename Handle>
Heap *heapOf(Handle handle) {
    Core *core = Core::currentIfAny();
    return core == nullptr || handle == nullptr ? nullptr : &core->heap;
}

} // namespace

template <typename Handle>
Reference<Handle>::Reference(const Reference &other) : handle_(other.handle_) {
    if (Heap *heap = heapOf(handle_))
        heap->hostLock(handle_);
}

template <typename Handle>
Reference<Handle>::~Reference() {
    Heap *heap = heapOf(handle_);
    if (heap == nullptr)
        return;
    const Handle handle = handle_;
    try {
        drop();
    } catch (...) {
        heap->violation("a foreign exception left the destructor of " + heap->name(handle));
    }
}

template <typename Handle>
void Reference<Handle>::drop() {
    const Handle handle = std::exchange(handle_, nullptr);
    if (Heap *heap = heapOf(handle))
        heap->hostUnlock(handle);
}

template <typename Handle>
Reference<Handle> Reference<Handle>::adopt(Handle handle) {
    Reference result;
    if (handle != nullptr && Core::current().heap.adopt(handle))
        result.handle_ = handle;
    return result;
}

template <typename Handle>
Reference<Handle> Reference<Handle>::share(Handle handle) {
    Reference result;
    if (handle != nullptr && Core::current().heap.check(handle) != nullptr) {
        Core::current().heap.hostLock(handle);
        result.handle_ = handle;
    }
    return result;
}

template <typename Handle>
Handle Reference<Handle>::release() {
    if (Heap *heap = heapOf(handle_))
        heap->giveAway(handle_);
    return std::exchange(handle_, nullptr);
}

template class Reference<ObjectHandle>;
template class Reference<StringHandle>;

} // namespace host
