// A test that dies, for the tests of the runner.

#include "host/GoogleTest.h"
#include "host/Host.h"
#include "tests/host/WrongPlugins.h"

#include <cstdio>

TEST(Crashing, InThePlugin) {
    host::Host host;
    host.loadPlugin(wrongPlugin("macos", "storedToNothing"));
    std::puts("printed before");
    host.call(host.newInstance("WrongZKT"), "act");
}
