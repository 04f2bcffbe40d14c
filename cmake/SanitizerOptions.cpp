// Compiled into sanitized programs, whose runtime asks these names.
// NOLINTBEGIN(bugprone-reserved-identifier)

// What the platform allocates once and keeps: the Objective-C runtime its classes and selectors,
// Foundation its singletons, the dynamic linker its lists of libraries. Their frames cannot be
// walked, so nothing above them is hidden.
extern "C" const char *__lsan_default_suppressions();
extern "C" const char *__lsan_default_options();
extern "C" const char *__asan_default_options();

const char *__lsan_default_suppressions() {
    return "leak:libobjc.so\nleak:libgnustep-base.so\nleak:ld-linux-x86-64.so\n"
           "leak:ld-linux-aarch64.so\n";
}

const char *__lsan_default_options() {
    return "print_suppressions=0";
}

// To name functions starts a program of its own, at the end of every process that leaves something
// of the runtime's: half of a run's time. A report names the module and the offset;
// ASAN_OPTIONS=symbolize=1, which tests that are run by name have, names functions and lines.
const char *__asan_default_options() {
    return "symbolize=0";
}

// NOLINTEND(bugprone-reserved-identifier)
