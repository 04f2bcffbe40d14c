// Classes that are not what they seem to be by their name, their root or their methods.

#import "ClassPairs.h"
#include "DispatchScene.h"
#import "MethodFunctions.h"
#import "MethodSubstitute.h"
#import "RootObject.h"
#include "UntypedObjects.h"

#include "host/classes/Inspect.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <bit>
#include <objc/runtime.h>
#include <sys/mman.h>
#include <unistd.h>

using testing::ElementsAre;
using testing::StartsWith;

/// What it lacks it has from NSObject, see borrow().
@interface BorrowingRoot : RootObject
@end

@implementation BorrowingRoot
@end

namespace {

struct UnusualClass : testing::Test {
    const UntypedObjects untyped;
    DispatchScene scene;
    host::Host &host = scene.host;

    std::string classOfNew(Class cls) {
        return host.className(scene.convert([[[cls alloc] init] autorelease]));
    }
};

void borrow(Class cls, SEL selector) {
    const Method method = class_getInstanceMethod([NSObject class], selector);
    class_addMethod(cls, selector, method_getImplementation(method),
                    method_getTypeEncoding(method));
}

IMP methodOfNSObject(SEL selector) {
    return method_getImplementation(class_getInstanceMethod([NSObject class], selector));
}

void rename(Class cls, const char *name) {
    // The name stands behind the class's own class and its parent, in both halves of the class.
    reinterpret_cast<const char **>(cls)[2] = name;
    reinterpret_cast<const char **>(object_getClass((id)cls))[2] = name;
}

/// While it lives, a class object is of a class with this name, below the one that it was of.
class ExchangedMetaclass {
public:
    ExchangedMetaclass(Class cls, const char *name) : object_((id)cls) {
        const Class made = objc_allocateClassPair(cls, name, 0);
        objc_registerClassPair(made);
        object_setClass(object_, object_getClass((id)made));
    }
    ~ExchangedMetaclass() { object_setClass(object_, before_); }
    ExchangedMetaclass(const ExchangedMetaclass &) = delete;
    ExchangedMetaclass &operator=(const ExchangedMetaclass &) = delete;

private:
    id object_;
    Class before_ = object_getClass(object_);
};

/// A function in no library that runs on in another.
class GeneratedCode {
public:
    explicit GeneratedCode(IMP function) {
        const auto address = std::bit_cast<std::array<unsigned char, sizeof function>>(function);
        unsigned char *end = std::ranges::copy(loading, page_).out;
        end = std::ranges::copy(address, end).out;
        std::ranges::copy(jumping, end);
        __builtin___clear_cache(page_, page_ + pageSize_);
        mprotect(page_, pageSize_, PROT_READ | PROT_EXEC);
    }
    ~GeneratedCode() { munmap(page_, pageSize_); }
    GeneratedCode(const GeneratedCode &) = delete;
    GeneratedCode &operator=(const GeneratedCode &) = delete;

