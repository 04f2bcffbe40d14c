// C++ exceptions on the way to a host string become host exceptions.

#include "ActingScene.h"
#include "TextScene.h"

#include <gmock/gmock.h>

#include <any>
#include <functional>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using namespace std::string_view_literals;

struct MappingCase {
    std::string name;
    std::function<void()> thrower;
    std::string className;
    std::string message;
};

void PrintTo(const MappingCase &mapping, std::ostream *out) {
    *out << mapping.name;
}

// A class of the plug-in's user, derived from one of the family, with a text of its own.
template <class Base>
class Derived : public Base {
public:
    template <class... Arguments>
    explicit Derived(Arguments... arguments) : Base(arguments...) {}
    [[nodiscard]] const char *what() const noexcept override { return "derived"; }
};

template <class Exception, class... Arguments>
std::function<void()> throwing(Arguments... arguments) {
    return [=] { throw Exception(arguments...); };
}

constexpr auto bounds = "OutOfBoundsException";
constexpr auto runtime = "RuntimeException";
constexpr auto unnamed = "Sorry, but there was an unnamed C++ Exception.";

struct Unrelated {};
enum class Number { one };

const MappingCase mappingCases[] = {
    // The ten rows.
    {"BadAlloc", throwing<std::bad_alloc>(), "OutOfMemoryException", "Failed to allocate memory."},
    {"RangeError", throwing<std::range_error>("range"), bounds, "range"},
    {"OutOfRange", throwing<std::out_of_range>("out of range"), bounds, "out of range"},
    {"OverflowError", throwing<std::overflow_error>("overflow"), bounds, "overflow"},
    {"UnderflowError", throwing<std::underflow_error>("underflow"), bounds, "underflow"},
    {"LogicError", throwing<std::logic_error>("logic"), runtime, "logic"},
    {"RuntimeError", throwing<std::runtime_error>("runtime"), runtime, "runtime"},
    {"BadCast", throwing<std::bad_cast>(), "IllegalCastException", std::bad_cast().what()},
    {"Exception", throwing<std::exception>(), runtime, std::exception().what()},
    {"Int", [] { throw 42; }, runtime, unnamed},
    // What derives from a row's type takes that row, with its own text.
    {"DerivedBadAlloc", throwing<Derived<std::bad_alloc>>(), "OutOfMemoryException",
     "Failed to allocate memory."},
    {"DerivedRangeError", throwing<Derived<std::range_error>>("x"), bounds, "derived"},
    {"DerivedOutOfRange", throwing<Derived<std::out_of_range>>("x"), bounds, "derived"},
    {"DerivedOverflowError", throwing<Derived<std::overflow_error>>("x"), bounds, "derived"},
    {"DerivedUnderflowError", throwing<Derived<std::underflow_error>>("x"), bounds, "derived"},
    {"DerivedLogicError", throwing<Derived<std::logic_error>>("x"), runtime, "derived"},
    {"DerivedRuntimeError", throwing<Derived<std::runtime_error>>("x"), runtime, "derived"},
    {"DerivedBadCast", throwing<Derived<std::bad_cast>>(), "IllegalCastException", "derived"},
    {"DerivedException", throwing<Derived<std::exception>>(), runtime, "derived"},
    // Other members of the family.
    {"BadArrayNewLength", throwing<std::bad_array_new_length>(), "OutOfMemoryException",
     "Failed to allocate memory."},
    {"LengthError", throwing<std::length_error>("length"), runtime, "length"},
    {"InvalidArgument", throwing<std::invalid_argument>("argument"), runtime, "argument"},
    {"DomainError", throwing<std::domain_error>("domain"), runtime, "domain"},
    {"BadAnyCast", throwing<std::bad_any_cast>(), "IllegalCastException",
     std::bad_any_cast().what()},
    {"BadTypeid", throwing<std::bad_typeid>(), runtime, std::bad_typeid().what()},
    {"BadFunctionCall", throwing<std::bad_function_call>(), runtime,
     std::bad_function_call().what()},
    // No exception class at all.
    {"Text", [] { throw "a text"; }, runtime, unnamed},
    {"String", [] { throw std::string("a string"); }, runtime, unnamed},
    {"Class", [] { throw Unrelated{}; }, runtime, unnamed},
    {"Enumerator", [] { throw Number::one; }, runtime, unnamed},
    {"PointerToAnException",
     [] {
         static const std::out_of_range error("pointed to");
         throw &error;
     },
     runtime, unnamed},
    {"NSException", [] { raiseNSException("N", "R"); }, runtime, unnamed},
};

