// Objects that are not what their class says: proxies, roots of their own, class objects, observed
// objects. They answer for themselves, and their answers count.

#include "Caught.h"
#import "ClassPairs.h"
#include "DispatchScene.h"
#import "MethodFunctions.h"
#import "OwnObject.h"
#import "RootObject.h"
#include "UntypedObjects.h"

#include "host/classes/Inspect.h"

#include <gmock/gmock.h>

#include <objc/runtime.h>

using testing::ElementsAre;

/// Passes every message on.
@interface PassingProxy : NSProxy {
@public
    id target; // retained
}
+ (id)proxyFor:(id)target;
@end

@implementation PassingProxy

+ (id)proxyFor:(id)target {
    PassingProxy *const proxy = [self alloc];
    proxy->target = [target retain];
    return [proxy autorelease];
}

- (void)dealloc {
    [target release];
    [super dealloc];
}

- (NSMethodSignature *)methodSignatureForSelector:(SEL)selector {
    return [target methodSignatureForSelector:selector];
}

- (void)forwardInvocation:(NSInvocation *)invocation {
    [invocation invokeWithTarget:target];
}

@end

/// A proxy that is an image, whatever it stands for.
@interface ImageProxy : PassingProxy
@end

@implementation ImageProxy

- (BOOL)isKindOfClass:(Class)wanted {
    return wanted == objc_lookUpClass("NSImage");
}

@end

/// Passes nothing on.
@interface RefusingProxy : PassingProxy
@end

@implementation RefusingProxy

- (void)forwardInvocation:(NSInvocation *)invocation {
    [NSException raise:@"Refused" format:@"%@", NSStringFromSelector([invocation selector])];
}

@end

/// A root class that answers for itself.
@interface OtherRoot : RootObject {
@public
    Class kind;
}
@end

@implementation OtherRoot

- (BOOL)isKindOfClass:(Class)wanted {
    return wanted == kind;
}

- (Class)class {
    return object_getClass((id)self);
}

@end

/// Tells its superclass as its class, as objects do that were given a class of their own.
@interface DisguisedError : NSError
@end

@implementation DisguisedError

- (Class)class {
    return [NSError class];
}

@end

/// Not an index set, though its class is below.
@interface DenyingIndexSet : NSIndexSet
@end

@implementation DenyingIndexSet

- (BOOL)isKindOfClass:(Class)wanted {
    return wanted != [NSIndexSet class] && [super isKindOfClass:wanted];
}

@end

namespace {

struct UnusualObject : testing::Test {
    DispatchScene scene;
    host::Host &host = scene.host;

    std::string classOf(id object) { return host.className(scene.convert(object)); }
};

BOOL isAnImage(id, SEL, Class wanted) {
    return wanted == objc_lookUpClass("NSImage");
}

} // namespace

TEST_F(UnusualObject, AProxyOfAStringIsAString) {
    const id proxy = [PassingProxy proxyFor:@"text"];
    EXPECT_EQ(host::variant(scene.convert(proxy)).value.text(), "text");
}

TEST_F(UnusualObject, AProxyOfAnErrorIsAnErrorAndWrappedItself) {
    scene.know("NSErrorZKT");
    const id error = [NSError errorWithDomain:@"domain" code:1 userInfo:nil];
    const id proxy = [PassingProxy proxyFor:error];
    const host::ObjectRef made = scene.convert(proxy);
    EXPECT_EQ(host.className(made), "NSErrorZKT");
    EXPECT_EQ(scene.wrapped(made), (const void *)proxy);
    EXPECT_EQ(host::siblings::registered((const void *)proxy), made.handle());
    EXPECT_EQ(host::siblings::registered((const void *)error), nullptr);
    EXPECT_EQ([proxy retainCount], 2u);
}

TEST_F(UnusualObject, AProxyOfAnUnlistedObjectIsWalkedFromItsOwnClass) {
    const UntypedObjects untyped;
    scene.know("PassingProxyZKT");
    scene.know("NSProxyZKT");
    scene.know("NSObjectZKT");
    const id proxy = [PassingProxy proxyFor:[[[NSObject alloc] init] autorelease]];
    EXPECT_EQ(classOf(proxy), "PassingProxyZKT");
}

TEST_F(UnusualObject, AProxyOfAnUnlistedObjectEndsAtItsOwnRoot) {
    const UntypedObjects untyped;
    scene.know("NSObjectZKT");
    const id proxy = [PassingProxy proxyFor:[[[NSObject alloc] init] autorelease]];
    EXPECT_EQ(scene.convertRaw(proxy), nullptr);
    EXPECT_THAT(scene.requests(), ElementsAre(asks("PassingProxyZKT"), asks("NSProxyZKT")));
}

