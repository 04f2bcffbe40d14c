#include "host/classes/Inspect.h"
#include "tests/host/FakePlugin.h"

namespace {

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

ObjectHandle createArray(std::int32_t elementType, std::int32_t upperBound = -1) {
    return service<ObjectHandle(std::int32_t, std::int32_t)>(
        "RuntimeArrayCreateSingleDimBoundedArray")(elementType, upperBound);
}

void insertString(ObjectHandle array, std::int64_t index, StringHandle value) {
    reinterpret_cast<void (*)(ObjectHandle, std::int64_t, StringHandle)>(
        service<void *(ObjectHandle)>("PluginStringArrayInsertProc")(array))(array, index, value);
}

void insertObject(ObjectHandle array, std::int64_t index, ObjectHandle value) {
    reinterpret_cast<void (*)(ObjectHandle, std::int64_t, ObjectHandle)>(
        service<void *(ObjectHandle)>("PluginObjectArrayInsertProc")(array))(array, index, value);
}

TEST(Variants, EachKindIsATypeOfItsOwn) {
    Host host;
    const StringHandle text = buildString("a");
    const std::tuple<ObjectHandle, VariantType, std::string> rows[] = {
        {service<ObjectHandle(StringHandle)>("StringToVariant")(text), VariantType::string,
         "\"a\""},
        {integerVariant(-1), VariantType::integer, "-1"},
        {service<ObjectHandle(double)>("DoubleToVariant")(1.5), VariantType::real, "1.5"},
        {service<ObjectHandle(bool)>("BooleanToVariant")(true), VariantType::boolean, "true"},
        {service<ObjectHandle(std::uint32_t)>("UInt32ToVariant")(UINT32_MAX), VariantType::uint32,
         "4294967295"},
        {service<ObjectHandle(float)>("SingleToVariant")(0.1F), VariantType::single,
         "0.10000000149011612"},
    };
    unlockString(text);
    for (const auto &[object, type, value] : rows) {
        EXPECT_EQ(variant(object).type, type);
        EXPECT_EQ(describe(variant(object).value), value);
        unlockObject(object);
    }
}

TEST(Variants, StringsAreHeldByTheirVariant) {
    Host host;
    const StringHandle text = buildString("a");
    const ObjectHandle boxed = service<ObjectHandle(StringHandle)>("StringToVariant")(text);
    EXPECT_EQ(host.references(text), 2);
    unlockString(text);
    EXPECT_TRUE(host.isLive(text));
    unlockObject(boxed);
    EXPECT_FALSE(host.isLive(text));
}

TEST(Variants, NullStringIsAStringVariant) {
    Host host;
    const ObjectHandle boxed = service<ObjectHandle(StringHandle)>("StringToVariant")(nullptr);
    ASSERT_NE(boxed, nullptr);
    EXPECT_EQ(variant(boxed).type, VariantType::string);
    EXPECT_TRUE(variant(boxed).value.isNil());
    unlockObject(boxed);
}

TEST(Variants, AnyByteButZeroIsTrue) {
    Host host;
    const auto toVariant = service<ObjectHandle(std::uint8_t)>("BooleanToVariant");
    const ObjectHandle boxed = toVariant(0x80);
    EXPECT_TRUE(variant(boxed).value.boolean());
    unlockObject(boxed);
}

TEST(Variants, BoxedByPrograms) {
    Host host;
    EXPECT_EQ(variant(box(7)).type, VariantType::integer);
    EXPECT_EQ(variant(box("a")).type, VariantType::string);
    EXPECT_EQ(variant(box(true)).type, VariantType::boolean);
    EXPECT_EQ(variant(box(2.5)).type, VariantType::real);
    EXPECT_EQ(variant(box(2.5, VariantType::single)).type, VariantType::single);
    EXPECT_EQ(variant(box(std::uint64_t{5})).type, VariantType::uint32);
    EXPECT_FALSE(box(Value{}));
    const ObjectRef date = host.newInstance("Date");
    EXPECT_EQ(box(date).handle(), date.handle());
    EXPECT_THROW(box(7, VariantType::string), UsageError);
    EXPECT_THROW(box(std::uint64_t{1} << 32), UsageError);
    EXPECT_THROW(variant(date), UsageError);
    EXPECT_EQ(unboxed(box(7)).integer(), 7);
    EXPECT_EQ(unboxed(date).object().handle(), date.handle());
    EXPECT_TRUE(unboxed(nullptr).isNil());
}

TEST(Arrays, StartEmptyWithUpperBoundMinusOne) {
    Host host;
    const ObjectHandle array = createArray(stringElements);
    EXPECT_EQ(arrayCount(array), 0U);
    EXPECT_EQ(elementType(array), stringElements);
    unlockObject(array);
}

TEST(Arrays, UpperBoundGivesNilElements) {
    Host host;
    const ObjectHandle array = createArray(objectElements, 1);
    ASSERT_EQ(arrayCount(array), 2U);
    EXPECT_TRUE(arrayElements(array)[1].isNil());
    unlockObject(array);
}

TEST(Arrays, InsertingGrowsThemAndHoldsTheValue) {
    Host host;
    const ObjectHandle array = createArray(stringElements);
    const StringHandle a = buildString("a");
    const StringHandle b = buildString("b");
    insertString(array, 0, b);
    insertString(array, 0, a);
    insertString(array, 2, nullptr);
    EXPECT_EQ(host.references(a), 2);
    unlockString(a);
    unlockString(b);
    const std::vector<Value> elements = arrayElements(array);
    ASSERT_EQ(elements.size(), 3U);
    EXPECT_EQ(elements[0].text(), "a");
    EXPECT_EQ(elements[1].text(), "b");
    EXPECT_TRUE(elements[2].isNil());
    unlockObject(array);
}

TEST(Arrays, ElementsGoWithTheirArray) {
    Host host;
    const ObjectHandle array = createArray(objectElements);
    const ObjectHandle number = integerVariant(7);
    insertObject(array, 0, number);
    unlockObject(number);
    EXPECT_EQ(arrayElements(array)[0].integer(), 7);
    unlockObject(array);
    EXPECT_FALSE(host.isLive(number));
}

TEST(Arrays, IndexIsTakenAs32Bits) {
    Host host;
    const ObjectHandle array = createArray(objectElements);
    insertObject(array, static_cast<std::int64_t>(0xDEADBEEF00000000), nullptr);
    EXPECT_EQ(arrayCount(array), 1U);
    unlockObject(array);
}

TEST(Arrays, IndexPastTheEndRaises) {
    Host host;
    const ObjectHandle array = createArray(stringElements);
    insertString(array, 1, nullptr);
    const auto exception = host.takePendingException();
    ASSERT_TRUE(exception);
    EXPECT_EQ(exception->className, "OutOfBoundsException");
    EXPECT_EQ(exception->message, "index 1 of an array of 0");
    insertString(array, -1, nullptr);
    EXPECT_TRUE(host.takePendingException());
    EXPECT_EQ(arrayCount(array), 0U);
    unlockObject(array);
}

TEST(Arrays, MisuseIsAViolation) {
    Host host;
    EXPECT_EQ(createArray(5), nullptr);
    EXPECT_EQ(createArray(stringElements, -2), nullptr);
    const ObjectHandle strings = createArray(stringElements);
    EXPECT_EQ(service<void *(ObjectHandle)>("PluginObjectArrayInsertProc")(strings), nullptr);
    const ObjectRef date = host.newInstance("Date");
    EXPECT_EQ(service<void *(ObjectHandle)>("PluginStringArrayInsertProc")(date), nullptr);
    insertString(strings, 0, reinterpret_cast<StringHandle>(date.handle()));
    EXPECT_EQ(arrayCount(strings), 0U);
    EXPECT_THAT(
        host.violations(),
        ElementsAre(HasSubstr("got the element type 5, which is neither 3 (String) nor 4 (object)"),
                    HasSubstr("got the upper bound -2"),
                    HasSubstr("got Array#1, whose elements have the type 3 instead of 4"),
                    HasSubstr("got Date#2 where a live array is needed"),
                    HasSubstr("StringArray.Insert: got Date#2 where a string is needed")));
    unlockObject(strings);
}

/// A Dictionary as a plug-in fills and reads it.
struct DictionaryTest : testing::Test {
    DictionaryTest() : dictionary(pluginNewInstance("Dictionary")) {
        setter = method<void(ObjectHandle, ObjectHandle, ObjectHandle)>(
            "Value(key As Variant, Assigns _value As Variant)");
        getter =
            method<ObjectHandle(ObjectHandle, ObjectHandle)>("Value(key As Variant) As Variant");
        keyGetter =
            method<ObjectHandle(ObjectHandle, std::int64_t)>("Key(index As Integer) As Variant");
    }
    ~DictionaryTest() override { unlockObject(dictionary); }

