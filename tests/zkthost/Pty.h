#pragma once

// forkpty, whose header has a name of its own on each system.

#ifdef __APPLE__
#include <util.h>
#else
#include <pty.h>
#endif
