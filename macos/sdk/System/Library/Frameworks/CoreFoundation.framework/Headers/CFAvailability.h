// How a declaration says since when macOS has it, and how an enumeration fixes its width.

#pragma once
#pragma clang system_header

#define CF_MACOS_SINCE(version) __attribute__((availability(macos, introduced = version)))
#define CF_MACOS_DEPRECATED(since, deprecatedIn)                                                   \
    __attribute__((availability(macos, introduced = since, deprecated = deprecatedIn)))

/// For a variable newer than the deployment target. macOS imports it weakly by its availability;
/// any other linker has to be told.
#ifdef __APPLE__
#define CF_MACOS_WEAK_SINCE(version) CF_MACOS_SINCE(version)
#else
#define CF_MACOS_WEAK_SINCE(version) __attribute__((weak))
#endif

#define CF_ENUM(type, name)                                                                        \
    enum __attribute__((enum_extensibility(open))) name : type name;                               \
    enum name : type

/// A set of bits: in C++ the type is the plain integer, so that bits combine without casts.
#ifdef __cplusplus
#define CF_OPTIONS(type, name)                                                                     \
    type name;                                                                                     \
    enum __attribute__((flag_enum, enum_extensibility(open))) : type
#else
#define CF_OPTIONS(type, name)                                                                     \
    enum __attribute__((flag_enum, enum_extensibility(open))) name : type name;                    \
    enum name : type
#endif
