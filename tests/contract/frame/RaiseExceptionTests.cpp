// Raising a host exception by class name and message.

#include "LoadedPlugin.h"

#include <gmock/gmock.h>

#include <cstdint>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::uint32_t asciiEncoding = 0x0600;

class RaiseException : public testing::Test {
protected:
    // The last two arguments are those that callers leave to the defaults.
    void raise(const char *className, const char *message, std::uint32_t encoding = asciiEncoding,
               std::int64_t errorNumber = 0) {
        raise_(className, message, encoding, errorNumber);
    }

private:
    LoadedPlugin plugin_;

protected:
    host::Host &host_ = plugin_.host;

private:
    void (*raise_)(const char *, const char *, std::uint32_t, std::int64_t) =
        imageFunction<void(const char *, const char *, std::uint32_t, std::int64_t)>(
            plugin_.image, "RaiseException");
};

} // namespace

TEST_F(RaiseException, SetsMessageAndNumberThenRaisesThenReleases) {
    raise("OutOfBoundsException", "too far");
    EXPECT_THAT(host_.calls(),
                ElementsAre("REALBuildString(\"too far\", 7) = String#1",
                            "REALSetStringEncoding(String#1, 0x00000600)",
                            "PluginNewInstance(\"OutOfBoundsException\") = OutOfBoundsException#1",
                            "REALSetPropValueString(OutOfBoundsException#1, \"Message\", "
                            "String#1) = true",
                            "REALSetPropValueInteger(OutOfBoundsException#1, \"ErrorNumber\", 0) "
                            "= true",
                            "RuntimeRaiseException(OutOfBoundsException#1)",
                            "REALUnlockObject(OutOfBoundsException#1)",
                            "REALUnlockString(String#1)"));
}

TEST_F(RaiseException, IsSeenByTheHost) {
    raise("OutOfBoundsException", "too far");
    const auto raised = host_.takePendingException();
    ASSERT_TRUE(raised);
    EXPECT_EQ(raised->className, "OutOfBoundsException");
    EXPECT_EQ(raised->message, "too far");
    EXPECT_EQ(raised->errorNumber, 0);
}

TEST_F(RaiseException, LeavesTheHostTheOnlyReferences) {
    raise("OutOfBoundsException", "too far");
    const auto raised = host_.takePendingException();
    ASSERT_TRUE(raised);
    EXPECT_EQ(host_.references(raised->object.handle()), 1);
    EXPECT_THAT(host_.liveStrings(), ElementsAre("String#1")) << "the exception's Message";
}

TEST_F(RaiseException, KnowsEveryExceptionClassOfTheHost) {
    for (const char *className :
         {"RuntimeException", "OutOfMemoryException", "OutOfBoundsException",
          "IllegalCastException", "NilObjectException", "UnsupportedOperationException"}) {
        SCOPED_TRACE(className);
        raise(className, "message");
        const auto raised = host_.takePendingException();
        ASSERT_TRUE(raised);
        EXPECT_EQ(raised->className, className);
        EXPECT_EQ(raised->message, "message");
    }
}

TEST_F(RaiseException, FallsBackToRuntimeExceptionForAnUnknownClass) {
    raise("NoSuchException", "message");
    EXPECT_THAT(host_.calls(),
                ElementsAre("REALBuildString(\"message\", 7) = String#1",
                            "REALSetStringEncoding(String#1, 0x00000600)",
                            "PluginNewInstance(\"NoSuchException\") = nil",
                            "PluginNewInstance(\"RuntimeException\") = RuntimeException#1",
                            "REALSetPropValueString(RuntimeException#1, \"Message\", String#1) "
                            "= true",
                            "REALSetPropValueInteger(RuntimeException#1, \"ErrorNumber\", 0) = "
                            "true",
                            "RuntimeRaiseException(RuntimeException#1)",
                            "REALUnlockObject(RuntimeException#1)", "REALUnlockString(String#1)"));
    const auto raised = host_.takePendingException();
    ASSERT_TRUE(raised);
    EXPECT_EQ(raised->className, "RuntimeException");
    EXPECT_EQ(raised->message, "message");
    EXPECT_EQ(raised->errorNumber, 0);
}

TEST_F(RaiseException, RaisesNothingWhenTheHostKnowsNeitherClass) {
    host_.hideClass("RuntimeException");
    raise("NoSuchException", "message");
    EXPECT_THAT(host_.calls(), ElementsAre("REALBuildString(\"message\", 7) = String#1",
                                           "REALSetStringEncoding(String#1, 0x00000600)",
                                           "PluginNewInstance(\"NoSuchException\") = nil",
                                           "PluginNewInstance(\"RuntimeException\") = nil",
                                           "REALUnlockString(String#1)"));
    EXPECT_FALSE(host_.hasPendingException());
    EXPECT_THAT(host_.liveStrings(), IsEmpty());
}

TEST_F(RaiseException, SetsANullMessageAsANullString) {
    raise("NilObjectException", nullptr);
    EXPECT_THAT(host_.calls(),
                ElementsAre("PluginNewInstance(\"NilObjectException\") = NilObjectException#1",
                            "REALSetPropValueString(NilObjectException#1, \"Message\", nil) = true",
                            "REALSetPropValueInteger(NilObjectException#1, \"ErrorNumber\", 0) = "
                            "true",
                            "RuntimeRaiseException(NilObjectException#1)",
                            "REALUnlockObject(NilObjectException#1)"));
    const auto raised = host_.takePendingException();
    ASSERT_TRUE(raised);
    EXPECT_EQ(raised->message, std::nullopt);
}

TEST_F(RaiseException, SetsAnEmptyMessageAsANullString) {
    raise("NilObjectException", "");
    const auto raised = host_.takePendingException();
    ASSERT_TRUE(raised);
    EXPECT_EQ(raised->message, std::nullopt);
    EXPECT_EQ(host_.services().lookups("REALBuildString"), 0u);
}

TEST_F(RaiseException, DoesNotConsultEncodingAndErrorNumber) {
    raise("RuntimeException", "message", 0x08000100, -1);
    EXPECT_THAT(host_.calls(),
                testing::AllOf(testing::Contains("REALSetStringEncoding(String#1, 0x00000600)"),
                               testing::Contains("REALSetPropValueInteger(RuntimeException#1, "
                                                 "\"ErrorNumber\", 0) = true")));
}

// Each missing service is skipped, and the steps go on.
