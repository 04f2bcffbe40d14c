// The order of the tests: for each two neighbours an object that both take, and the one that wins.

#import "AlsoKindOf.h"
#import "ClassPairs.h"
#include "CoreFoundationSpy.h"
#include "DispatchScene.h"
#import "MethodFunctions.h"
#import "ShapedObject.h"

#include "host/classes/Inspect.h"

#include <CoreText/CoreText.h>
#include <gmock/gmock.h>

#include <objc/runtime.h>

using testing::ElementsAre;
using testing::IsEmpty;

/// A value of no known structure that also packs a host object.
@interface BoxedValue : NSValue {
@public
    host::ObjectHandle content;
}
@end

@implementation BoxedValue

- (const char *)objCType {
    return "{NoSuchStructure=i}";
}

- (void *)unwrap {
    return content;
}

@end

/// A value of no known structure that also tells a Core Foundation type.
@interface TypedValue : NSValue {
@public
    int typesAsked;
}
@end

@implementation TypedValue

- (const char *)objCType {
    return "{NoSuchStructure=i}";
}

- (CFTypeID)_cfTypeID {
    ++typesAsked;
    return CTRunGetTypeID();
}

@end

namespace {

struct DispatchOrder : testing::Test {
    DispatchScene scene;
    host::Host &host = scene.host;

    std::string classOf(id object) { return host.className(scene.convert(object)); }
};

// Gives Core Foundation's booleans a method, for good.
template <class Function>
void addToBooleans(SEL selector, Function *function, const char *types) {
    class_addMethod(object_getClass((id)kCFBooleanTrue), selector, implementationOf(function),
                    types);
}

int objectsAsked = 0;

BOOL isASet(id, SEL, Class wanted) {
    return wanted == [NSSet class];
}

id countedObjects(id, SEL) {
    ++objectsAsked;
    return [NSArray array];
}

int codesAsked = 0;

const char *integerCode(id, SEL) {
    ++codesAsked;
    return "i";
}

} // namespace

TEST_F(DispatchOrder, NilStandsBeforeTheRegistry) {
    const host::ObjectRef stored = host.newInstance(processInfoClass);
    const RegistryEntry entry(nullptr, stored.handle());
    host.clearTrace();
    const CoreFoundationSpy spy(scene.image);
    EXPECT_EQ(scene.convertRaw(nil), nullptr);
    EXPECT_THAT(spy.calls(), IsEmpty());
    EXPECT_THAT(host.trace(), IsEmpty());
}

TEST_F(DispatchOrder, TheNullSingletonStandsBeforeTheRegistry) {
    const host::ObjectRef stored = host.newInstance(processInfoClass);
    const RegistryEntry entry([NSNull null], stored.handle());
    host.clearTrace();
    const CoreFoundationSpy spy(scene.image);
    EXPECT_EQ(scene.convertRaw((id)[NSNull null]), nullptr);
    EXPECT_THAT(spy.calls(), IsEmpty());
    EXPECT_THAT(host.trace(), IsEmpty());
}

TEST_F(DispatchOrder, OnlyTheNullSingletonIsNull) {
    scene.know("NSNullZKT");
    scene.knowCoreFoundation("CFObjectZKT");
    const id another = [NSAllocateObject([NSNull class], 0, nullptr) autorelease];
    EXPECT_EQ(classOf(another), "CFObjectZKT");
}

TEST_F(DispatchOrder, TheRegistryStandsBeforeEveryKind) {
    scene.know("NSErrorZKT");
    const id objects[] = {
        [NSURL URLWithString:@"http://example.com/"],
        [NSMutableString string],
        [NSMutableData data],
        [NSMutableArray array],
        [NSMutableSet set],
        (id)kCFBooleanTrue,
        [NSNumber numberWithDouble:0.5],
        [NSDate date],
        [NSMutableDictionary dictionary],
        [NSError errorWithDomain:@"domain" code:1 userInfo:nil],
        [NSValue valueWithRange:NSMakeRange(1, 2)],
        [[[NSObject alloc] init] autorelease],
    };
    for (const id object : objects) {
        SCOPED_TRACE(object_getClassName(object));
        const host::ObjectRef stored = host.newInstance(processInfoClass);
        const RegistryEntry entry(object, stored.handle());
        host.clearTrace();
        const host::ObjectRef converted = scene.convert(object);
        EXPECT_EQ(converted.handle(), stored.handle());
        EXPECT_THAT(host.calls(), ElementsAre("REALLockObject(" + host.name(stored) + ")"));
        EXPECT_EQ(host.references(stored), 2);
    }
}

TEST_F(DispatchOrder, AnURLStandsBeforeAString) {
    const id url = alsoKindOf([NSURL URLWithString:@"http://example.com/page"], [NSString class]);
    EXPECT_EQ(host::variant(scene.convert(url)).value.text(), "http://example.com/page");
}

TEST_F(DispatchOrder, AStringStandsBeforeData) {
    const id text = alsoKindOf([NSMutableString stringWithString:@"text"], [NSData class]);
    EXPECT_EQ(host::variant(scene.convert(text)).value.text(), "text");
}

