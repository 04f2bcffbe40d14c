// Imports that no system has.

extern void firstMissingImport(void);
extern int secondMissingImport;
__attribute__((weak)) extern int absentWeakImport;

void REALPluginMain(void *(*resolver)(const char *)) {
    if (resolver != 0 && &absentWeakImport != 0)
        firstMissingImport();
    secondMissingImport = 1;
}
