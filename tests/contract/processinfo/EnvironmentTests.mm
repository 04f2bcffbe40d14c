// The environment of the process as a Dictionary of the host's.

#include "CocoaText.h"
#import "DictionaryScene.h"
#import "OwnObject.h"
#import "ProcessInfoDouble.h"
#include "Properties.h"

#include "host/core/Cocoa.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <map>
#include <unistd.h>

// Which not every unistd.h declares.
extern "C" char **environ; // NOLINT(readability-redundant-declaration)

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// An instance whose object answers with an environment of the test's own.
class Environment : public testing::Test {
protected:
    host::Outcome read() { return loaded.host.get(instance, "environment"); }
    host::Services &services() { return loaded.host.services(); }
    NSDictionary *&answer() { return object->answers.environment; }

    LoadedPlugin loaded;
    OwnObject<ProcessInfoDouble> object;
    InstanceAround instance{loaded.host, object};
};

/// Entries with text on both sides.
std::map<std::string, std::string> texts(const host::ObjectRef &dictionary) {
    std::map<std::string, std::string> result;
    for (const auto &[key, value] : host::dictionaryEntries(dictionary))
        EXPECT_TRUE(result.emplace(key.text(), value.text()).second) << key.text();
    return result;
}

/// What this very process reads, through Foundation and the plug-in.
std::map<std::string, std::string> ofThisProcess() {
    LoadedPlugin loaded;
    const host::ObjectRef info = loaded.host.callShared(processInfoClass, "processInfo").object();
    return texts(loaded.host.get(info, "environment").object());
}

/// The same when the process had been started with this environment.
std::map<std::string, std::string> ofAProcessStartedWith(std::vector<const char *> entries) {
    entries.push_back(nullptr);
    char name[] = "contract_tests";
    char *arguments[] = {name, nullptr};
    host::startFoundation(1, arguments, const_cast<char **>(entries.data()));
    return ofThisProcess();
}

} // namespace

TEST_F(Environment, IsADictionaryOfTheEntries) {
    answer() = [NSDictionary dictionaryWithObjectsAndKeys:@"/bin:/usr/bin", @"PATH", @"", @"EMPTY",
                                                          @"Grüße", @"ÜBER", nil];
    const host::ObjectRef dictionary = read().object();
    EXPECT_EQ(loaded.host.className(dictionary), "Dictionary");
    EXPECT_EQ(texts(dictionary), (std::map<std::string, std::string>{
                                     {"PATH", "/bin:/usr/bin"}, {"EMPTY", ""}, {"ÜBER", "Grüße"}}));
}

TEST_F(Environment, IsReadAndConvertedByTheseStepsAlone) {
    answer() = [NSDictionary dictionaryWithObject:@"v" forKey:@"k"];
    const host::ObjectRef dictionary = read().object();
    EXPECT_THAT(object->received, ElementsAre("environment"));
    EXPECT_THAT(
        loaded.host.calls(),
        ElementsAre(
            R"(PluginNewInstance("Dictionary") = Dictionary#2)",
            R"(REALBuildString("k", 1) = String#1)", "REALSetStringEncoding(String#1, 0x08000100)",
            "StringToVariant(String#1) = Variant#3", "REALUnlockString(String#1)",
            R"(REALBuildString("v", 1) = String#2)", "REALSetStringEncoding(String#2, 0x08000100)",
            "StringToVariant(String#2) = Variant#4", "REALUnlockString(String#2)",
            request("Dictionary#2", setterDeclaration), request("Dictionary#2", getterDeclaration),
            request("Dictionary#2", keyGetterDeclaration),
            "Dictionary.Value(Dictionary#2, Variant#3, Variant#4)", "REALUnlockObject(Variant#3)",
            "REALUnlockObject(Variant#4)"));
}

TEST_F(Environment, HasNilForATextThatCannotBeUTF8) {
    const CocoaString broken(u"a\xD800z");
    answer() = [NSDictionary dictionaryWithObject:(id) static_cast<CFStringRef>(broken)
                                           forKey:@"BROKEN"];
    EXPECT_THAT(entriesOf(read().object()), ElementsAre(R"("BROKEN": nil)"));
}

