#pragma once

// What systems do in ways of their own.

/// A file without a name, for reading and writing, that programs started from here do not inherit.
/// -1, and errno, when there is none to be had. The name shows up in lists of open files at most.
int anonymousFile(const char *name);

/// Kills this process when its parent ends, where the system can do that.
void endWithParent();

/// Ends the process with what belongs to its end but the program's destructors, where that can be:
/// to take down GoogleTest's tests, all of which each process has, costs more than many a test.
[[noreturn]] void endNow(int status);