    [[nodiscard]] IMP function() const { return reinterpret_cast<IMP>(page_); }

private:
    // Between them stands the function's address.
#ifdef __x86_64__
    static constexpr std::array<unsigned char, 2> loading{0x48, 0xB8}; // movabs $function, %rax
    static constexpr std::array<unsigned char, 2> jumping{0xFF, 0xE0}; // jmp *%rax
#else
    static constexpr std::array<unsigned char, 8> loading{0x50, 0x00, 0x00, 0x58,  // ldr x16, .+8
                                                          0x00, 0x02, 0x1F, 0xD6}; // br x16
    static constexpr std::array<unsigned char, 0> jumping{};
#endif
    const std::size_t pageSize_ = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    unsigned char *const page_ = static_cast<unsigned char *>(
        mmap(nullptr, pageSize_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
};

struct MethodOfNoLibrary : testing::Test {
    /// Whether the plug-in takes the method of that variable for NSObject's own.
    static bool isTrusted(host::Image &image, const char *variable) {
        return *imageFunction<IMP>(image, std::string("(anonymous namespace)::") + variable) !=
               nullptr;
    }
    static void expectConversionsAsEver(DispatchScene &scene) {
        scene.know("NSImageZKT");
        scene.know("NSObjectZKT");
        const Class image = makeClass("UsersImage", classNamed("NSImage"));
        const id object = [[[image alloc] init] autorelease];
        const host::ObjectRef made = scene.convert(object);
        EXPECT_EQ(scene.host.className(made), "NSImageZKT");
        EXPECT_EQ(host::siblings::registered((const void *)object), made.handle());
    }
};

} // namespace

TEST_F(UnusualClass, WithAShortNameIsUnlisted) {
    constexpr auto madeNSObject = "PluginNewInstance(\"NSObjectZKT\") = NSObjectZKT#";
    scene.know("NSObjectZKT");
    for (const char *name : {"N", "NS", "NSx", "NSxy", "Nothing", "nsImage"}) {
        const Class made = makeClass(name, [NSObject class]);
        host.clearTrace();
        EXPECT_EQ(classOfNew(made), "NSObjectZKT");
        EXPECT_THAT(scene.requests(),
                    ElementsAre(asks(std::string(name) + "ZKT"), StartsWith(madeNSObject)));
    }
}

// As with two libraries that have a class of the same name each: the runtime knows the first.
TEST_F(UnusualClass, WithTheNameOfAnotherIsNotThatOther) {
    scene.know("NSShadowZKT");
    const Class first = classNamed("NSShadow");
    const Class second = makeClass("SecondShadow", [NSObject class]);
    rename(second, "NSShadow");
    ASSERT_STREQ(class_getName(second), "NSShadow");
    for (const Class each : {first, second}) {
        const id object = [[[each alloc] init] autorelease];
        const host::ObjectRef made = scene.convert(object);
        EXPECT_EQ(host.className(made), "NSShadowZKT");
        EXPECT_EQ(host::siblings::registered((const void *)object) != nullptr, each == first)
            << "the second is only walked, and found by its name";
    }
}

// As where somebody stubs the methods of a class itself.
TEST_F(UnusualClass, WhoseOwnClassIsExchangedHasItsRow) {
    scene.know("NSShadowZKT");
    scene.know("NSObjectZKT");
    const ExchangedMetaclass exchanged(classNamed("NSShadow"), "NSShadow-0x1-2");
    const id shadow = [[[classNamed("NSShadow") alloc] init] autorelease];
    const host::ObjectRef made = scene.convert(shadow);
    EXPECT_EQ(host.className(made), "NSShadowZKT");
    EXPECT_EQ(host::siblings::registered((const void *)shadow), made.handle());
}

TEST_F(UnusualClass, WhoseOwnClassIsExchangedIsStillTheDateOfItsSubclasses) {
    scene.know("NSObjectZKT");
    const ExchangedMetaclass exchanged([NSDate class], "Stub");
    const NSCalendarDate *const date = [NSCalendarDate dateWithTimeIntervalSinceReferenceDate:0];
    EXPECT_EQ(host.className(scene.convert(date)), "Date");
}

TEST_F(UnusualClass, WhoseOwnClassIsExchangedIsStillOfferedToTheHookForViews) {
    static host::ObjectHandle offered = nullptr;
    scene.know("NSViewZKT");
    scene.know("QTMovieViewZKT");
    offered = host.newInstance("QTMovieViewZKT").release();
    class_addMethod(
        object_getClass([NSValue class]), sel_registerName("NewQTKitNSViewZKT:"),
        implementationOf<host::ObjectHandle(id, SEL, id)>([](id, SEL, id) { return offered; }),
        "^v@:@");
    const ExchangedMetaclass exchanged(classNamed("NSView"), "NSView-0x1-2");
    EXPECT_EQ(classOfNew(classNamed("NSView")), "QTMovieViewZKT");
}

TEST_F(UnusualClass, OfARootThatAnswersAsNSObjectDoesIsWalkedToItsEnd) {
    scene.know("BorrowingRootZKT");
    const Class root = objc_lookUpClass("BorrowingRoot");
    borrow(root, @selector(isKindOfClass:));
    borrow(root, @selector(class));
    alignas(void *) std::array<unsigned char, 64> memory{};
    RootObject *const object = makeRootObject(memory.data(), root);
    {
        const host::ObjectRef made = scene.convert((id)object);
        EXPECT_EQ(host.className(made), "BorrowingRootZKT");
        EXPECT_EQ(object->references, 1);
    }
    EXPECT_EQ(object->references, 0);
    host.hideClass("BorrowingRootZKT");
    EXPECT_EQ(scene.convertRaw((id)object), nullptr);
}

TEST_F(MethodOfNoLibrary, IsNotTakenForNSObjectsIsKindOfClass) {
    const GeneratedCode code(methodOfNSObject(@selector(isKindOfClass:)));
    const MethodSubstitute replaced([NSObject class], @selector(isKindOfClass:),
                                    functionOf<BOOL(id, SEL, Class)>(code.function()));
    DispatchScene scene;
    expectConversionsAsEver(scene);
    EXPECT_FALSE(isTrusted(scene.image, "isKindOfClassOfNSObject"));
    EXPECT_TRUE(isTrusted(scene.image, "classOfNSObject"));
}

TEST_F(MethodOfNoLibrary, IsNotTakenForNSObjectsClass) {
    const GeneratedCode code(methodOfNSObject(@selector(class)));
    const MethodSubstitute replaced([NSObject class], @selector(class),
                                    functionOf<Class(id, SEL)>(code.function()));
    DispatchScene scene;
    expectConversionsAsEver(scene);
    EXPECT_FALSE(isTrusted(scene.image, "classOfNSObject"));
}
