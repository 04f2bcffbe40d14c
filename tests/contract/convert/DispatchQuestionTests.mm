// What an object that answers for itself is asked, in order. Nothing that makes the dispatch
// faster may show here.

#include "Caught.h"
#import "ClassPairs.h"
#include "DispatchScene.h"
#import "ShapedObject.h"

#include <gmock/gmock.h>

#include <objc/runtime.h>

#include <iterator>

using testing::ElementsAreArray;

namespace {

using Lines = std::vector<std::string>;

std::string question(const std::string &className) {
    return "[isKindOfClass:" + className + "]";
}

constexpr const char *foundationsFirst[] = {"NSURL", "NSString", "NSData", "NSArray",
                                            "NSSet", "NSNumber", "NSDate", "NSDictionary"};

bool exists(const ClassPair &pair) {
    return objc_lookUpClass(pair.name) != Nil;
}

// Every question up to and including the row's; those of classes that do not exist are left out.
Lines questionsUpTo(std::size_t row) {
    Lines lines;
    for (const char *const name : foundationsFirst)
        lines.push_back(question(name));
    for (std::size_t i = 0; i <= row; ++i)
        if (exists(classPairs.at(i)))
            lines.push_back(question(classPairs.at(i).name));
    return lines;
}

Lines allQuestions() {
    Lines lines = questionsUpTo(pairCount - 1);
    for (const ClassPair &pair : lateClassPairs)
        if (exists(pair))
            lines.push_back(question(pair.name));
    if (objc_lookUpClass("ZKTREALobjectWrapper") != Nil)
        lines.push_back(question("ZKTREALobjectWrapper"));
    lines.push_back(question("NSValue"));
    lines.emplace_back("[respondsToSelector:_cfTypeID]");
    return lines;
}

Lines operator+(Lines lines, const Lines &more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

struct DispatchQuestions : testing::Test {
    DispatchScene scene;
    host::Host &host = scene.host;

    const Lines walk = {"[class]", asks("ShapedObjectZKT"), asks("NSObjectZKT")};
};

} // namespace

TEST_F(DispatchQuestions, AreAskedInOrder) {
    makeAllClasses();
    classNamed("ZKTREALobjectWrapper");
    const Shaped object;
    EXPECT_EQ(scene.convertRaw(object), nullptr);
    EXPECT_THAT(host.calls(), ElementsAreArray(allQuestions() + walk));
    EXPECT_EQ(host.calls().size(), 8u + 104u + 5u + 2u + 1u + 3u);
}

TEST_F(DispatchQuestions, AreAskedAgainForEachConversion) {
    makeAllClasses();
    const Shaped object;
    scene.convertRaw(object);
    const Lines first = host.calls();
    host.clearTrace();
    scene.convertRaw(object);
    EXPECT_EQ(host.calls(), first);
}

TEST_F(DispatchQuestions, LeaveOutClassesThatDoNotExist) {
    const Shaped object;
    ASSERT_EQ(objc_lookUpClass("NSView"), Nil);
    EXPECT_EQ(scene.convertRaw(object), nullptr);
    EXPECT_THAT(host.calls(), ElementsAreArray(allQuestions() + walk));
    EXPECT_EQ(host.className(scene.convert(@"still converting")), "Variant");
}

TEST_F(DispatchQuestions, IncludeClassesThatCameLater) {
    const Shaped object;
    scene.convertRaw(object);
    for (const ClassPair &pair : classPairs)
        classNamed(pair.name);
    host.clearTrace();
    scene.convertRaw(object);
    EXPECT_THAT(host.calls(), ElementsAreArray(allQuestions() + walk));
}

TEST_F(DispatchQuestions, EndAtTheFirstYes) {
    for (std::size_t i = 0; i < std::size(foundationsFirst); ++i) {
        SCOPED_TRACE(foundationsFirst[i]);
        const Shaped object;
        object->onMessage = [&](std::string_view message) {
            if ("[" + std::string(message) + "]" == question(foundationsFirst[i]))
                [NSException raise:@"Enough" format:@"asked"];
        };
        host.clearTrace();
        EXPECT_EQ(cocoaExceptionFrom([&] { scene.convertRaw(object); }), "Enough: asked");
        Lines expected;
        for (std::size_t asked = 0; asked <= i; ++asked)
            expected.push_back(question(foundationsFirst[asked]));
        EXPECT_THAT(host.calls(), ElementsAreArray(expected));
    }
}

TEST_F(DispatchQuestions, EndAtTheFirstClassPairThatTakesTheObject) {
    makeAllClasses();
    for (std::size_t row = 0; row < pairCount; ++row) {
        const ClassPair &pair = classPairs.at(row);
        SCOPED_TRACE(pair.name);
        const Shaped object({pair.name});
        host.clearTrace();
        EXPECT_EQ(scene.convertRaw(object), nullptr);
        const Lines made = pair.rowRegisters ? Lines{asks(pair.hostClass())} : walk;
        EXPECT_THAT(host.calls(), ElementsAreArray(questionsUpTo(row) + made));
    }
}

// The row's class is what the walk must check: with an instance at hand it asks once more.
TEST_F(DispatchQuestions, AskForTheRowsClassOnceMoreInTheWalk) {
    makeAllClasses();
    scene.know("NSObjectZKT");
    for (std::size_t row = 0; row < pairCount; ++row) {
        const ClassPair &pair = classPairs.at(row);
        if (pair.rowRegisters)
            continue;
        SCOPED_TRACE(pair.name);
        const Shaped object({pair.name});
        host.clearTrace();
        const host::ObjectRef made = scene.convert(object);
        const Lines walked = {"[class]", asks("ShapedObjectZKT"),
                              "PluginNewInstance(\"NSObjectZKT\") = " + host.name(made),
                              question(pair.name), "[retain]"};
        EXPECT_THAT(host.calls(), ElementsAreArray(questionsUpTo(row) + walked));
    }
}

TEST_F(DispatchQuestions, LetAnEarlierRowWin) {
    makeAllClasses();
    for (std::size_t row = 0; row + 1 < pairCount; ++row) {
        const ClassPair &pair = classPairs.at(row);
        SCOPED_TRACE(pair.name);
        const Shaped object({pair.name, classPairs.at(row + 1).name});
        host.clearTrace();
        EXPECT_EQ(scene.convertRaw(object), nullptr);
        const Lines made = pair.rowRegisters ? Lines{asks(pair.hostClass())} : walk;
        EXPECT_THAT(host.calls(), ElementsAreArray(questionsUpTo(row) + made));
    }
}

TEST_F(DispatchQuestions, LetAnEarlierLateClassWin) {
    makeAllClasses();
    for (std::size_t row = 0; row < lateClassPairs.size(); ++row) {
        const ClassPair &pair = lateClassPairs.at(row);
        SCOPED_TRACE(pair.name);
        const Shaped object({pair.name});
        if (row + 1 < lateClassPairs.size())
            object->kinds.emplace(lateClassPairs.at(row + 1).name);
        Lines expected = questionsUpTo(pairCount - 1);
        for (std::size_t asked = 0; asked <= row; ++asked)
            expected.push_back(question(lateClassPairs.at(asked).name));
        expected.push_back(asks(pair.hostClass()));
        host.clearTrace();
        EXPECT_EQ(scene.convertRaw(object), nullptr);
        EXPECT_THAT(host.calls(), ElementsAreArray(expected));
    }
}

TEST_F(DispatchQuestions, AnExceptionInAnyOfThemPassesOut) {
    makeAllClasses();
    classNamed("ZKTREALobjectWrapper");
    for (const std::string &line : allQuestions()) {
        SCOPED_TRACE(line);
        const std::string message = line.substr(1, line.size() - 2);
        const Shaped object;
        object->onMessage = refusingTo(message);
        EXPECT_EQ(cocoaExceptionFrom([&] { scene.convertRaw(object); }), "Refused: " + message);
    }
}

TEST_F(DispatchQuestions, AnExceptionFromTheClassPassesOut) {
    const Shaped object;
    object->onMessage = refusingTo("class");
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.convertRaw(object); }), "Refused: class");
}

TEST_F(DispatchQuestions, AnExceptionFromTheRetainOfARowPassesOut) {
    scene.know("NSErrorZKT");
    const Shaped object({"NSError"});
    object->onMessage = refusingTo("retain");
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.convertRaw(object); }), "Refused: retain");
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}
