#pragma once

#import <Foundation/Foundation.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

// The classes that have a host class of their own, in the order in which they are tried.

enum class Pairing : std::uint8_t {
    registers,        ///< the row's own host class; the object is entered in the registry
    walks,            ///< the first host class up the object's own classes; not entered
    hookThenWalks,    ///< likewise, unless a sibling takes the object
    asEarlierRow,     ///< never reached by objects of the class: an earlier row registers them
    behindWalkingRow, ///< never reached by objects of the class: an earlier row walks from them
};

struct ClassPair {
    const char *name;
    Pairing objects = Pairing::registers; ///< what becomes of an object of the class
    const char *takenBy = nullptr;        ///< the earlier row, where there is one
    bool rowRegisters = true;             ///< the row by itself
    [[nodiscard]] std::string hostClass() const { return std::string(name) + "ZKT"; }
    /// The host class of the class's objects.
    [[nodiscard]] std::string hostClassOfObjects() const {
        return objects == Pairing::asEarlierRow ? std::string(takenBy) + "ZKT" : hostClass();
    }
    [[nodiscard]] bool objectsAreEntered() const {
        return objects == Pairing::registers || objects == Pairing::asEarlierRow;
    }
};

inline constexpr std::size_t pairCount = 104;
extern const std::array<ClassPair, pairCount> classPairs;
/// Those looked up once, when they are first needed.
extern const std::array<ClassPair, 5> lateClassPairs;

/// The class with this name; makes it, below its parents in AppKit, when the process has none.
Class classNamed(const std::string &name);
/// Makes every class of both lists that the process has not.
void makeAllClasses();
/// A new class without members of its own.
Class makeClass(const std::string &name, Class superclass);

/// An object of the class, as Foundation makes them where it has the class; autoreleased.
id objectOf(const ClassPair &pair);
