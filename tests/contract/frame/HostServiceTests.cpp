// The wrappers of the host's services by themselves, compiled into this program and bound by a
// resolver that counts.

#include "frame/HostServices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <ostream>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

std::map<std::string, void *> offered; // the services of this test's host
std::vector<std::string> asked;        // names that the resolver was asked for, in order

void *resolve(const char *name) {
    asked.emplace_back(name);
    const auto found = offered.find(name);
    return found == offered.end() ? nullptr : found->second;
}

template <class Value>
bool sameBits(const Value &left, const Value &right) {
    using Bytes = std::array<std::byte, sizeof(Value)>;
    return std::bit_cast<Bytes>(left) == std::bit_cast<Bytes>(right);
}

// A service of the host with this signature: keeps what it was called with and answers as told.
template <class Signature>
struct Service;

template <class Result, class... Arguments>
struct Service<Result(Arguments...)> {
    using Answer = std::conditional_t<std::is_void_v<Result>, std::monostate, Result>;

    static inline std::tuple<Arguments...> received{};
    static inline Answer answer{};
    static inline int calls = 0;

    static Result entryPoint(Arguments... arguments) {
        received = {arguments...};
        ++calls;
        if constexpr (!std::is_void_v<Result>)
            return answer;
    }
};

// One wrapper with arguments and an answer at the ends of their ranges. The signature stated here
// is the host's; the wrapper's own may not narrow it.
struct Wrapper {
    std::string name;
    std::string service;
    void *entryPoint;
    std::function<void()> unbind;
    std::function<bool()> call;     // whether it gave null, zero, false or nothing
    std::function<bool()> forwards; // whether arguments and answer got through unchanged
    std::function<int()> calls;     // that reached the service
};

void PrintTo(const Wrapper &wrapper, std::ostream *out) {
    *out << wrapper.name;
}

template <class Signature, class Slot, class... Arguments>
Wrapper wrapper(const char *name, Slot &slot, const char *service,
                typename Service<Signature>::Answer answer, Arguments... arguments) {
    using Host = Service<Signature>;
    const decltype(Host::received) sent{arguments...};
    const auto callSlot = [&slot, sent] {
        if constexpr (std::is_void_v<decltype(std::apply(slot, sent))>)
            std::apply(slot, sent);
        else
            return std::apply(slot, sent);
    };
    constexpr bool givesNothing = std::is_same_v<typename Host::Answer, std::monostate>;

    return {.name = name,
            .service = service,
            .entryPoint = reinterpret_cast<void *>(&Host::entryPoint),
            .unbind = [&slot, unbound = slot] { slot = unbound; },
            .call =
                [callSlot] {
                    if constexpr (givesNothing) {
                        callSlot();
                        return true;
                    } else {
                        return sameBits<typename Host::Answer>(callSlot(), {});
                    }
                },
            .forwards =
                [callSlot, sent, answer] {
                    Host::answer = answer;
                    bool sameAnswer = true;
                    if constexpr (givesNothing)
                        callSlot();
                    else
                        sameAnswer = sameBits<typename Host::Answer>(callSlot(), answer);
                    const bool sameArguments = [&]<std::size_t... Place>(
                                                   std::index_sequence<Place...>) {
                        return (sameBits(std::get<Place>(Host::received), std::get<Place>(sent)) &&
                                ...);
                    }(std::make_index_sequence<sizeof...(Arguments)>{});
                    return sameAnswer && sameArguments;
                },
            .calls = [] { return std::exchange(Host::calls, 0); }};
}

using Object = REALobjectStruct *;
using String = REALstringStruct *;
using Text = const char *;

// Addresses that nothing has and that no narrower type holds.
template <class Pointer>
Pointer address(std::uint64_t bits) {
    return reinterpret_cast<Pointer>(bits);
}
const auto object = address<Object>(0xFEDCBA9876543210);
const auto string = address<String>(0x8000000000000001);
const auto text = address<Text>(0xFFFFFFFFFFFFFFFF);
const auto data = address<void *>(0x7FFFFFFFFFFFFFFE);

constexpr auto least64 = std::numeric_limits<std::int64_t>::min();
constexpr auto most64 = std::numeric_limits<std::int64_t>::max();
constexpr auto least32 = std::numeric_limits<std::int32_t>::min();
constexpr auto most32 = std::numeric_limits<std::int32_t>::max();
constexpr std::uint32_t allOnes = 0xFFFFFFFF;
constexpr std::monostate nothing{};

const double quietNaN = std::bit_cast<double>(0xFFF8DEADBEEF0001);
const float negativeZero = -0.0F;

