#pragma once

#include "frame/HostTypes.h"

#include <Foundation/Foundation.h>

#include <vector>

// What conversions cost at the least: plain functions that send the same messages and call the same
// platform functions and host services in the same order, for objects whose kind is known before.
// They catch nothing and give nothing back should something fail; classes and host methods are
// looked up once. Host services are called through the plug-in's own wrappers, by hostResolver.

struct PlainConversion {
    const char *what;
    id object; // lives as long as the program
    REALobjectStruct *(*convert)(id object);
};

/// An object of each kind, with the plain function for it.
std::vector<PlainConversion> plainConversions();

/// The getter of "environment".
REALobjectStruct *plainEnvironment(REALobjectStruct *instance);

/// A dictionary of so many strings, as environments are.
NSDictionary *variables(int count);
