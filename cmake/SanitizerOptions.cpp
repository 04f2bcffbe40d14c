// What the Objective-C runtime allocates for its classes and selectors it never gives back.

extern "C" const char *__lsan_default_suppressions();

const char *__lsan_default_suppressions() {
    return "leak:libobjc.so\n";
}