    template <typename Signature>
    Signature *method(const char *declaration) {
        return reinterpret_cast<Signature *>(loadObjectMethod(dictionary, declaration));
    }
    void set(const Value &key, const Value &value) { setter(dictionary, box(key), box(value)); }
    Value get(const Value &key) { return unboxed(ObjectRef::adopt(getter(dictionary, box(key)))); }

    Host host;
    ObjectHandle dictionary;
    void (*setter)(ObjectHandle, ObjectHandle, ObjectHandle);
    ObjectHandle (*getter)(ObjectHandle, ObjectHandle);
    ObjectHandle (*keyGetter)(ObjectHandle, std::int64_t);
};

TEST_F(DictionaryTest, KeepsTheOrderOfInsertion) {
    set("b", 1);
    set("a", 2);
    set("b", 3);
    const auto entries = dictionaryEntries(dictionary);
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].first.text(), "b");
    EXPECT_EQ(entries[0].second.integer(), 3);
    EXPECT_EQ(entries[1].first.text(), "a");
    EXPECT_EQ(host.get(dictionary, "Count").integer(), 2);
}

TEST_F(DictionaryTest, KeysAreComparedByValue) {
    const StringRef utf16 = host.makeString(std::string("k\0", 2), encoding::utf16);
    set(utf16, 1);
    EXPECT_EQ(get("k").integer(), 1);
    set(7, "seven");
    EXPECT_EQ(get(7.0).text(), "seven");
    EXPECT_EQ(get(std::uint64_t{7}).text(), "seven");
    set(true, "truth");
    EXPECT_EQ(get(true).text(), "truth");
    set("7", "text");
    EXPECT_EQ(get(7).text(), "seven");
    EXPECT_EQ(dictionaryEntries(dictionary).size(), 4U);
}

