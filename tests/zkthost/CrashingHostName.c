// Put before the C library: whoever asks for the host's name crashes.

#include <stddef.h>

int gethostname(char *name, size_t size);

int gethostname(char *name, size_t size) {
    (void)name;
    *(volatile size_t *)8 = size;
    return 0;
}
