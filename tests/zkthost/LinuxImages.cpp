#include "Zkthost.h"

const ImageFile &linuxImage() {
    static const ImageFile image{
        .name = "linux", .format = "ELF", .path = LINUX_OBJECT, .executable = LINUX_OBJECT};
    return image;
}

std::vector<ImageFile> images() {
    return {macosImage(), linuxImage()};
}