TEST_F(DictionaryTest, ObjectsAreKeysByIdentity) {
    const ObjectRef first = host.newInstance("Date");
    const ObjectRef second = host.newInstance("Date");
    set(first, 1);
    set(second, 2);
    EXPECT_EQ(get(first).integer(), 1);
    EXPECT_EQ(get(second).integer(), 2);
}

TEST_F(DictionaryTest, NilIsAKeyAndAValue) {
    set(Value{}, 1);
    set("nothing", Value{});
    EXPECT_EQ(get(Value{}).integer(), 1);
    EXPECT_TRUE(get("nothing").isNil());
    EXPECT_FALSE(host.hasPendingException());
}

TEST_F(DictionaryTest, KeysByPlace) {
    set("first", 1);
    const ObjectHandle key = keyGetter(dictionary, 0);
    EXPECT_EQ(unboxed(key).text(), "first");
    unlockObject(key);
    EXPECT_EQ(keyGetter(dictionary, 1), nullptr);
    EXPECT_EQ(host.takePendingException()->className, "OutOfBoundsException");
    EXPECT_EQ(keyGetter(dictionary, -1), nullptr);
    EXPECT_TRUE(host.takePendingException());
}

TEST_F(DictionaryTest, MissingKeyRaises) {
    EXPECT_TRUE(get("absent").isNil());
    const auto exception = host.takePendingException();
    ASSERT_TRUE(exception);
    EXPECT_EQ(exception->className, "KeyNotFoundException");
    EXPECT_EQ(exception->message, "no key \"absent\"");
}

TEST_F(DictionaryTest, HoldsItsEntriesAndReturnsReferences) {
    const ObjectHandle key = integerVariant(1);
    const ObjectHandle value = integerVariant(2);
    setter(dictionary, key, value);
    EXPECT_EQ(host.references(key), 2);
    EXPECT_EQ(host.references(value), 2);
    EXPECT_EQ(getter(dictionary, key), value);
    EXPECT_EQ(host.references(value), 3);
    unlockObject(value);
    unlockObject(value);
    unlockObject(key);
}

TEST_F(DictionaryTest, MethodsNeedTheirWholeDeclaration) {
    EXPECT_EQ(loadObjectMethod(dictionary, "Value(key As Variant)"), nullptr);
    EXPECT_EQ(loadObjectMethod(dictionary, "Value(key As String) As Variant"), nullptr);
    EXPECT_EQ(loadObjectMethod(dictionary, "Value(key As Variant, value As Variant)"), nullptr);
    EXPECT_NE(loadObjectMethod(dictionary, "VALUE( k as variant )as variant"), nullptr);
    host.hideMethod("Value(key As Variant, Assigns value As Variant)");
    EXPECT_EQ(loadObjectMethod(dictionary, "Value(key As Variant, Assigns _value As Variant)"),
              nullptr);
    EXPECT_NE(loadObjectMethod(dictionary, "Value(key As Variant) As Variant"), nullptr);
}

TEST_F(DictionaryTest, WrongHandlesAreViolations) {
    const ObjectRef date = host.newInstance("Date");
    setter(date, nullptr, nullptr);
    const StringRef string = host.makeString("a");
    setter(dictionary, reinterpret_cast<ObjectHandle>(string.handle()), nullptr);
    EXPECT_THAT(
        host.violations(),
        ElementsAre(HasSubstr("Dictionary.Value: got Date#2 where a live Dictionary is needed"),
                    HasSubstr("Dictionary.Value: got String#1 where an object is needed")));
    EXPECT_THAT(dictionaryEntries(dictionary), IsEmpty());
}

TEST_F(DictionaryTest, TracesItsMethods) {
    host.clearTrace();
    setter(dictionary, nullptr, nullptr);
    EXPECT_EQ(getter(dictionary, nullptr), nullptr);
    EXPECT_EQ(keyGetter(dictionary, 0), nullptr);
    EXPECT_THAT(host.calls(), ElementsAre("Dictionary.Value(Dictionary#1, nil, nil)",
                                          "Dictionary.Value(Dictionary#1, nil) = nil",
                                          "Dictionary.Key(Dictionary#1, 0) = nil"));
}

} // namespace
