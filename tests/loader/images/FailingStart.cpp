// Cannot be initialised.
#include <stdexcept>

__attribute__((constructor)) static void fail() {
    throw std::runtime_error("no such luck");
}
