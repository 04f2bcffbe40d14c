// The short way to an object's row: which classes a conversion looks up by name once the first one
// has found Foundation's. Without it, each row's class is looked up in turn.

#include "ClassLookupSpy.h"
#import "ClassPairs.h"
#include "DispatchScene.h"
#include "RowMessages.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <string_view>

using testing::Contains;
using testing::ElementsAreArray;

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
    void expectLookUps(id object, const Names &names) {
        const ClassLookupSpy spy(scene.image);
        scene.convert(object);
        if (asksEveryRow())
            EXPECT_THAT(rowsOf(spy), Contains("NSURL")) << "the first row's";
        else
            EXPECT_THAT(rowsOf(spy), ElementsAreArray(names));
    }
    void expectLookUpsOfNew(Class cls, const Names &names) {
        expectLookUps([[[cls alloc] init] autorelease], names);
    }
};

} // namespace

TEST_F(ShortWay, ToAValueAsksForNoClass) {
    NSURL *const url = [NSURL URLWithString:@"http://a/"];
    // NOLINTNEXTLINE(cppcoreguidelines-init-variables)
    for (id value in @[
             @"text", [NSMutableString string], @1, [NSDate date], [NSData data], url, @[],
             [NSMutableDictionary dictionary]
         ])
        expectLookUps(value, {});
}

TEST_F(ShortWay, PastAllRowsAsksForNoClass) {
    expectLookUpsOfNew([NSObject class], {});
    expectLookUpsOfNew(makeClass("Unlisted", [NSObject class]), {});
    expectLookUpsOfNew(makeClass("NSUnlisted", [NSObject class]), {});
}

TEST_F(ShortWay, ToAnyOtherRowAsksForItsClass) {
    const Class image = classNamed("NSImage");
    expectLookUpsOfNew(image, {"NSImage"});
    expectLookUpsOfNew(makeClass("UsersImage", image), {"NSImage"});
}
