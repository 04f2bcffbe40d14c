#pragma once

#ifdef __OBJC__
#error "With GCC's runtime an Objective-C++ file cannot catch C++ exceptions."
#endif

#include "frame/CocoaBarrier.h"
#include "frame/RaiseException.h"

#include <exception>
#include <new>
#include <stdexcept>
#include <typeinfo>

/// Runs body, which gives a pointer; an exception in it becomes a host exception, and the result
/// null. The order counts: range errors are caught before the bases they share with other errors.
template <class Body>
auto withStandardExceptionsMapped(Body body) -> decltype(body()) {
    decltype(body()) result = nullptr;
    bool hasNoName = false;
    const auto run = [&result, body] { result = body(); };
    try {
        hasNoName = throwsCocoaObject(
            [](const void *argument) { (*static_cast<decltype(&run)>(argument))(); }, &run);
    } catch (const std::bad_alloc &) {
        RaiseException("OutOfMemoryException", "Failed to allocate memory.");
    } catch (const std::range_error &error) {
        RaiseException("OutOfBoundsException", error.what());
    } catch (const std::out_of_range &error) {
        RaiseException("OutOfBoundsException", error.what());
    } catch (const std::overflow_error &error) {
        RaiseException("OutOfBoundsException", error.what());
    } catch (const std::underflow_error &error) {
        RaiseException("OutOfBoundsException", error.what());
    } catch (const std::logic_error &error) {
        RaiseException("RuntimeException", error.what());
    } catch (const std::runtime_error &error) {
        RaiseException("RuntimeException", error.what());
    } catch (const std::bad_cast &error) {
        RaiseException("IllegalCastException", error.what());
    } catch (const std::exception &error) {
        RaiseException("RuntimeException", error.what());
    } catch (...) {
        hasNoName = true;
    }
    if (hasNoName)
        RaiseException("RuntimeException", "Sorry, but there was an unnamed C++ Exception.");
    return result;
}
