#pragma once

// The little of Foundation that the host's own C++ needs.

namespace host {

/// An NSAutoreleasePool for the life of the object.
class AutoreleasePool {
public:
    AutoreleasePool();
    ~AutoreleasePool();
    AutoreleasePool(const AutoreleasePool &) = delete;
    AutoreleasePool &operator=(const AutoreleasePool &) = delete;

private:
    void *pool_;
};

void *pushAutoreleasePool();
void popAutoreleasePool(void *pool);

/// The body's result, got in an NSAutoreleasePool of its own. One that an exception leaves stays
/// until the enclosing pool drains, since the exception object may live in it. No destructor could
/// tell: Cocoa's exceptions are not among those that std::uncaught_exceptions counts.
template <typename Body>
auto inAutoreleasePool(Body body) {
    void *const pool = pushAutoreleasePool();
    auto result = body();
    popAutoreleasePool(pool);
    return result;
}

/// Tells Foundation the process's arguments. Call once, first thing in main.
void startFoundation(int argc, char **argv, char **environment);

/// Whose Foundation it is: "GNUstep", "Apple".
const char *foundationName();

} // namespace host
