// Generated class trees: the conversion finds the same row as asking each object for each row's
// class in order, which is what defines it.

#import "ClassPairs.h"
#include "DispatchScene.h"
#import "MethodFunctions.h"
#include "UntypedObjects.h"

#include <gtest/gtest.h>

#include <objc/runtime.h>

#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

// How the objects of a class answer isKindOfClass:, where it is not as NSObject does.
struct Manners {
    Class claimed = Nil;
    Class denied = Nil;
};
std::map<Class, Manners> mannersOf;

bool isBelow(Class cls, Class ancestor) {
    for (; cls != Nil; cls = class_getSuperclass(cls))
        if (cls == ancestor)
            return true;
    return false;
}

BOOL answerIsKindOfClass(id self, SEL, Class wanted) {
    Class each = object_getClass(self);
    while (!mannersOf.contains(each))
        each = class_getSuperclass(each);
    const Manners &manners = mannersOf.at(each);
    return wanted != manners.denied &&
           (wanted == manners.claimed || isBelow(object_getClass(self), wanted));
}

Class answerSuperclass(id self, SEL) {
    return class_getSuperclass(object_getClass(self));
}

class Trees : public testing::TestWithParam<unsigned> {
protected:
    Trees() {
        for (const ClassPair &pair : classPairs)
            know(pair.hostClass());
        know("NSObjectZKT");
    }

    void know(const std::string &hostClass) {
        scene.know(hostClass);
        known.insert(hostClass);
    }

    std::size_t below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    }
    bool oneIn(std::size_t chances) { return below(chances) == 0; }

    // Some row's class, which now and then is loaded at this moment.
    Class anyRowClass() {
        for (;;) {
            const char *const name = classPairs.at(below(pairCount)).name;
            if (const Class loaded = oneIn(10) ? classNamed(name) : objc_lookUpClass(name))
                return loaded;
        }
    }

    Class newClass(std::size_t number) {
        const Class parent = classes.empty() || oneIn(3) ? anyRowClass()
                             : oneIn(6)                  ? [NSObject class]
                                                         : classes[below(classes.size())];
        const std::string name =
            "Tree" + std::to_string(GetParam()) + "Class" + std::to_string(number);
        const Class made = makeClass(name, parent);
        if (oneIn(5)) {
            mannersOf[made] = {.claimed = oneIn(2) ? anyRowClass() : Nil,
                               .denied = oneIn(2) ? anyRowClass() : Nil};
            class_addMethod(made, @selector(isKindOfClass:), implementationOf(answerIsKindOfClass),
                            "c@:#");
        }
        if (oneIn(12))
            class_addMethod(made, @selector(class), implementationOf(answerSuperclass), "#@:");
        if (oneIn(8))
            know(name + "ZKT");
        classes.push_back(made);
        return made;
    }

    struct Expected {
        std::string hostClass;
        bool entered = false;
    };

    // By messages alone.
    [[nodiscard]] Expected expectedFor(id object) const {
        for (const ClassPair &pair : classPairs) {
            const Class loaded = objc_lookUpClass(pair.name);
            if (loaded != Nil && [object isKindOfClass:loaded])
                return pair.rowRegisters ? Expected{pair.hostClass(), true}
                                         : Expected{walked(object)};
        }
        return {walked(object)};
    }
    [[nodiscard]] std::string walked(id object) const {
        for (Class each = [object class]; each != Nil; each = class_getSuperclass(each))
            if (const std::string name = std::string(class_getName(each)) + "ZKT";
                known.contains(name))
                return name;
        return "";
    }

    const UntypedObjects untyped;
    DispatchScene scene;
    std::mt19937 random{GetParam()};
    std::set<std::string> known;
    std::vector<Class> classes;
};

} // namespace

TEST_P(Trees, AreConvertedByTheFirstRowThatTakesTheObject) {
    std::map<std::string, int> met;
    for (std::size_t i = 0; i < 400; ++i) {
        newClass(i);
        const Class cls = classes[below(classes.size())];
        SCOPED_TRACE(class_getName(cls));
        // Without init and dealloc: nothing is done with these objects.
        const id object = NSAllocateObject(cls, 0, nullptr);
        {
            const Expected expected = expectedFor(object);
            const host::ObjectRef made = scene.convert(object);
            EXPECT_EQ(scene.host.className(made), expected.hostClass);
            EXPECT_EQ(host::siblings::registered((const void *)object) != nullptr,
                      expected.entered);
            ++met[expected.hostClass];
        }
        NSDeallocateObject(object);
    }
    EXPECT_GT(met.size(), 30u) << "too few rows were met to prove anything";
}

INSTANTIATE_TEST_SUITE_P(Seeds, Trees, testing::Values(1u, 2u, 3u, 4u));
