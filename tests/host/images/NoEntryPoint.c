// Code that must never run: the file is no plug-in.

void abort(void);

__attribute__((constructor)) static void atLoad(void) {
    abort();
}