// Made before the first test runs, while every wrapper is still unbound.
const std::vector<Wrapper> &wrappers() {
    using Callback = void (*)(void *);
    static const std::vector<Wrapper> all = {
        wrapper<void(PluginClassRecord *)>("REALRegisterClass", REALRegisterClass,
                                           "PluginRegisterClass", nothing,
                                           address<PluginClassRecord *>(0xFEDCBA9876543210)),
        wrapper<Object(Text)>("REALnewInstance", REALnewInstance, "PluginNewInstance", object,
                              text),
        wrapper<void(Object)>("REALLockObject", REALLockObject, "REALLockObject", nothing, object),
        wrapper<void(Object)>("REALUnlockObject", REALUnlockObject, "REALUnlockObject", nothing,
                              object),
        wrapper<void(String)>("REALLockString", REALLockString, "REALLockString", nothing, string),
        wrapper<void(String)>("REALUnlockString", REALUnlockString, "REALUnlockString", nothing,
                              string),
        wrapper<void(Object)>("REALRaiseException", REALRaiseException, "RuntimeRaiseException",
                              nothing, object),
        wrapper<Object(String)>("REALNewVariantString", REALNewVariantString, "StringToVariant",
                                object, string),
        wrapper<Object(std::int64_t)>("REALNewVariantInteger", REALNewVariantInteger,
                                      "IntegerToVariant", object, least64),
        wrapper<Object(double)>("REALNewVariantDouble", REALNewVariantDouble, "DoubleToVariant",
                                object, quietNaN),
        wrapper<Object(bool)>("REALNewVariantBoolean", REALNewVariantBoolean, "BooleanToVariant",
                              object, true),
        wrapper<Object(std::uint32_t)>("REALNewVariantUInt32", REALNewVariantUInt32,
                                       "UInt32ToVariant", object, allOnes),
        wrapper<Object(float)>("REALNewVariantSingle", REALNewVariantSingle, "SingleToVariant",
                               object, negativeZero),
        wrapper<bool(Object, Text, std::int64_t)>(
            "REALSetPropValueInteger", REALSetPropValueInteger, "REALSetPropValueInteger", true,
            object, text, least64),
        wrapper<bool(Object, Text, String)>("REALSetPropValueString", REALSetPropValueString,
                                            "REALSetPropValueString", true, object, text, string),
        wrapper<bool(Object, Text, std::int64_t *)>(
            "REALGetPropValueInteger", REALGetPropValueInteger, "REALGetPropValueInteger", true,
            object, text, address<std::int64_t *>(0x8000000000000008)),
        wrapper<Object(std::int64_t, std::int64_t)>("REALCreateArray", REALCreateArray,
                                                    "RuntimeArrayCreateSingleDimBoundedArray",
                                                    object, most64, std::int64_t{-1}),
        wrapper<StringInsertProcedure *(Object)>(
            "REALInsertArrayValueString", REALInsertArrayValueString, "PluginStringArrayInsertProc",
            address<StringInsertProcedure *>(0xFEDCBA9876543210), object),
        wrapper<ObjectInsertProcedure *(Object)>(
            "REALInsertArrayValueObject", REALInsertArrayValueObject, "PluginObjectArrayInsertProc",
            address<ObjectInsertProcedure *>(0xFEDCBA9876543210), object),
        wrapper<void *(Object, Text)>("REALLoadObjectMethod", REALLoadObjectMethod,
                                      "REALLoadObjectMethod", data, object, text),
        wrapper<void *(void *, Text)>("REALLoadFrameworkMethod", REALLoadFrameworkMethod,
                                      "REALLoadGlobalMethod", data, data, text),
        wrapper<String(Text, std::int32_t)>("originalREALBuildString", originalREALBuildString,
                                            "REALBuildString", string, text, least32),
        wrapper<String(Text, std::int32_t, std::uint32_t)>(
            "REALBuildStringWithEncoding", REALBuildStringWithEncoding,
            "REALBuildStringWithEncoding", string, text, most32, allOnes),
        wrapper<String(String, std::uint32_t)>("REALConvertString", REALConvertString,
                                               "REALConvertString", string, string, allOnes),
        wrapper<void(String, std::uint32_t)>("REALSetStringEncoding", REALSetStringEncoding,
                                             "REALSetStringEncoding", nothing, string, allOnes),
        wrapper<std::uint32_t(String)>("REALGetStringEncoding", REALGetStringEncoding,
                                       "REALGetStringEncoding", allOnes, string),
        wrapper<void(void *)>("REALDisposeStringData", REALDisposeStringData,
                              "PluginDisposeStringData", nothing, data),
        wrapper<const __CFString *(String, std::int32_t)>(
            "REALGetStringCFString", REALGetStringCFString, "REALGetStringCFString",
            address<const __CFString *>(0xFEDCBA9876543210), string, std::int32_t{-1}),
        wrapper<const __CFString *(String, std::int32_t)>(
            "REALCopyStringCFString", REALCopyStringCFString, "REALGetStringCFString",
            address<const __CFString *>(0xFEDCBA9876543210), string, std::int32_t{-1}),
        wrapper<Object(const FSRef *, const HFSUniStr255 *)>(
            "REALFolderItemFromParentFSRef", REALFolderItemFromParentFSRef,
            "REALFolderItemFromParentFSRef", object, address<const FSRef *>(0xFFFFFFFFFFFFFFFF),
            address<const HFSUniStr255 *>(0x8000000000000001)),
        wrapper<Object(std::int32_t)>("REALNewMemoryBlockOriginal", REALNewMemoryBlockOriginal,
                                      "newMemoryBlock", object, least32),
        wrapper<void *(Object)>("REALMemoryBlockGetPtr", REALMemoryBlockGetPtr, "memoryBlockGetPtr",
                                data, object),
        wrapper<std::int64_t(Object)>("REALMemoryBlockGetSize", REALMemoryBlockGetSize,
                                      "memoryBlockGetSize", least64, object),
        wrapper<Object(Callback, void *)>("REALCallFunctionWithExceptionHandler",
                                          REALCallFunctionWithExceptionHandler,
                                          "PluginCallFunctionWithExceptionHandler", object,
                                          address<Callback>(0xFEDCBA9876543210), data),
    };
    return all;
}

