#pragma once

#include "frame/ClassRecords.h"

/// The two classes as the host sees them: static data for the life of the library.
extern PluginClassRecord processInfoClass;     // NSProcessInfoZKT
extern PluginClassRecord processActivityClass; // NSProcessInfoActivityZKT
