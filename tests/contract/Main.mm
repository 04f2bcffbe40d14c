#include "ImageUnderTest.h"
#include "RowMessages.h"

#include "host/Cocoa.h"

#include <gmock/gmock.h>
#include <iostream>
#include <stdexcept>
#include <string>
#include <unistd.h>

static std::filesystem::path image;

const std::filesystem::path &imageUnderTest() {
    return image;
}

void *imageFunction(host::Image &loaded, std::string_view name) {
    if (void *address = loaded.symbolDemangled(name))
        return address;
    throw std::runtime_error("the image has no function " + std::string(name));
}

int main(int argc, char **argv) {
    host::startFoundation(argc, argv, environ);
    const host::AutoreleasePool pool;
    testing::InitGoogleMock(&argc, argv);

    constexpr std::string_view option = "--image=";
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument.starts_with(option))
            image = argument.substr(option.size());
        else if (argument == "--ask-every-row")
            askEveryRow(true);
    }
    if (image.empty() && !GTEST_FLAG_GET(list_tests)) {
        std::cerr << "usage: " << argv[0]
                  << " --image=FILE [--ask-every-row] [GoogleTest options]\n";
        return 2;
    }
    return RUN_ALL_TESTS();
}
