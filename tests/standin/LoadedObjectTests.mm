// An object that knows only the SDK runs against GNUstep and the stand-in.

#import "Cocoa.h"

#include "standin/StandIn.h"

#include <dlfcn.h>

namespace {

using Main = long (*)(id);

class LoadedObject : public CocoaTest {
protected:
    static long run(id object) {
        static void *const image = dlopen(LOADED_OBJECT, RTLD_NOW | RTLD_LOCAL);
        if (image == nullptr) {
            ADD_FAILURE() << dlerror();
            return -2;
        }
        return reinterpret_cast<Main>(dlsym(image, "plugInMain"))(object);
    }

    static id rectOfWidth(double width) {
        return [NSValue valueWithRect:NSMakeRect(0, 0, width, 0)];
    }
};

TEST_F(LoadedObject, ReceivesStructuresAndDoubles) {
    EXPECT_EQ(run(rectOfWidth(1e18)),
              static_cast<long>([[[NSProcessInfo processInfo] arguments] count]));
}

TEST_F(LoadedObject, SendsWhatOnlyTheStandInAnswers) {
    standin::setThermalState(2);
    EXPECT_EQ(run(rectOfWidth(0)), 2);
}

TEST_F(LoadedObject, ReadsTheWeaklyImportedConstant) {
    standin::withdraw(standin::Feature::thermalState);
    EXPECT_EQ(run(rectOfWidth(0)), 46);
}

TEST_F(LoadedObject, CatchesFoundationsExceptionsAndLogsThem) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(run(@"no rectangle"), -1);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::ContainsRegex("A NSInvalidArgumentException: .*rectValue.*, Info: "));
}

} // namespace
