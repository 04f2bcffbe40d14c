// Arrays when the host lacks a service, or something throws on the way.

#include "Caught.h"
#import "CollectionDoubles.h"
#import "OwnObject.h"
#import "ValueScene.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

NSArray *oneAndTwo() {
    return [NSArray arrayWithObjects:[NSNumber numberWithInt:1], [NSNumber numberWithInt:2], nil];
}

// Two insert procedures; each insertion is noted.
std::vector<std::string> insertions;
int requests;

template <char Name>
void insertWith(host::ObjectHandle array, std::int64_t index, host::ObjectHandle value) {
    const host::Host &host = host::Host::current();
    insertions.push_back(std::string{Name} + ' ' + host.name(array) + ' ' + std::to_string(index) +
                         ' ' + host.name(value));
}

void *anotherProcedureEachTime(host::ObjectHandle) {
    return reinterpret_cast<void *>(requests++ % 2 == 0 ? &insertWith<'a'> : &insertWith<'b'>);
}

void *procedureForTheSecondElement(host::ObjectHandle) {
    return requests++ == 1 ? reinterpret_cast<void *>(&insertWith<'b'>) : nullptr;
}

void throwingInsertion(host::ObjectHandle, std::int64_t, host::ObjectHandle) {
    throw std::runtime_error("inserting");
}
void *throwingProcedure(host::ObjectHandle) {
    return reinterpret_cast<void *>(&throwingInsertion);
}

} // namespace

TEST(ArrayWithout, AHostArrayIsNilAndAsksForNothing) {
    ValueScene scene;
    scene.host.services().answerNull("RuntimeArrayCreateSingleDimBoundedArray");
    const OwnObject<TracedArray> source;
    source->elements = numbers({1});
    EXPECT_EQ(scene.convertObject(source), nullptr);
    EXPECT_THAT(scene.host.calls(),
                ElementsAre("RuntimeArrayCreateSingleDimBoundedArray(4, -1) = nil"));
}

TEST(ArrayWithout, AProcedureForTheFirstElementKeepsTheIndexOfTheSecond) {
    ValueScene scene;
    insertions.clear();
    requests = 0;
    scene.host.services().replace("PluginObjectArrayInsertProc", procedureForTheSecondElement);
    const host::ObjectRef array = scene.convert(oneAndTwo());
    EXPECT_THAT(insertions, ElementsAre("b Array#1 1 Variant#3"));
}

TEST(ArrayInsertion, UsesTheProcedureThatTheHostNamesForEachElement) {
    ValueScene scene;
    insertions.clear();
    requests = 0;
    scene.host.services().replace("PluginObjectArrayInsertProc", anotherProcedureEachTime);
    const host::ObjectRef array =
        scene.convert([NSArray arrayWithObjects:[NSNumber numberWithInt:1], [NSNull null],
                                                [NSNumber numberWithInt:2], nil]);
    EXPECT_THAT(insertions,
                ElementsAre("a Array#1 0 Variant#2", "b Array#1 1 nil", "a Array#1 2 Variant#3"));
}

TEST(ArrayLeft, ByAnInsertionThatThrowsLeavesNothingBehind) {
    ValueScene scene;
    scene.host.services().replace("PluginObjectArrayInsertProc", throwingProcedure);
    EXPECT_EQ(standardExceptionFrom([&] { scene.convertObject(oneAndTwo()); }), "inserting");
    EXPECT_THAT(scene.host.liveObjects(), IsEmpty());
}
