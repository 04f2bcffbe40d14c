#pragma once

#include <string_view>

/// The Objective-C runtime of this process, in the terms of an image.

namespace macho::objc {

/// An object or a class. Untyped, for code that sends no messages.
using Object = void *;

/// The class of that name; null when there is none.
Object classNamed(std::string_view name);
Object metaclassNamed(std::string_view name);

/// The class that an image's constant strings have.
Object constantStringClass();

/// True when `object` is of class `cls` or of one that inherits from it. Neither is null.
bool isInstance(Object object, Object cls);

/// The selector of that name; selectors live as long as the process.
void *selector(const char *name);

Object retain(Object object);
void release(Object object);

} // namespace macho::objc
