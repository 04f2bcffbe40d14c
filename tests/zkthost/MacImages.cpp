#include "Zkthost.h"

std::vector<ImageFile> images() {
    return {macosImage()};
}
