#include "MessageSpy.h"

#include "LoadedPlugin.h"

#include <gtest/gtest.h>

TEST(MessageSpy, IsAlone) {
    LoadedPlugin loaded;
    const MessageSpy first(loaded.image, {});
    EXPECT_THROW(MessageSpy(loaded.image, {}), std::logic_error);
}
