// CFString2RBString, its buffers and its failures: what is allocated, offered, freed, and when it
// gives up.

#include "AllocationSpy.h"
#include "Caught.h"
#include "CocoaText.h"
#include "CoreFoundationSpy.h"

#include <gmock/gmock.h>

#include <memory>
#include <new>
#include <stdexcept>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// The string is made before its conversion is watched.
class CocoaBuffer : public CocoaText {
protected:
    const CocoaString onStack{repeated(u"x", 99)};
    const CocoaString onHeap{repeated(u"x", 100)};
};

} // namespace

TEST_F(CocoaBuffer, IsNotAllocatedUnderAHundredUnits) {
    for (const std::size_t length : {1u, 50u, 98u, 99u}) {
        const CocoaString string(repeated(u"\u4E16", length));
        const AllocationSpy spy(loaded.image);
        EXPECT_EQ(loaded.host.bytes(convert(string)).size(), 3 * length);
        EXPECT_THAT(spy.sizes(), IsEmpty());
    }
}

TEST_F(CocoaBuffer, IsAllocatedOnceWithSixBytesPerUnitFromAHundredUnitsOn) {
    for (const std::size_t length : {100u, 101u, 255u, 4096u}) {
        const CocoaString string(repeated(u"x", length));
        const AllocationSpy spy(loaded.image);
        EXPECT_EQ(loaded.host.bytes(convert(string)).size(), length);
        EXPECT_THAT(spy.sizes(), ElementsAre(6 * length));
        EXPECT_EQ(spy.unfreed(), 0u);
    }
}

TEST_F(CocoaBuffer, OnTheStackOffersSixHundredBytes) {
    for (const std::size_t length : {1u, 99u}) {
        const CocoaString string(repeated(u"x", length));
        const CoreFoundationSpy spy(loaded.image);
        convert(string);
        EXPECT_THAT(spy.calls(),
                    ElementsAre("CFStringGetLength", "CFStringGetCString(600, 0x08000100)"));
    }
}

TEST_F(CocoaBuffer, OnTheHeapOffersAllOfIt) {
    for (const std::size_t length : {100u, 101u, 1000u}) {
        const CocoaString string(repeated(u"x", length));
        const CoreFoundationSpy spy(loaded.image);
        convert(string);
        EXPECT_THAT(spy.calls(), ElementsAre("CFStringGetLength", "CFStringGetCString(" +
                                                                      std::to_string(6 * length) +
                                                                      ", 0x08000100)"));
    }
}

TEST_F(CocoaBuffer, ThatCannotBeAllocatedGivesNilWithoutAHostCall) {
    AllocationSpy spy(loaded.image);
    spy.failAll();
    EXPECT_EQ(convert(onHeap).handle(), nullptr);
    EXPECT_THAT(spy.sizes(), ElementsAre(600u));
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST_F(CocoaBuffer, OnTheStackNeedsNoMemory) {
    AllocationSpy spy(loaded.image);
    spy.failAll();
    EXPECT_EQ(loaded.host.bytes(convert(onStack)).size(), 99u);
}

TEST_F(CocoaBuffer, IsFreedWhenTheTextCannotBeConverted) {
    CoreFoundationSpy foundation(loaded.image);
    foundation.refuseConversion();
    const AllocationSpy spy(loaded.image);
    EXPECT_EQ(convert(onHeap).handle(), nullptr);
    EXPECT_THAT(spy.sizes(), ElementsAre(600u));
    EXPECT_EQ(spy.unfreed(), 0u);
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST_F(CocoaBuffer, OnTheStackGivesNilWhenTheTextCannotBeConverted) {
    CoreFoundationSpy foundation(loaded.image);
    foundation.refuseConversion();
    EXPECT_EQ(convert(onStack).handle(), nullptr);
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST_F(CocoaBuffer, IsNotNeededForALengthOfZeroOrLess) {
    for (const long length : {0L, -1L, std::numeric_limits<long>::min()}) {
        CoreFoundationSpy foundation(loaded.image);
        foundation.answerLength(length);
        const AllocationSpy spy(loaded.image);
        EXPECT_EQ(convert(onHeap).handle(), nullptr);
        EXPECT_THAT(foundation.calls(), ElementsAre("CFStringGetLength"));
        EXPECT_THAT(spy.sizes(), IsEmpty());
    }
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST_F(CocoaBuffer, IsNotAllocatedForALengthThatNoTextHas) {
    constexpr long largest = std::numeric_limits<long>::max() / 6;
    // Six times the second one is 2 for an unsigned number of 64 bits.
    for (const long length :
         {largest + 1, 0x2AAA'AAAA'AAAA'AAAB, std::numeric_limits<long>::max()}) {
        CoreFoundationSpy foundation(loaded.image);
        foundation.answerLength(length);
        const AllocationSpy spy(loaded.image);
        EXPECT_EQ(convert(onHeap).handle(), nullptr);
        EXPECT_THAT(foundation.calls(), ElementsAre("CFStringGetLength"));
        EXPECT_THAT(spy.sizes(), IsEmpty());
    }
    EXPECT_THAT(loaded.host.trace(), IsEmpty());
}

TEST_F(CocoaBuffer, OfALengthThatOnlyMemoryForbidsIsAskedFor) {
    constexpr long largest = std::numeric_limits<long>::max() / 6;
    CoreFoundationSpy foundation(loaded.image);
    foundation.answerLength(largest);
    AllocationSpy spy(loaded.image);
    spy.failAll();
    EXPECT_EQ(convert(onHeap).handle(), nullptr);
    EXPECT_THAT(spy.sizes(), ElementsAre(6 * static_cast<std::size_t>(largest)));
}

TEST_F(CocoaBuffer, IsFreedWhenTheHostCannotBuildStrings) {
    loaded.host.services().hide("REALBuildString");
    const AllocationSpy spy(loaded.image);
    EXPECT_EQ(convert(onHeap).handle(), nullptr);
    EXPECT_THAT(spy.sizes(), ElementsAre(600u));
    EXPECT_EQ(spy.unfreed(), 0u);
    EXPECT_THAT(loaded.host.trace(), ElementsAre("miss REALBuildString"));
}

TEST_F(CocoaBuffer, IsFreedWhenTheHostsFailureIsRaised) {
    loaded.host.services().fail("REALBuildString", [failed = std::make_shared<bool>(false)] {
        if (!std::exchange(*failed, true))
            throw std::bad_alloc();
    });
    const AllocationSpy spy(loaded.image);
    EXPECT_EQ(convert(onHeap).handle(), nullptr);
    EXPECT_EQ(spy.unfreed(), 0u);
    EXPECT_EQ(loaded.host.takePendingException()->className, "OutOfMemoryException");
}

// The host fails once more while its first failure is being raised: that one leaves the plug-in.
TEST_F(CocoaBuffer, IsFreedWhenAnExceptionPassesThrough) {
    loaded.host.services().fail("REALBuildString", [failed = std::make_shared<bool>(false)] {
        if (!std::exchange(*failed, true))
            throw std::bad_alloc();
    });
    loaded.host.services().fail("PluginNewInstance", [] { throw std::runtime_error("again"); });
    const AllocationSpy spy(loaded.image);
    EXPECT_EQ(standardExceptionFrom([&] { convert(onHeap); }), "again");
    EXPECT_THAT(spy.sizes(), ElementsAre(600u));
    EXPECT_EQ(spy.unfreed(), 0u);
    loaded.host.shutDown();
    EXPECT_THAT(loaded.host.violations(), testing::IsEmpty());
}