// Text in UTF-16, which is built by a service that no exception's message needs.
class GuardedText : public TextScene {
public:
    void fail(std::function<void()> thrower) {
        host.services().fail("REALBuildStringWithEncoding", std::move(thrower));
    }
    host::StringRef build() { return TextScene::build("A\0"sv, host::encoding::utf16); }
};

class StandardExceptionMapping : public testing::TestWithParam<MappingCase> {
protected:
    void SetUp() override { text_.fail(GetParam().thrower); }
    GuardedText text_;
};

} // namespace

TEST_P(StandardExceptionMapping, GivesNull) {
    EXPECT_EQ(text_.build(), nullptr);
    EXPECT_TRUE(text_.host.takePendingException());
}

TEST_P(StandardExceptionMapping, RaisesTheClassWithTheMessage) {
    text_.build();
    // Not by way of another class that the host does not know.
    EXPECT_EQ(text_.host.services().calls("PluginNewInstance"), 1u);
    const auto raised = text_.host.takePendingException();
    ASSERT_TRUE(raised);
    EXPECT_EQ(raised->className, GetParam().className);
    EXPECT_EQ(raised->message, GetParam().message);
    EXPECT_EQ(raised->errorNumber, 0);
}

TEST_P(StandardExceptionMapping, RaisesOnceAndReleasesWhatItMade) {
    text_.build();
    EXPECT_EQ(text_.host.services().calls("RuntimeRaiseException"), 1u);
    {
        const auto raised = text_.host.takePendingException();
        ASSERT_TRUE(raised);
        EXPECT_EQ(text_.host.references(raised->object.handle()), 1);
    }
    EXPECT_THAT(text_.host.liveObjects(), IsEmpty());
    EXPECT_THAT(text_.host.liveStrings(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Of, StandardExceptionMapping, testing::ValuesIn(mappingCases),
                         [](const auto &tested) { return tested.param.name; });

namespace {

/// What was raised, in order: the last is pending.
std::vector<host::RaisedException> allRaised(host::Host &host) {
    std::vector<host::RaisedException> all = host.strayExceptions();
    if (auto last = host.takePendingException())
        all.push_back(std::move(*last));
    return all;
}

} // namespace

// The report of a failure is built as text too. A failure of that is reported in turn, and so on.
TEST_P(StandardExceptionMapping, EndsWhereTheMessagesFailEveryTime) {
    text_.host.services().fail("REALBuildString", GetParam().thrower);
    EXPECT_EQ(text_.build(), nullptr);
    const auto raised = allRaised(text_.host);
    EXPECT_EQ(raised.size(), 17u);
    for (const host::RaisedException &each : raised) {
        EXPECT_EQ(each.className, GetParam().className);
        EXPECT_EQ(each.message, std::nullopt);
    }
    // And is forgotten.
    text_.host.services().restore("REALBuildString");
    text_.build();
    EXPECT_EQ(text_.host.takePendingException()->message, GetParam().message);
}

TEST_P(StandardExceptionMapping, TellsOfSixteenFailuresInARowWithTheLastOnesMessage) {
    int failures = 15;
    text_.host.services().fail("REALBuildString", [&] {
        if (failures-- > 0)
            GetParam().thrower();
    });
    text_.build();
    const auto raised = allRaised(text_.host);
    ASSERT_EQ(raised.size(), 16u);
    EXPECT_EQ(raised.front().message, GetParam().message);
    EXPECT_EQ(raised.back().message, std::nullopt);
}

TEST(StandardExceptions, AreRaisedInTheOrderOfRaiseException) {
    GuardedText text;
    text.fail(throwing<std::length_error>("length"));
    text.build();
    EXPECT_THAT(text.host.calls(),
                ElementsAre("REALBuildStringWithEncoding(\"A\\x00\", 2, 0x00000100) threw",
                            "REALBuildString(\"length\", 6) = String#1",
                            "REALSetStringEncoding(String#1, 0x00000600)",
                            "PluginNewInstance(\"RuntimeException\") = RuntimeException#1",
                            "REALSetPropValueString(RuntimeException#1, \"Message\", String#1) "
                            "= true",
                            "REALSetPropValueInteger(RuntimeException#1, \"ErrorNumber\", 0) = "
                            "true",
                            "RuntimeRaiseException(RuntimeException#1)",
                            "REALUnlockObject(RuntimeException#1)", "REALUnlockString(String#1)"));
}

TEST(StandardExceptions, FallBackToRuntimeExceptionWhenTheHostLacksTheirClass) {
    GuardedText text;
    text.host.hideClass("OutOfMemoryException");
    text.fail(throwing<std::bad_alloc>());
    EXPECT_EQ(text.build(), nullptr);
    const auto raised = text.host.takePendingException();
    ASSERT_TRUE(raised);
    EXPECT_EQ(raised->className, "RuntimeException");
    EXPECT_EQ(raised->message, "Failed to allocate memory.");
}

TEST(StandardExceptions, GiveNullWhenNothingCanBeRaised) {
    GuardedText text;
    for (const char *service : {"PluginNewInstance", "REALBuildString", "RuntimeRaiseException"})
        text.host.services().hide(service);
    text.fail(throwing<std::length_error>("length"));
    EXPECT_EQ(text.build(), nullptr);
    EXPECT_FALSE(text.host.hasPendingException());
}

// A message is text like any other: what goes wrong with it is raised before what it was for.
TEST(StandardExceptions, ThrownByTheirOwnMessageAreRaisedFirst) {
    TextScene text;
    int calls = 0;
    text.host.services().fail("REALBuildString", [&] {
        if (++calls == 1)
            throw std::out_of_range("first");
        if (calls == 2)
            throw std::length_error("second");
    });
    EXPECT_EQ(text.build("abc", host::encoding::utf8), nullptr);
    EXPECT_THAT(text.host.calls(),
                ElementsAre("REALBuildString(\"abc\", 3) threw",
                            "REALBuildString(\"first\", 5) threw",
                            "REALBuildString(\"second\", 6) = String#1",
                            "REALSetStringEncoding(String#1, 0x00000600)",
                            "PluginNewInstance(\"RuntimeException\") = RuntimeException#1",
                            "REALSetPropValueString(RuntimeException#1, \"Message\", String#1) "
                            "= true",
                            "REALSetPropValueInteger(RuntimeException#1, \"ErrorNumber\", 0) = "
                            "true",
                            "RuntimeRaiseException(RuntimeException#1)",
                            "REALUnlockObject(RuntimeException#1)", "REALUnlockString(String#1)",
                            "PluginNewInstance(\"OutOfBoundsException\") = OutOfBoundsException#2",
                            "REALSetPropValueString(OutOfBoundsException#2, \"Message\", nil) = "
                            "true",
                            "REALSetPropValueInteger(OutOfBoundsException#2, \"ErrorNumber\", 0) "
                            "= true",
                            "RuntimeRaiseException(OutOfBoundsException#2)",
                            "REALUnlockObject(OutOfBoundsException#2)"));
}

// The handler does not guard itself.
TEST(StandardExceptions, ThrownWhileOneIsRaisedPassOut) {
    GuardedText text;
    text.host.services().hide("REALBuildString"); // so that there is no message to lose
    text.host.services().fail("PluginNewInstance", throwing<std::domain_error>("second"));
    text.fail(throwing<std::length_error>("first"));
    std::string caught;
    try {
        text.build();
    } catch (const std::domain_error &error) {
        caught = error.what();
    }
    EXPECT_EQ(caught, "second");
    EXPECT_FALSE(text.host.hasPendingException());
}

TEST(StandardExceptions, ThrownWhileOneIsRaisedPassOutOfEveryRow) {
    GuardedText text;
    text.host.services().hide("REALBuildString");
    text.host.services().fail("PluginNewInstance", [] { throw 7; });
    for (const MappingCase &row : mappingCases) {
        SCOPED_TRACE(row.name);
        text.fail(row.thrower);
        EXPECT_THROW(text.build(), int);
    }
}

TEST(StandardExceptions, DoNotOutliveTheCall) {
    GuardedText text;
    text.fail(throwing<std::length_error>("length"));
    EXPECT_EQ(text.build(), nullptr);
    text.host.takePendingException();
    text.host.services().restore("REALBuildStringWithEncoding");
    const host::StringRef built = text.build();
    EXPECT_EQ(text.host.text(built), "A");
    EXPECT_FALSE(text.host.hasPendingException());
}
