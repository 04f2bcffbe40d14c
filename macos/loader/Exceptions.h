#pragma once

#include "macos/loader/ObjcRuntime.h"

#include <string_view>

namespace macho {

/// The handler type of Objective-C objects of class `cls`, an object laid out as images expect it;
/// it lives as long as the process. One for each class.
void *handlerType(objc::Object cls, std::string_view name);

/// A handler type that matches nothing, for classes that this system lacks: a null in its place
/// would match everything.
void *handlerTypeOfMissingClass();

} // namespace macho
