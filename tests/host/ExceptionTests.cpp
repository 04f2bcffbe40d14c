#include "tests/host/FakePlugin.h"

#include <stdexcept>

namespace {

using namespace host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Raises as plug-ins do: makes, sets, raises, gives up its reference.
void raise(const char *className, const char *message, std::int64_t number = 0) {
    const StringHandle text = message == nullptr ? nullptr : buildString(message);
    const ObjectHandle exception = pluginNewInstance(className);
    service<bool(ObjectHandle, const char *, StringHandle)>("REALSetPropValueString")(
        exception, "Message", text);
    service<bool(ObjectHandle, const char *, std::int64_t)>("REALSetPropValueInteger")(
        exception, "ErrorNumber", number);
    raiseException(exception);
    unlockObject(exception);
    if (text != nullptr)
        unlockString(text);
}

TEST(Exceptions, PendUntilTaken) {
    Host host;
    raise("OutOfBoundsException", "too far", -5);
    EXPECT_TRUE(host.hasPendingException());
    {
        const auto exception = host.takePendingException();
        ASSERT_TRUE(exception);
        EXPECT_EQ(exception->className, "OutOfBoundsException");
        EXPECT_EQ(exception->message, "too far");
        EXPECT_EQ(exception->errorNumber, -5);
        EXPECT_FALSE(host.hasPendingException());
        EXPECT_FALSE(host.takePendingException());
    }
    EXPECT_THAT(host.liveObjects(), IsEmpty());
    EXPECT_THAT(host.liveStrings(), IsEmpty());
}

TEST(Exceptions, NullMessageIsNotTheEmptyOne) {
    Host host;
    raise("RuntimeException", nullptr);
    EXPECT_FALSE(host.takePendingException()->message);
    raise("RuntimeException", "");
    EXPECT_EQ(host.takePendingException()->message, "");
}

TEST(Exceptions, EveryClassIsARuntimeException) {
    Host host;
    for (const char *name :
         {"RuntimeException", "OutOfMemoryException", "OutOfBoundsException",
          "IllegalCastException", "NilObjectException", "UnsupportedOperationException",
          "KeyNotFoundException", "NSExceptionZKT"}) {
        const ObjectHandle exception = pluginNewInstance(name);
        ASSERT_NE(exception, nullptr) << name;
        raiseException(exception);
        unlockObject(exception);
        EXPECT_EQ(host.takePendingException()->className, name);
    }
    EXPECT_THAT(host.violations(), IsEmpty());
}

TEST(Exceptions, OtherObjectsCannotBeRaised) {
    Host host;
    const ObjectRef date = host.newInstance("Date");
    raiseException(date);
    raiseException(nullptr);
    EXPECT_FALSE(host.hasPendingException());
    EXPECT_THAT(host.violations(),
                ElementsAre(HasSubstr("RuntimeRaiseException: got Date#1, which is no exception"),
                            HasSubstr("RuntimeRaiseException: got nil")));
}

TEST(Exceptions, LaterOneReplacesTheEarlier) {
    Host host;
    raise("RuntimeException", "first");
    raise("OutOfMemoryException", "second");
    EXPECT_EQ(host.takePendingException()->message, "second");
    ASSERT_EQ(host.strayExceptions().size(), 1U);
    EXPECT_EQ(host.strayExceptions()[0].message, "first");
}

TEST(Exceptions, RaisedOutsideOfCallsAreNotBlamedOnTheNext) {
    Host host;
    raise("RuntimeException", "stray");
    const ObjectRef date = host.newInstance("Date");
    const Outcome year = host.get(date, "Year");
    EXPECT_FALSE(year.raised());
    EXPECT_EQ(year.integer(), 2000);
    ASSERT_EQ(host.strayExceptions().size(), 1U);
    EXPECT_EQ(host.strayExceptions()[0].message, "stray");
}

TEST(Exceptions, OutcomesRefuseToGiveAFallback) {
    Host host;
    const Outcome outcome = host.newObject("MemoryBlock", {-1});
    EXPECT_TRUE(outcome.raised());
    EXPECT_THROW((void)outcome.object(), UsageError);
    EXPECT_TRUE(outcome.value.isNil());
}

void quiet(void *argument) {
    *static_cast<int *>(argument) = 1;
}
void raising(void *) {
    raise("NilObjectException", "inside");
}
void throwing(void *) {
    raise("NilObjectException", "lost");
    throw std::runtime_error("through");
}

ObjectHandle runGuarded(void (*callback)(void *), void *argument = nullptr) {
    return service<ObjectHandle(void (*)(void *), void *)>(
        "PluginCallFunctionWithExceptionHandler")(callback, argument);
}

TEST(ExceptionHandler, GivesNilWhenNothingIsRaised) {
    Host host;
    int ran = 0;
    EXPECT_EQ(runGuarded(quiet, &ran), nullptr);
    EXPECT_EQ(ran, 1);
}

TEST(ExceptionHandler, GivesTheExceptionToTheCaller) {
    Host host;
    const ObjectHandle exception = runGuarded(raising);
    EXPECT_EQ(host.className(exception), "NilObjectException");
    EXPECT_FALSE(host.hasPendingException());
    EXPECT_EQ(host.references(exception), 1);
    unlockObject(exception);
    EXPECT_THAT(host.liveObjects(), IsEmpty());
}

TEST(ExceptionHandler, LeavesAnEarlierExceptionPending) {
    Host host;
    raise("RuntimeException", "before");
    const ObjectHandle exception = runGuarded(raising);
    unlockObject(exception);
    EXPECT_EQ(host.takePendingException()->message, "before");
}

TEST(ExceptionHandler, ForeignExceptionsPass) {
    Host host;
    raise("RuntimeException", "before");
    EXPECT_THROW(runGuarded(throwing), std::runtime_error);
    EXPECT_EQ(host.takePendingException()->message, "before");
    EXPECT_EQ(runGuarded(nullptr), nullptr);
    EXPECT_THAT(host.violations(), ElementsAre(HasSubstr("got no callback")));
}

} // namespace
