// --arch of this zkthost's own processor.

#include "Slices.h"
#include "Zkthost.h"

#include <gmock/gmock.h>

namespace fs = std::filesystem;
using testing::HasSubstr;

static const std::string ownName{ownProcessor.name};
static const std::string otherName{otherProcessor.name};

TEST(OwnProcessor, IsTheDefault) {
    for (const ImageFile &image : images()) {
        const Finished run = zkthost({"describe", "--arch", ownName}, image.path);
        expectSuccess(run);
        EXPECT_EQ(run.out, zkthost({"describe"}, image.path).out);
    }
}

TEST(OwnProcessor, IsMissedInAFileForTheOther) {
    const Folder folder;
    const fs::path file =
        folder.write("other", sliceOf(readFile(macosImage().executable), otherProcessor));
    for (const std::vector<std::string> &command :
         {std::vector<std::string>{"report"}, {"report", "--arch", ownName}}) {
        const Finished run = zkthost(command, file);
        expectBadInput(run, file.string());
        EXPECT_THAT(run.err, HasSubstr(otherName));
        EXPECT_THAT(run.err, HasSubstr(ownName));
    }
}
