#pragma once

#include "frame/HostTypes.h"

#include <Foundation/Foundation.h>

#include <optional>

/// For a Core Foundation object: a new instance of the host class of its type, owned by the caller
/// and not registered, or null. Nothing for any other object, and after an NSException, which is
/// dropped.
std::optional<REALobjectStruct *> newCoreFoundationWrapper(NSObject *object);
