#include "host/zkthost/Surroundings.h"

#include <fcntl.h>
#include <unistd.h>

namespace zkthost {

void occupyStandardStreams() {
    for (int file = 0; file <= STDERR_FILENO; ++file)
        if (fcntl(file, F_GETFD) < 0)
            open("/dev/null", file == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

} // namespace zkthost
