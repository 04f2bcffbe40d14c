#include "host/classes/Inspect.h"
#include "host/core/Core.h"
#include "host/memory/Heap.h"
#include "tests/host/FakePlugin.h"

#include <cmath>
#include <cstring>
#include <stdexcept>

namespace {

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::ThrowsMessage;

// The plug-in's functions, one for every shape that a declaration can have.

bool negate(ObjectHandle, bool value) {
    return !value;
}
/// Answers a whole register of which only the low byte is the Boolean.
std::uint64_t wideFalse(ObjectHandle) {
    return 0xFFFFFFFFFFFFFF00;
}
std::uint64_t wideTrue(ObjectHandle) {
    return 0x80;
}
std::uint8_t byteSeen = 0;
void seeByte(ObjectHandle, std::uint8_t value) {
    byteSeen = value;
}
/// Takes the whole register that a smaller argument was put into.
std::uint32_t registerSeen = 0;
void seeRegister(ObjectHandle, std::uint32_t value) {
    registerSeen = value;
}
std::int64_t addOne(ObjectHandle, std::int64_t value) {
    return value + 1;
}
std::int32_t half32(ObjectHandle, std::int32_t value) {
    return value / 2;
}
std::uint32_t same32(ObjectHandle, std::uint32_t value) {
    return value;
}
std::uint64_t same64(ObjectHandle, std::uint64_t value) {
    return value;
}
double halve(ObjectHandle, double value) {
    return value / 2;
}
float halveSingle(ObjectHandle, float value) {
    return value / 2;
}
void *samePointer(ObjectHandle, void *value) {
    return value;
}
StringHandle sameString(ObjectHandle, StringHandle value) {
    if (value != nullptr)
        lockString(value);
    return value;
}
ObjectHandle sameObject(ObjectHandle, ObjectHandle value) {
    if (value != nullptr)
        lockObject(value);
    return value;
}
/// Arguments of both register classes and on the stack.
double many(ObjectHandle, std::int64_t a, double b, std::int32_t c, float d, bool e, std::int64_t f,
            std::int64_t g, std::int64_t h, double i) {
    return static_cast<double>(a) + 10 * b + 100 * c + 1000 * static_cast<double>(d) +
           (e ? 10000 : 0) + 1e5 * static_cast<double>(f) + 1e6 * static_cast<double>(g) +
           1e7 * static_cast<double>(h) + 1e8 * i;
}
/// More integers than any processor here has registers for.
std::int64_t last(ObjectHandle, std::int64_t a, std::int64_t b, std::int64_t c, std::int64_t d,
                  std::int64_t e, std::int64_t f, std::int64_t g, std::int64_t h, std::int64_t i,
                  std::int64_t j) {
    return a + b + c + d + e + f + g + 10 * h + 100 * i + 1000 * j;
}
std::int64_t sharedSum(std::int64_t a, std::int64_t b) {
    return a + b;
}
ObjectHandle unlockedResult(ObjectHandle, ObjectHandle value) {
    return value; // one reference short
}
ObjectHandle wildResult(ObjectHandle) {
    static int wild = 0;
    return reinterpret_cast<ObjectHandle>(&wild);
}
ObjectHandle wrongClass(ObjectHandle) {
    return pluginNewInstance("MemoryBlock");
}
ObjectHandle rightClass(ObjectHandle) {
    return pluginNewInstance("Date");
}
ObjectHandle stringArray(ObjectHandle) {
    return service<ObjectHandle(std::int32_t, std::int32_t)>(
        "RuntimeArrayCreateSingleDimBoundedArray")(stringElements, 0);
}
void raiseInside(ObjectHandle) {
    const ObjectHandle exception = pluginNewInstance("NilObjectException");
    raiseException(exception);
    unlockObject(exception);
}
void throwRangeError(ObjectHandle) {
    throw std::range_error("out of the plug-in");
}
void throwInteger(ObjectHandle) {
    throw 42;
}
std::int64_t getParameter(ObjectHandle, std::int64_t parameter) {
    return parameter;
}
std::int64_t stored = 0;
void setStored(ObjectHandle, std::int64_t parameter, std::int64_t value) {
    stored = parameter * 1000 + value;
}
StringHandle getText(ObjectHandle, std::int64_t) {
    return buildString("text");
}

struct Invoker : testing::Test {
    Invoker() {
        type.methods = {
            method("negate(v as Boolean) as Boolean", pointer(negate)),
            method("wideFalse as Boolean", pointer(wideFalse)),
            method("wideTrue as Boolean", pointer(wideTrue)),
            method("seeByte(v as Boolean)", pointer(seeByte)),
            method("seeRegister(v as Boolean)", pointer(seeRegister)),
            method("addOne(v as Integer) as Integer", pointer(addOne)),
            method("half32(v as Int32) as Int32", pointer(half32)),
            method("same32(v as UInt32) as UInt32", pointer(same32)),
            method("same64(v as UInt64) as UInt64", pointer(same64)),
            method("halve(v as Double) as Double", pointer(halve)),
            method("halveSingle(v as Single) as Single", pointer(halveSingle)),
            method("samePointer(v as Ptr) as Ptr", pointer(samePointer)),
            method("sameString(v as String) as String", pointer(sameString)),
            method("sameDate(v as Date) as Date", pointer(sameObject)),
            method("sameVariant(v as Variant) as Variant", pointer(sameObject)),
            method("sameStrings(v as String()) as String()", pointer(sameObject)),
            method("many(a as Integer, b as Double, c as Int32, d as Single, e as Boolean, f as "
                   "Integer, g as Integer, h as Integer, i as Double) as Double",
                   pointer(many)),
            method(
                "last(a as Integer, b as Integer, c as Integer, d as Integer, e as Integer, f as "
                "Integer, g as Integer, h as Integer, i as Integer, j as Integer) as Integer",
                pointer(last)),
            method("defaults(v as Integer = 41) as Integer", pointer(addOne)),
            method("unlockedResult(v as Date) as Date", pointer(unlockedResult)),
            method("wildResult as Date", pointer(wildResult)),
            method("wrongClass as Date", pointer(wrongClass)),
            method("rightClass as Date", pointer(rightClass)),
            method("strings as String()", pointer(stringArray)),
            method("notAString as String", pointer(rightClass)),
            method("notAnArray as String()", pointer(rightClass)),
            method("raiseInside", pointer(raiseInside)),
            method("throwRangeError", pointer(throwRangeError)),
            method("throwInteger", pointer(throwInteger)),
        };
        type.properties = {
            property("answer", "Integer", pointer(getParameter), pointer(setStored), 7),
            property("text", "String", pointer(getText)),
            field("Handle", "Integer", 0),
            field("Reason", "String", 8),
            field("Flag", "Boolean", 16),
            field("Small", "Int32", 20),
            field("Ratio", "Double", 24),
            field("Partner", "Date", 32),
        };
        type.sharedMethods = {
            method("sum(a as Integer, b as Integer) as Integer", pointer(sharedSum))};
        type.constants = {constantRow("Answer2 = &h2A")};
        type.registerClass();
        object = host.newInstance("CalledZKT");
        host.clearTrace();
    }