TEST_F(UnusualObject, AProxyOfAnUnlistedObjectHasItsType) {
    scene.know("PassingProxyZKT");
    scene.knowCoreFoundation("CFObjectZKT");
    const id proxy = [PassingProxy proxyFor:[[[NSObject alloc] init] autorelease]];
    const host::ObjectRef made = scene.convert(proxy);
    EXPECT_EQ(host.className(made), "CFObjectZKT");
    EXPECT_EQ(scene.wrapped(made), (const void *)proxy);
}

TEST_F(UnusualObject, AProxyThatAnswersItselfIsBelieved) {
    scene.know("NSImageZKT");
    classNamed("NSImage");
    EXPECT_EQ(classOf([ImageProxy proxyFor:@"text"]), "NSImageZKT");
}

TEST_F(UnusualObject, AProxyThatPassesNothingOnRaises) {
    const id proxy = [RefusingProxy proxyFor:@"text"];
    EXPECT_EQ(cocoaExceptionFrom([&] { scene.convertRaw(proxy); }), "Refused: isKindOfClass:");
}

TEST_F(UnusualObject, AnotherRootIsAskedAndWalked) {
    scene.know("OtherRootZKT");
    scene.know("NSErrorZKT");
    alignas(void *) unsigned char memory[64] = {};
    auto *const object =
        static_cast<OtherRoot *>(makeRootObject(memory, objc_lookUpClass("OtherRoot")));
    {
        const host::ObjectRef made = scene.convert((id)object);
        EXPECT_EQ(host.className(made), "OtherRootZKT");
        EXPECT_EQ(object->references, 1);
    }
    object->kind = [NSError class];
    {
        EXPECT_EQ(classOf((id)object), "NSErrorZKT");
    }
    EXPECT_EQ(object->references, 0);
}

TEST_F(UnusualObject, ADisguisedObjectIsWhatItsKindSays) {
    scene.know("NSErrorZKT");
    scene.know("DisguisedErrorZKT");
    const id object = [[[DisguisedError alloc] initWithDomain:@"domain" code:1
                                                     userInfo:nil] autorelease];
    const host::ObjectRef made = scene.convert(object);
    EXPECT_EQ(host.className(made), "NSErrorZKT");
    EXPECT_EQ(host::siblings::registered((const void *)object), made.handle());
}

TEST_F(UnusualObject, AnObservedObjectIsWhatItWas) {
    scene.know("NSUndoManagerZKT");
    scene.know("NSObjectZKT");
    const OwnObject<NSObject> observer;
    const OwnObject<NSUndoManager> object;
    EXPECT_EQ(classOf(object), "NSUndoManagerZKT");
    [object addObserver:observer forKeyPath:@"levelsOfUndo" options:0 context:nullptr];
    EXPECT_NE(object_getClass(object), [object class]);
    EXPECT_EQ(classOf(object), "NSUndoManagerZKT");
    [object removeObserver:observer forKeyPath:@"levelsOfUndo"];
    EXPECT_EQ(classOf(object), "NSUndoManagerZKT");
}

TEST_F(UnusualObject, ADenialCounts) {
    const UntypedObjects untyped;
    scene.know("DenyingIndexSetZKT");
    scene.know("NSIndexSetZKT");
    scene.know("NSObjectZKT");
    const OwnObject<DenyingIndexSet> object;
    {
        const host::ObjectRef made = scene.convert(object);
        EXPECT_EQ(host.className(made), "DenyingIndexSetZKT"); // by the last walk
    }
    host.hideClass("DenyingIndexSetZKT");
    EXPECT_EQ(classOf(object), "NSIndexSetZKT");
    EXPECT_EQ(scene.walkRaw(object, [NSIndexSet class]), nullptr);
    host.shutDown();
    EXPECT_THAT(host.violations(), testing::SizeIs(2));
}

TEST_F(UnusualObject, AClassObjectIsNoObjectOfItsClass) {
    const UntypedObjects untyped;
    scene.know("NSImageZKT");
    const Class image = classNamed("NSImage");
    const host::ObjectRef made = scene.convert((id)image);
    EXPECT_EQ(host.className(made), "NSImageZKT"); // by its name alone
    EXPECT_EQ(host::siblings::registryCount(), 0u);
}

TEST_F(UnusualObject, AClassObjectMayAnswerForItself) {
    scene.know("NSImageZKT");
    const Class image = classNamed("NSImage");
    const Class claiming = makeClass("ClaimingClass", [NSObject class]);
    class_addMethod(object_getClass((id)claiming), @selector(isKindOfClass:),
                    implementationOf(isAnImage), "c@:#");
    const host::ObjectRef made = scene.convert((id)claiming);
    EXPECT_EQ(host.className(made), "NSImageZKT");
    EXPECT_EQ(host::siblings::registered((const void *)claiming), made.handle());
    EXPECT_EQ(scene.convertRaw((id)makeClass("PlainClass", [NSObject class])), nullptr);
    EXPECT_NE(image, Nil);
}
