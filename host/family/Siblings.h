#pragma once

// The sibling parts of the plug-in family, as far as the host stands in for them: class methods
// that NSException gets at run time. Once installed, a method stays for the life of the process;
// the switches below act on it.

#include <cstddef>
#include <string>
#include <string_view>

namespace host {

class ClassTable;
struct Core;

} // namespace host

namespace host::siblings {

inline constexpr std::string_view exceptionClassName = "NSExceptionZKT";

/// Exception support: the host class NSExceptionZKT, and +[NSException NewNSExceptionZKT:] and
/// +[NSException PrepareNSExceptionZKT].
void installExceptions(Core &core);
/// +[NSException GetInstancesDictionaryZKT], which answers registry().
void installRegistry();
/// The wrapper classes of the family, as plain as can be: their instances hold what they wrap, and
/// when they die they give it back and leave the registry.
void addWrapperClasses(ClassTable &classes);

enum class ExceptionMaking {
    wrap,      ///< a new NSExceptionZKT that retains the NSException
    answerNil, ///< no host object
    raise,     ///< NewNSExceptionZKT: itself raises "SiblingFailure"
};
void setExceptionMaking(ExceptionMaking making);

std::size_t prepareCount();     ///< PrepareNSExceptionZKT received
std::size_t makeCount();        ///< NewNSExceptionZKT: received
std::size_t registryRequests(); ///< GetInstancesDictionaryZKT received
void resetCounts();

/// The family's registry, a CFMutableDictionary with keys by identity that retains neither keys
/// nor values. One per process; borrowed.
void *registry();
std::size_t registryCount();
/// The host object entered for a Cocoa object; null when there is none.
void *registered(const void *cocoaObject);

/// Name and reason of the NSException that an NSExceptionZKT's data holds.
std::string cocoaName(const void *nsException);
std::string cocoaReason(const void *nsException);

} // namespace host::siblings