    Value call(std::string_view name, const Values &arguments = {}) {
        return host.call(object, name, arguments).result();
    }
    void refuse(std::string_view name, const Value &argument, const std::string &message) {
        EXPECT_THAT([&] { host.call(object, name, {argument}); },
                    ThrowsMessage<UsageError>(message))
            << name;
    }

    FakeClass type{"CalledZKT", 48};
    Host host;
    ObjectRef object;
};

TEST_F(Invoker, Booleans) {
    EXPECT_TRUE(call("negate", {false}).boolean());
    EXPECT_FALSE(call("negate", {true}).boolean());
}

TEST_F(Invoker, OnlyTheLowByteOfABooleanResultCounts) {
    EXPECT_FALSE(call("wideFalse").boolean());
    EXPECT_TRUE(call("wideTrue").boolean());
}

TEST_F(Invoker, BooleanArgumentsMayBeAnyByte) {
    call("seeByte", {0x80});
    EXPECT_EQ(byteSeen, 0x80);
    call("seeByte", {true});
    EXPECT_EQ(byteSeen, 1);
    refuse("seeByte", 256, "256 is no value for Boolean");
}

// As compilers for macOS expect it of the caller, on arm64 too.
TEST_F(Invoker, BooleanArgumentsAreWidened) {
    for (const int byte : {0, 1, 0x7F, 0x80, 0xFF}) {
        call("seeRegister", {byte});
        EXPECT_EQ(registerSeen, static_cast<std::uint32_t>(byte));
    }
}

TEST_F(Invoker, IntegersAtTheirLimits) {
    EXPECT_EQ(call("addOne", {INT64_MIN}).integer(), INT64_MIN + 1);
    EXPECT_EQ(call("addOne", {-1}).integer(), 0);
    EXPECT_EQ(call("half32", {std::int64_t{INT32_MIN}}).integer(), INT32_MIN / 2);
    EXPECT_EQ(call("same32", {std::uint64_t{UINT32_MAX}}).unsignedInteger(), UINT32_MAX);
    EXPECT_EQ(call("same64", {UINT64_MAX}).unsignedInteger(), UINT64_MAX);
    refuse("half32", std::int64_t{INT32_MAX} + 1, "2147483648 is no value for Int32");
    refuse("same32", -1, "-1 is no value for UInt32");
    refuse("same64", -1, "-1 is no value for UInt64");
    refuse("addOne", UINT64_MAX, "18446744073709551615 is no value for Integer");
    refuse("addOne", 1.5, "1.5 is no value for Integer");
    refuse("addOne", Value{}, "nil is no value for Integer");
    refuse("addOne", "1", "\"1\" is no value for Integer");
}

TEST_F(Invoker, RealNumbers) {
    EXPECT_EQ(call("halve", {1.5}).number(), 0.75);
    EXPECT_EQ(call("halve", {3}).number(), 1.5);
    EXPECT_TRUE(std::isnan(call("halve", {std::nan("")}).number()));
    EXPECT_EQ(call("halveSingle", {0.5}).number(), 0.25);
    refuse("halve", true, "true is no value for Double");
}

TEST_F(Invoker, Pointers) {
    EXPECT_EQ(call("samePointer", {UINT64_MAX - 15}).unsignedInteger(), UINT64_MAX - 15);
    EXPECT_EQ(call("samePointer", {0}).unsignedInteger(), 0U);
}

TEST_F(Invoker, StringsAreBorrowedAndReturnedWithAReference) {
    const StringRef text = host.makeString("abc");
    {
        const StringRef result = call("sameString", {text}).string();
        EXPECT_EQ(result.handle(), text.handle());
        EXPECT_EQ(host.references(text), 2);
    }
    EXPECT_EQ(host.references(text), 1);
    EXPECT_TRUE(call("sameString", {Value{}}).isNil());
    refuse("sameString", 1, "1 is no value for String");
}

TEST_F(Invoker, ObjectsOfTheDeclaredClass) {
    const ObjectRef date = host.newInstance("Date");
    EXPECT_EQ(call("sameDate", {date}).object().handle(), date.handle());
    EXPECT_TRUE(call("sameDate", {Value{}}).isNil());
    EXPECT_EQ(host.references(date), 1);
    const ObjectRef block = host.newInstance("MemoryBlock");
    EXPECT_THROW(host.call(object, "sameDate", {block}), UsageError);
    EXPECT_THROW(host.call(object, "sameDate", {"text"}), UsageError);
}

TEST_F(Invoker, PlainValuesBecomeVariants) {
    EXPECT_EQ(unboxed(call("sameVariant", {7}).object()).integer(), 7);
    EXPECT_EQ(unboxed(call("sameVariant", {"a"}).object()).text(), "a");
    EXPECT_TRUE(call("sameVariant", {Value{}}).isNil());
    EXPECT_THAT(host.liveObjects(), ElementsAre("CalledZKT#1"));
}

TEST_F(Invoker, Arrays) {
    const ObjectRef strings = makeArray(stringElements);
    EXPECT_EQ(call("sameStrings", {strings}).object().handle(), strings.handle());
    EXPECT_EQ(arrayCount(call("strings").object()), 1U);
    EXPECT_THROW(host.call(object, "sameStrings", {makeArray(objectElements)}), UsageError);
    EXPECT_THROW(host.call(object, "sameStrings", {host.newInstance("Date")}), UsageError);
    EXPECT_THROW(host.call(object, "sameVariant", {strings}), UsageError);
}

TEST_F(Invoker, ManyArgumentsOfMixedTypes) {
    EXPECT_EQ(call("many", {1, 2.0, 3, 4.0, true, 5, 6, 7, 8.0}).number(),
              1 + 20 + 300 + 4000 + 10000 + 5e5 + 6e6 + 7e7 + 8e8);
}

TEST_F(Invoker, MoreArgumentsThanRegisters) {
    EXPECT_EQ(call("last", {0, 0, 0, 0, 0, 0, 0, 1, 2, 3}).integer(), 3210);
}

TEST_F(Invoker, DefaultsFillIn) {
    EXPECT_EQ(call("defaults").integer(), 42);
    EXPECT_EQ(call("defaults", {1}).integer(), 2);
}

TEST_F(Invoker, WrongNumbersOfArguments) {
    EXPECT_THAT([&] { host.call(object, "addOne"); },
                ThrowsMessage<UsageError>("CalledZKT has no method addOne that takes 0 arguments"));
    EXPECT_THROW(host.call(object, "addOne", {1, 2}), UsageError);
    EXPECT_THROW(host.call(object, "noSuchMethod"), UsageError);
    EXPECT_THROW(host.get(object, "noSuchProperty"), UsageError);
    EXPECT_THROW(host.set(object, "text", "x"), UsageError);
    EXPECT_THROW(host.callShared("NoSuchClass", "f"), UsageError);
    EXPECT_THROW(host.get(nullptr, "answer"), UsageError);
}

TEST_F(Invoker, SharedMethodsGetNoObject) {
    EXPECT_EQ(host.callShared("calledzkt", "SUM", {40, 2}).integer(), 42);
    EXPECT_THROW(host.callShared("CalledZKT", "addOne", {1}), UsageError);
}

TEST_F(Invoker, AccessorsGetTheParameterSlot) {
    EXPECT_EQ(host.get(object, "ANSWER").integer(), 7);
    EXPECT_FALSE(host.set(object, "answer", 5).raised());
    EXPECT_EQ(stored, 7005);
    EXPECT_EQ(host.get(object, "text").text(), "text");
    EXPECT_THAT(host.liveStrings(), IsEmpty());
}

TEST_F(Invoker, FieldsAreReadAndWrittenByTheHost) {
    host.set(object, "Handle", INT64_MIN);
    host.set(object, "Flag", true);
    host.set(object, "Small", -2);
    host.set(object, "Ratio", 0.5);
    auto *data = static_cast<char *>(host.dataOf(object));
    EXPECT_EQ(*reinterpret_cast<std::int64_t *>(data), INT64_MIN);
    EXPECT_EQ(data[16], 1);
    EXPECT_EQ(*reinterpret_cast<std::int32_t *>(data + 20), -2);
    EXPECT_EQ(*reinterpret_cast<double *>(data + 24), 0.5);
    EXPECT_EQ(host.get(object, "Handle").integer(), INT64_MIN);
    EXPECT_TRUE(host.get(object, "Flag").boolean());
    EXPECT_EQ(host.get(object, "Small").integer(), -2);
    EXPECT_EQ(host.get(object, "Ratio").number(), 0.5);
    EXPECT_THAT(host.calls(), IsEmpty());
}

TEST_F(Invoker, FieldsOfHandlesOwnAReferenceOfThePlugin) {
    const StringRef text = host.makeString("abc");
    const ObjectRef date = host.newInstance("Date");
    host.set(object, "Reason", text);
    host.set(object, "Partner", date);
    EXPECT_EQ(host.references(text), 2);
    EXPECT_EQ(host.references(date), 2);
    EXPECT_EQ(host.get(object, "Reason").text(), "abc");
    EXPECT_EQ(host.get(object, "Partner").object().handle(), date.handle());
    host.set(object, "Reason", Value{});
    EXPECT_EQ(host.references(text), 1);
    EXPECT_TRUE(host.get(object, "Reason").isNil());
    // What the plug-in's destructor would do.
    std::memset(static_cast<char *>(host.dataOf(object)) + 32, 0, 8);
    unlockObject(date);
    EXPECT_EQ(host.references(date), 1);
    EXPECT_THROW(host.set(object, "Partner", object), UsageError);
}

TEST_F(Invoker, Constants) {
    EXPECT_EQ(host.constant("CalledZKT", "answer2"), 42);
    EXPECT_THROW(static_cast<void>(host.constant("CalledZKT", "answer3")), UsageError);
}

TEST_F(Invoker, ResultWithoutAReferenceIsAViolation) {
    const ObjectRef date = host.newInstance("Date");
    EXPECT_TRUE(call("unlockedResult", {date}).isNil());
    EXPECT_EQ(host.references(date), 1);
    EXPECT_THAT(host.violations(),
                ElementsAre(HasSubstr("unlockedResult: returned Date#2 without a reference to hand "
                                      "over (made by the host")));
}

TEST_F(Invoker, ResultThatIsNoHandleIsAViolation) {
    EXPECT_TRUE(call("wildResult").isNil());
    EXPECT_TRUE(call("notAString").isNil());
    EXPECT_THAT(host.violations(),
                ElementsAre(HasSubstr("wildResult: got a pointer that is no host object"),
                            HasSubstr("notAString: got Date#2 where a string is needed")));
    unlockObject(host::Core::current().heap.liveObjects().back()->handle());
}

TEST_F(Invoker, ResultOfAnotherClassIsAViolation) {
    EXPECT_FALSE(call("rightClass").isNil());
    EXPECT_THAT(host.violations(), IsEmpty());
    EXPECT_TRUE(call("wrongClass").isNil());
    EXPECT_TRUE(call("notAnArray").isNil());
    EXPECT_THAT(host.violations(),
                ElementsAre("wrongClass: returned MemoryBlock#3 where the declaration says Date",
                            "notAnArray: returned Date#4 where the declaration says String()"));
    EXPECT_THAT(host.liveObjects(), ElementsAre("CalledZKT#1"));
}

TEST_F(Invoker, RaisedExceptionsComeWithTheOutcome) {
    const Outcome outcome = host.call(object, "raiseInside");
    ASSERT_TRUE(outcome.raised());
    EXPECT_EQ(outcome.exception->className, "NilObjectException");
    EXPECT_FALSE(outcome.exception->message);
    EXPECT_FALSE(host.hasPendingException());
}

TEST_F(Invoker, ForeignExceptionsPassUnchanged) {
    EXPECT_THAT([&] { host.call(object, "throwRangeError"); },
                ThrowsMessage<std::range_error>("out of the plug-in"));
    try {
        host.call(object, "throwInteger");
        FAIL() << "returned";
    } catch (int number) {
        EXPECT_EQ(number, 42);
    }
}

TEST_F(Invoker, RawFunctionsOfTheRows) {
    EXPECT_EQ(host.methodOf("CalledZKT", "AddOne"), pointer(addOne));
    EXPECT_EQ(host.sharedMethodOf("CalledZKT", "sum"), pointer(sharedSum));
    EXPECT_EQ(host.getterOf("CalledZKT", "answer"), pointer(getParameter));
    EXPECT_EQ(host.setterOf("CalledZKT", "answer"), pointer(setStored));
    EXPECT_THROW(static_cast<void>(host.setterOf("CalledZKT", "text")), UsageError);
    EXPECT_THROW(static_cast<void>(host.getterOf("CalledZKT", "Handle")), UsageError);
    EXPECT_THROW(static_cast<void>(host.getterOf("Date", "Year")), UsageError);
    EXPECT_THROW(static_cast<void>(host.methodOf("CalledZKT", "sum")), UsageError);
}

TEST_F(Invoker, PluginMethodsAreFoundByDeclarationToo) {
    EXPECT_EQ(loadObjectMethod(object, "addone(x As Integer) As Integer"), pointer(addOne));
    EXPECT_EQ(loadObjectMethod(object, "sum(a as Integer, b as Integer) as Integer"), nullptr);
}

} // namespace
