// The runtime and Foundation keep classes, selectors and caches in tables that the leak checker
// does not see through. Where objects matter, the tests count them themselves.
extern "C" const char *__lsan_default_suppressions();

const char *__lsan_default_suppressions() {
    return "leak:libobjc.so\nleak:libgnustep-base.so\n";
}
