#pragma once

/// Calls the function. True if it threw an Objective-C object, which is dropped; C++ exceptions
/// pass. A C++ catch alone would not do: with GCC's runtime, an Objective-C object that it catches
/// while another exception is being handled ends the process.
bool throwsCocoaObject(void (*function)(const void *), const void *argument);
