// The short way to an object's row, by the messages that the object gets.

#include "DispatchScene.h"
#include "MessageSpy.h"

#include <gtest/gtest.h>

#include <CoreFoundation/CoreFoundation.h>

#include <objc/runtime.h>

#include <string>
#include <vector>

TEST(ShortWayByMessages, LeadsBooleansAndOtherObjectsOfTheirClassToTheirOwnRows) {
    DispatchScene scene;
    scene.know("NSImageZKT");
    scene.know("NSObjectZKT");
    scene.convert([[[NSObject alloc] init] autorelease]);
    const id boolean = (id)kCFBooleanTrue;
    const id number = NSAllocateObject(object_getClass(boolean), 0, nullptr);
    const auto messages = [&](id object) {
        const MessageSpy spy(scene.image, {});
        scene.convert(object);
        std::vector<std::string> sent = MessageSpy::sent();
        std::erase(sent, "isKindOfClass:");
        return sent;
    };
    for (const id first : {boolean, number, boolean, number})
        EXPECT_EQ(messages(first).empty(), first == boolean);
    [number release];
}
