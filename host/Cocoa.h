#pragma once

// The little of Foundation that the host's own C++ needs.

namespace host {

/// An NSAutoreleasePool for the life of the object. Not drained when an exception passes, since
/// the exception object may live in it: the enclosing pool frees it then.
class AutoreleasePool {
public:
    AutoreleasePool();
    ~AutoreleasePool();
    AutoreleasePool(const AutoreleasePool &) = delete;
    AutoreleasePool &operator=(const AutoreleasePool &) = delete;

private:
    void *pool_;
    int exceptionsInFlight_;
};

/// Tells Foundation the process's arguments. Call once, first thing in main.
void startFoundation(int argc, char **argv, char **environment);

} // namespace host
