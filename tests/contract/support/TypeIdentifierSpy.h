#pragma once

#include "Alone.h"

#include <CoreFoundation/CoreFoundation.h>

/// Lets functions for type identifiers give other answers while it lives. One at a time; the
/// stand-in's own view of its objects stays as it is.
class TypeIdentifierSpy {
public:
    TypeIdentifierSpy() = default;
    ~TypeIdentifierSpy();
    TypeIdentifierSpy(const TypeIdentifierSpy &) = delete;
    TypeIdentifierSpy &operator=(const TypeIdentifierSpy &) = delete;

    void answer(CFTypeID (*function)(), CFTypeID identifier);

private:
    Alone<TypeIdentifierSpy> alone_;
};
