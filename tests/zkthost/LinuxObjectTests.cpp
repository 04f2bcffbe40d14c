#include "Descriptions.h"
#include "Json.h"
#include "Zkthost.h"

#include <gtest/gtest.h>

TEST(DescribeOfTheLinuxObject, HasTheClassesOfTheBundle) {
    const auto described = [](const char *format, const ImageFile &image) {
        return zkthost({"describe", "--format", format}, image.path).out;
    };
    for (const char *format : {"text", "markdown"})
        EXPECT_EQ(classesOf(described(format, linuxImage())),
                  classesOf(described(format, macosImage())));
    EXPECT_EQ(member(parsedJson(described("json", linuxImage())), "classes"),
              member(parsedJson(described("json", macosImage())), "classes"));
}

TEST(DescribeOfTheLinuxObject, TellsItsFacts) {
    const auto json = parsedJson(zkthost({"describe", "--format", "json"}, linuxImage().path).out);
    const auto &image = member(json, "image");
    for (const char *ofBundles : {"identifier", "version", "build"})
        EXPECT_TRUE(member(image, ofBundles).is_null()) << ofBundles;
    const auto &part = arrayMember(image, "parts").front();
    EXPECT_EQ(stringMember(part, "kind"), "shared object");
    for (const char *ofMacs : {"leastMacOS", "builtForMacOS", "signature"})
        EXPECT_TRUE(member(part, ofMacs).is_null()) << ofMacs;
    EXPECT_TRUE(arrayMember(libraryOf(part, "libc.so.6"), "imports").empty());
    const auto &imports = arrayMember(part, "libraries").back();
    EXPECT_TRUE(member(imports, "name").is_null());
    EXPECT_EQ(weakness(imports, "CFRelease"), false);
    EXPECT_EQ(weakness(imports, "NSProcessInfoThermalStateDidChangeNotification"), true);
}
