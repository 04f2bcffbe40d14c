#pragma once

// What systems do in ways of their own.

/// A file without a name, for reading and writing, that programs started from here do not inherit.
/// -1, and errno, when there is none to be had. The name shows up in lists of open files at most.
int anonymousFile(const char *name);

/// Kills this process when its parent ends, where the system can do that.
void endWithParent();