TEST_F(Environment, HandsOverOneReference) {
    answer() = [NSDictionary dictionaryWithObject:@"v" forKey:@"k"];
    const auto handle = readDirectly<host::ObjectHandle>(loaded.host, instance, "environment");
    EXPECT_EQ(loaded.host.references(handle), 1);
    const host::ObjectRef owner = host::ObjectRef::adopt(handle);
}

TEST_F(Environment, IsANewDictionaryOnEachReading) {
    answer() = [NSDictionary dictionaryWithObject:@"v" forKey:@"k"];
    const host::ObjectRef first = read().object();
    answer() = [NSDictionary dictionaryWithObject:@"w" forKey:@"k"];
    const host::ObjectRef second = read().object();
    EXPECT_NE(first.handle(), second.handle());
    EXPECT_THAT(entriesOf(first), ElementsAre(R"("k": "v")"));
    EXPECT_THAT(entriesOf(second), ElementsAre(R"("k": "w")"));
}

TEST_F(Environment, IsAnEmptyDictionaryForAnEmptyOne) {
    answer() = [NSDictionary dictionary];
    EXPECT_THAT(entriesOf(read().object()), IsEmpty());
}

TEST_F(Environment, IsNilForNil) {
    EXPECT_TRUE(read().isNil());
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST_F(Environment, IsNilWithoutAnExceptionWhenTheHostHasNoDictionary) {
    answer() = [NSDictionary dictionaryWithObject:@"v" forKey:@"k"];
    loaded.host.hideClass("Dictionary");
    const auto outcome = read();
    EXPECT_FALSE(outcome.raised());
    EXPECT_TRUE(outcome.isNil());
}

TEST_F(Environment, IsNilWithTheHostsExceptionWhenAnEntryRaises) {
    const OwnObject<RefusingNumber> refusing;
    answer() = [NSDictionary dictionaryWithObject:refusing forKey:@"k"];
    const auto outcome = read();
    ASSERT_TRUE(outcome.raised());
    EXPECT_TRUE(outcome.value.isNil());
    EXPECT_EQ(outcome.exception->className, "NSExceptionZKT");
    EXPECT_EQ(outcome.exception->cocoaName, "Refused");
    EXPECT_EQ(outcome.exception->cocoaReason, "objCType");
    EXPECT_EQ(loaded.host.account().liveObjects, 2u) << "the instance and the exception";
}

TEST(EnvironmentOfThisProcess, IsTheOneThatItWasStartedWith) {
    std::map<std::string, std::string> expected;
    for (char **entry = environ; *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        const std::size_t sign = text.find('=');
        if (sign != std::string_view::npos)
            expected.emplace(text.substr(0, sign), text.substr(sign + 1));
    }
    EXPECT_EQ(ofThisProcess(), expected);
}

TEST(EnvironmentOfThisProcess, HasEqualsSignsInItsValues) {
    EXPECT_EQ(
        ofAProcessStartedWith({"OPTIONS=a=b=c", "SIGN==", "EMPTY="}),
        (std::map<std::string, std::string>{{"OPTIONS", "a=b=c"}, {"SIGN", "="}, {"EMPTY", ""}}));
}

// Foundation takes an entry without a sign for no entry, and one without a name for one.
TEST(EnvironmentOfThisProcess, HasWhatFoundationTakesForEntries) {
    EXPECT_EQ(ofAProcessStartedWith({"NONE", "PLAIN=x", "=z", "TWICE=1", "TWICE=2"}),
              (std::map<std::string, std::string>{{"PLAIN", "x"}, {"", "z"}, {"TWICE", "2"}}));
}

TEST(EnvironmentOfThisProcess, HasEntriesOfAnyLength) {
    const std::string value(100'000, 'v');
    EXPECT_EQ(ofAProcessStartedWith({("LONG=" + value).c_str()}),
              (std::map<std::string, std::string>{{"LONG", value}}));
}

TEST(EnvironmentOfThisProcess, MayBeEmpty) {
    EXPECT_THAT(ofAProcessStartedWith({}), IsEmpty());
}
