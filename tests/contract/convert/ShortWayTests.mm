// The short way to an object's row: what was found for an object of the same class before, if that
// class came with a library. Without it, each row's class is looked up in turn.

#include "ClassLookupSpy.h"
#import "ClassPairs.h"
#include "DispatchScene.h"
#include "RowMessages.h"

#include <gtest/gtest.h>

#include <CoreFoundation/CoreFoundation.h>

#include <objc/runtime.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

namespace {

using Names = std::vector<std::string>;

/// The looked-up classes that rows have; the conversion asks for a few others behind the rows.
Names rowsOf(const ClassLookupSpy &spy) {
    constexpr std::string_view values[] = {"NSURL", "NSString", "NSData", "NSArray",
                                           "NSSet", "NSNumber", "NSDate", "NSDictionary"};
    Names names = spy.names();
    std::erase_if(names, [&](const std::string &name) {
        return std::ranges::find(values, name) == std::end(values) &&
               std::ranges::find(classPairs, name, &ClassPair::name) == classPairs.end();
    });
    return names;
}

struct ShortWay : testing::Test {
    DispatchScene scene;

    ShortWay() {
        scene.know("NSImageZKT");
        scene.know("NSObjectZKT");
        scene.convert([[[NSObject alloc] init] autorelease]);
    }
    /// Whether the conversion looks rows' classes up by name.
    bool asksRows(id object) {
        const ClassLookupSpy spy(scene.image);
        scene.convert(object);
        return !rowsOf(spy).empty();
    }
    bool asksRowsForNew(Class cls) { return asksRows([[[cls alloc] init] autorelease]); }
    std::string classOf(id object) { return scene.host.className(scene.convert(object)); }
};

/// What the plug-in knows of the classes that it met, as it lies in memory.
struct MetClass {
    Class cls;
    const void *row;
};

/// The parent stands behind the class's own class.
void changeParent(Class cls, Class parent) {
    reinterpret_cast<Class *>(cls)[1] = parent;
}

} // namespace

TEST_F(ShortWay, AsksForNoRowOnceAnObjectOfTheClassWasMet) {
    NSURL *const url = [NSURL URLWithString:@"http://a/"];
    NSError *const error = [NSError errorWithDomain:@"domain" code:1 userInfo:nil];
    // NOLINTNEXTLINE(cppcoreguidelines-init-variables)
    for (id value in @[
             @"text", [NSMutableString string], @1, [NSDate date], [NSData data], url, @[],
             [NSMutableDictionary dictionary], error, [[NSObject new] autorelease]
         ]) {
        SCOPED_TRACE(NSStringFromClass([value class]).UTF8String);
        scene.convert(value);
        EXPECT_EQ(asksRows(value), asksEveryRow());
    }
}

TEST_F(ShortWay, IsNotTakenToAClassThatAProgramMade) {
    const Class unlisted = makeClass("Unlisted", [NSObject class]);
    EXPECT_TRUE(asksRowsForNew(unlisted));
    EXPECT_TRUE(asksRowsForNew(unlisted));
}

// As if it had been disposed of, and another one made at its address.
TEST_F(ShortWay, IsNotTakenToAnotherClassAtTheSameAddress) {
    scene.know("NSShadowZKT");
    const Class reborn = makeClass("Reborn", classNamed("NSShadow"));
    const id object = [[[reborn alloc] init] autorelease];
    EXPECT_EQ(classOf(object), "NSShadowZKT");
    changeParent(reborn, classNamed("NSImage"));
    EXPECT_EQ(classOf([[[reborn alloc] init] autorelease]), "NSImageZKT");
}

TEST_F(ShortWay, IsFoundAgainByAClassWhosePlaceAnotherOneTook) {
    scene.know("NSErrorZKT");
    NSError *const error = [NSError errorWithDomain:@"domain" code:1 userInfo:nil];
    scene.convert(error);
    auto &places = *imageFunction<std::array<MetClass, 1024>>(scene.image,
                                                              "(anonymous namespace)::metClasses");
    const auto place = std::ranges::find(places, object_getClass(error), &MetClass::cls);
    ASSERT_EQ(place != places.end(), !asksEveryRow());
    if (asksEveryRow())
        return;
    *place = {[NSObject class], nullptr};
    EXPECT_EQ(classOf([NSError errorWithDomain:@"domain" code:2 userInfo:nil]), "NSErrorZKT");
    EXPECT_EQ(place->cls, object_getClass(error));
}
