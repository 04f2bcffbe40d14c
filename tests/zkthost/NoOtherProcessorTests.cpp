// --arch of another processor than this zkthost's, where no zkthost runs for that.

#include "Slices.h"
#include "Zkthost.h"

#include <gtest/gtest.h>

TEST(OtherProcessor, IsRefused) {
    const std::string ownName{ownProcessor.name};
    const std::string otherName{otherProcessor.name};
    expectBadInput(zkthost({"report", "--arch", otherName}),
                   "--arch " + otherName + ": this zkthost is for " + ownName +
                       ", and this system has no other");
}
