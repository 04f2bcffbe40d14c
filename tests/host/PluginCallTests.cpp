// Who of a plug-in is at work.

#include "FakePlugin.h"

#include "host/core/PluginCall.h"

#include <optional>
#include <stdexcept>

namespace {

using namespace host;

std::string wordsOf(const PluginCall *call) {
    std::string text;
    if (call != nullptr)
        for (const std::string_view word : call->words())
            text += word;
    return text;
}

std::vector<std::string> seen;

void look(ObjectHandle) {
    seen.push_back(wordsOf(PluginCall::current()));
}
std::int64_t lookAndAnswer(ObjectHandle, std::int64_t) {
    look(nullptr);
    return 7;
}
void lookAndTake(ObjectHandle, std::int64_t, std::int64_t) {
    look(nullptr);
}
void lookShared() {
    look(nullptr);
}
void makeAnother(ObjectHandle) {
    unlockObject(pluginNewInstance("Watched"));
    look(nullptr);
}
void throwUp(ObjectHandle) {
    throw std::runtime_error("up");
}
void makeWhatThrows(ObjectHandle) {
    EXPECT_THROW(pluginNewInstance("Throwing"), std::runtime_error);
    seen.push_back(PluginCall::thrower().value_or("nobody"));
}

class PluginCalls : public testing::Test {
protected:
    PluginCalls() {
        seen.clear();
        watched.record.constructor = look;
        watched.record.destructor = look;
        watched.properties = {
            property("size", "Integer", pointer(lookAndAnswer), pointer(lookAndTake))};
        watched.methods = {method("act", pointer(look)), method("make", pointer(makeAnother)),
                           method("throwUp", pointer(throwUp)),
                           method("catchIt", pointer(makeWhatThrows))};
        watched.sharedMethods = {method("shared", pointer(lookShared))};
        watched.registerClass();
        throwing.record.constructor = throwUp;
        throwing.registerClass();
    }

    FakeClass watched{"Watched"};
    FakeClass throwing{"Throwing"};
    Host host;
};

} // namespace

TEST_F(PluginCalls, AreNamedAsProgramsWriteThem) {
    {
        const ObjectRef object = host.newInstance("Watched");
        host.get(object, "size").result();
        host.set(object, "size", Value(1)).result();
        host.call(object, "ACT").result();
        host.callShared("Watched", "shared").result();
    }
    EXPECT_EQ(seen, (std::vector<std::string>{"New Watched", "Watched.size", "setting Watched.size",
                                              "Watched.act", "Watched.shared",
                                              "the destructor of Watched"}));
    EXPECT_EQ(PluginCall::current(), nullptr);
}

TEST_F(PluginCalls, AreTheInnermost) {
    const ObjectRef object = host.newInstance("Watched");
    seen.clear();
    host.call(object, "make").result();
    EXPECT_EQ(seen, (std::vector<std::string>{"New Watched", "the destructor of Watched",
                                              "Watched.make"}));
}

TEST_F(PluginCalls, AreKnownByTheExceptionThatLeftThem) {
    const ObjectRef object = host.newInstance("Watched");
    EXPECT_EQ(PluginCall::thrower(), std::nullopt);
    EXPECT_THROW(host.call(object, "throwUp"), std::runtime_error);
    EXPECT_EQ(PluginCall::thrower(), "Watched.throwUp");
    EXPECT_EQ(PluginCall::current(), nullptr);
    EXPECT_THROW(host.newInstance("Throwing"), std::runtime_error);
    EXPECT_EQ(PluginCall::thrower(), "New Throwing");
    host.call(object, "act").result();
    EXPECT_EQ(PluginCall::thrower(), std::nullopt);
}

TEST_F(PluginCalls, AreKnownWhenTheirExceptionRanADestructor) {
    const auto callAndDestroy = [&] {
        const ObjectRef object = host.newInstance("Watched");
        seen.clear();
        host.call(object, "throwUp");
    };
    EXPECT_THROW(callAndDestroy(), std::runtime_error);
    EXPECT_EQ(seen, std::vector<std::string>{"the destructor of Watched"});
    EXPECT_EQ(PluginCall::thrower(), "Watched.throwUp");
}

TEST_F(PluginCalls, AreNotTheSourceOfWhatAPluginCaught) {
    const ObjectRef object = host.newInstance("Watched");
    seen.clear();
    host.call(object, "catchIt").result();
    EXPECT_EQ(seen, std::vector<std::string>{"New Throwing"});
    EXPECT_EQ(PluginCall::thrower(), std::nullopt);
}

TEST_F(PluginCalls, AreNotTheSourceOfTheHostsOwnExceptions) {
    const ObjectRef object = host.newInstance("Watched");
    EXPECT_THROW(host.call(object, "act", {Value(1)}), UsageError);
    EXPECT_THROW(host.set(object, "size", Value("text")), UsageError);
    EXPECT_EQ(PluginCall::thrower(), std::nullopt);
}