class HostServiceWrapper : public testing::TestWithParam<Wrapper> {
protected:
    void SetUp() override {
        hostResolver = resolve;
        offered.clear();
        asked.clear();
        GetParam().unbind();
        GetParam().calls();
    }
    void offer() { offered[GetParam().service] = GetParam().entryPoint; }
};

} // namespace

TEST_P(HostServiceWrapper, LooksItsServiceUpByName) {
    offer();
    GetParam().call();
    EXPECT_THAT(asked, ElementsAre(GetParam().service));
}

TEST_P(HostServiceWrapper, LooksAFoundServiceUpOnce) {
    offer();
    for (int i = 0; i < 5; ++i)
        GetParam().call();
    EXPECT_THAT(asked, SizeIs(1));
    EXPECT_EQ(GetParam().calls(), 5);
}

TEST_P(HostServiceWrapper, KeepsAFoundServiceThatTheHostNoLongerOffers) {
    offer();
    GetParam().call();
    offered.clear();
    GetParam().call();
    EXPECT_THAT(asked, SizeIs(1));
    EXPECT_EQ(GetParam().calls(), 2);
}

TEST_P(HostServiceWrapper, LooksAMissingServiceUpAtEachCall) {
    for (int i = 0; i < 3; ++i)
        GetParam().call();
    EXPECT_THAT(asked, SizeIs(3));
    EXPECT_THAT(asked, Each(GetParam().service));
}

TEST_P(HostServiceWrapper, GivesNothingWhileItsServiceIsMissing) {
    EXPECT_TRUE(GetParam().call());
    EXPECT_TRUE(GetParam().call());
    EXPECT_EQ(GetParam().calls(), 0);
}

TEST_P(HostServiceWrapper, BindsAServiceThatAppears) {
    GetParam().call();
    offer();
    GetParam().call();
    GetParam().call();
    EXPECT_THAT(asked, SizeIs(2));
    EXPECT_EQ(GetParam().calls(), 2);
}

TEST_P(HostServiceWrapper, ForwardsArgumentsAndResultUnchanged) {
    offer();
    EXPECT_TRUE(GetParam().forwards()) << "at the call that binds";
    EXPECT_TRUE(GetParam().forwards()) << "at a later call";
    EXPECT_EQ(GetParam().calls(), 2);
}

INSTANTIATE_TEST_SUITE_P(Every, HostServiceWrapper, testing::ValuesIn(wrappers()),
                         [](const auto &tested) { return tested.param.name; });

TEST(HostServiceWrappers, OfOneServiceLookItUpEachForItself) {
    hostResolver = resolve;
    offered["REALGetStringCFString"] =
        reinterpret_cast<void *>(&Service<const __CFString *(String, std::int32_t)>::entryPoint);
    asked.clear();

    REALGetStringCFString(string, 0);
    REALCopyStringCFString(string, 0);
    REALGetStringCFString(string, 0);
    REALCopyStringCFString(string, 0);
    EXPECT_THAT(asked, ElementsAre("REALGetStringCFString", "REALGetStringCFString"));
}

TEST(HostServiceWrappers, HaveSlotsOfTheirOwn) {
    // Binding all but one leaves that one unbound.
    hostResolver = resolve;
    const auto &all = wrappers();
    for (const Wrapper &left : all) {
        SCOPED_TRACE(left.name);
        offered.clear();
        for (const Wrapper &other : all) {
            other.unbind();
            offered[other.service] = other.entryPoint;
        }
        for (const Wrapper &other : all)
            if (other.name != left.name)
                other.call();
        asked.clear();
        left.call();
        EXPECT_THAT(asked, ElementsAre(left.service));
    }
}
