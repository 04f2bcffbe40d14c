#pragma once

#include <functional>

/// Class methods that NSException gets from a sibling plug-in of the test's own. Once added, a
/// method stays for the life of the process: not for a host that has such siblings itself.
namespace familyDouble {

/// GetInstancesDictionaryZKT, with what it answers: a CFMutableDictionary, borrowed, or null.
void addRegistry(std::function<void *()> answer);
/// PrepareNSExceptionZKT, with what it does.
void addPreparation(std::function<void()> action);

} // namespace familyDouble
