#include "tests/loader/Thrower.h"

#include <stdexcept>

void throwOutOfRange() {
    throw std::out_of_range("out of range");
}

void throwInteger() {
    throw 42;
}

void catchInternally() {
    try {
        throwInteger();
    } catch (int) {
        try {
            throwOutOfRange();
        } catch (const std::logic_error &) {
            return;
        }
    }
}

Outcome outcomeOf(const std::function<void()> &body) {
    try {
        body();
        return Outcome::returned;
    } catch (const std::out_of_range &) {
        return Outcome::outOfRange;
    } catch (const std::logic_error &) {
        return Outcome::logicError;
    } catch (const std::exception &) {
        return Outcome::exception;
    } catch (int) {
        return Outcome::integer;
    } catch (...) {
        return Outcome::other;
    }
}