TEST_F(DispatchOrder, DataStandBeforeAnArray) {
    const id data = alsoKindOf([NSMutableData dataWithBytes:"abc" length:3], [NSArray class]);
    EXPECT_EQ(host::memoryBlockBytes(scene.convert(data)), "abc");
}

TEST_F(DispatchOrder, AnArrayStandsBeforeASet) {
    const id array = alsoKindOf([NSMutableArray arrayWithObject:@"element"], [NSSet class]);
    const host::ObjectRef converted = scene.convert(array);
    ASSERT_EQ(host::arrayCount(converted), 1u);
    EXPECT_EQ(host::arrayElements(converted).front().text(), "element");
}

TEST_F(DispatchOrder, ASetStandsBeforeTheBooleans) {
    addToBooleans(@selector(isKindOfClass:), isASet, "c@:#");
    addToBooleans(@selector(allObjects), countedObjects, "@@:");
    for (const id boolean : {(id)kCFBooleanTrue, (id)kCFBooleanFalse}) {
        objectsAsked = 0;
        const host::ObjectRef converted = scene.convert(boolean);
        EXPECT_EQ(host::arrayCount(converted), 0u);
        EXPECT_EQ(objectsAsked, 1);
    }
}

TEST_F(DispatchOrder, TheBooleansStandBeforeNumbers) {
    method_setImplementation(
        class_getInstanceMethod(object_getClass((id)kCFBooleanTrue), @selector(objCType)),
        implementationOf(integerCode));
    const host::ObjectRef yes = scene.convert((id)kCFBooleanTrue);
    const host::ObjectRef no = scene.convert((id)kCFBooleanFalse);
    EXPECT_THAT(host.calls(), ElementsAre("BooleanToVariant(true) = Variant#1",
                                          "BooleanToVariant(false) = Variant#2"));
    EXPECT_EQ(codesAsked, 0);
}

TEST_F(DispatchOrder, ANumberStandsBeforeADate) {
    const id number = alsoKindOf([NSNumber numberWithInt:123456], [NSDate class]);
    const host::ObjectRef converted = scene.convert(number);
    EXPECT_THAT(host.calls(), ElementsAre("IntegerToVariant(123456) = Variant#1"));
}

TEST_F(DispatchOrder, ADateStandsBeforeADictionary) {
    const id date = alsoKindOf([NSCalendarDate date], [NSDictionary class]);
    EXPECT_EQ(classOf(date), "Date");
}

TEST_F(DispatchOrder, ADictionaryStandsBeforeTheFirstClassPair) {
    scene.know("NSPathComponentCellZKT");
    const id dictionary =
        alsoKindOf([NSMutableDictionary dictionary], classNamed("NSPathComponentCell"));
    EXPECT_EQ(classOf(dictionary), "Dictionary");
}

TEST_F(DispatchOrder, TheLastClassPairStandsBeforeTheLateClasses) {
    scene.know("NSExpressionZKT");
    scene.know("NSUserNotificationZKT");
    makeAllClasses();
    const Shaped object({"NSExpression", "NSUserNotification"});
    EXPECT_EQ(classOf(object), "NSExpressionZKT");
}

TEST_F(DispatchOrder, TheLastLateClassStandsBeforeBoxedObjects) {
    scene.know("QCCompositionRepositoryZKT");
    makeAllClasses();
    classNamed("ZKTREALobjectWrapper");
    const Shaped object({"QCCompositionRepository", "ZKTREALobjectWrapper"});
    EXPECT_EQ(classOf(object), "QCCompositionRepositoryZKT");
}

TEST_F(DispatchOrder, ABoxedObjectStandsBeforeAValue) {
    const host::ObjectRef content = host.newInstance(processInfoClass);
    const OwnObject<BoxedValue> boxed;
    boxed->content = content.handle();
    EXPECT_EQ(scene.convertRaw(boxed), nullptr);
    alsoKindOf(boxed, classNamed("ZKTREALobjectWrapper"));
    EXPECT_EQ(scene.convertRaw(boxed), content.handle());
}

TEST_F(DispatchOrder, AValueStandsBeforeACoreFoundationObject) {
    scene.know("NSValueZKT");
    scene.know("TypedValueZKT");
    scene.knowCoreFoundation("CTRunZKT");
    const OwnObject<TypedValue> value;
    EXPECT_EQ(scene.convertRaw(value), nullptr);
    EXPECT_EQ(value->typesAsked, 0);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(DispatchOrder, ACoreFoundationObjectStandsBeforeTheClassNameWalk) {
    scene.know("ShapedObjectZKT");
    scene.knowCoreFoundation("CTRunZKT");
    const Typed object({CTRunGetTypeID()});
    EXPECT_EQ(classOf(object), "CTRunZKT");
}

TEST_F(DispatchOrder, AValueOfUnknownStructureIsNilWhateverItsClassChain) {
    scene.know("NSValueZKT");
    scene.know("NSObjectZKT");
    const char bytes[] = "12345678";
    NSValue *const value = [NSValue valueWithBytes:bytes objCType:"{NoSuchStructure=ii}"];
    EXPECT_EQ(scene.convertRaw((id)value), nullptr);
    EXPECT_THAT(host.trace(), IsEmpty());
}
