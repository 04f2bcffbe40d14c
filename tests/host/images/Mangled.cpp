// Functions to be found by their demangled names.

namespace family {
int overloaded(int) {
    return 1;
}
int overloaded(const char *) {
    return 2;
}
int single(const unsigned char *, long, unsigned) {
    return 3;
}
} // namespace family

extern "C" void REALPluginMain(void *(*)(const char *)) {}
