// A plug-in that registers nothing, with the kinds of symbols that a test may ask for.

__attribute__((weak)) extern int hostTestWeak;
extern int hostTestStrong(void);

static int calls;

__attribute__((used)) static int localFunction(void) {
    return 42;
}

__attribute__((visibility("hidden"))) int *weakAddress(void) {
    return &hostTestWeak;
}

__attribute__((visibility("hidden"))) int callStrong(void) {
    return hostTestStrong();
}

__attribute__((visibility("hidden"))) int callCount(void) {
    return calls;
}

void REALPluginMain(void *(*resolver)(const char *)) {
    ++calls;
    resolver("REALLockObject");
}
