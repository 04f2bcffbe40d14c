// --arch of another processor than this zkthost's: the zkthost that was built for that goes on.

#include "Json.h"
#include "Slices.h"
#include "Zkthost.h"

#include <gmock/gmock.h>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

const std::string ownName{ownProcessor.name};
const std::string otherName{otherProcessor.name};

/// A folder of builds with this zkthost and, for the other processor, a script in its place.
class Builds {
public:
    Builds() {
        fs::create_directory(folder_.path() / "here");
        fs::copy_file(ZKTHOST_PROGRAM, program());
        fs::create_directory(other());
    }

    [[nodiscard]] fs::path other() const { return folder_.path() / OTHER_BUILD; }
    void write(const char *name, const std::string &script) const {
        const fs::path file =
            folder_.write((fs::path(OTHER_BUILD) / name).string(), "#!/bin/sh\n" + script);
        fs::permissions(file, fs::perms::owner_all);
    }
    [[nodiscard]] Finished run(const std::vector<std::string> &arguments) const {
        return runProgram(program(), arguments);
    }

private:
    [[nodiscard]] fs::path program() const { return folder_.path() / "here" / "zkthost"; }
    const Folder folder_;
};

class OtherZkthost : public testing::Test {
protected:
    const Builds builds;
};

} // namespace

TEST_F(OtherZkthost, IsGivenTheSameArguments) {
    builds.write("zkthost", "printf '<%s>' \"$@\"\nexit 3\n");
    const std::string last = isEmulated() ? "b" : "\xFC"; // that is no UTF-8
    const Finished run =
        builds.run({"run", "--arch", otherName, "--trace", "a file", "", "--arch", last});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.out, "<run><--arch><" + otherName + "><--trace><a file><><--arch><" + last + ">");
    EXPECT_EQ(run.err, "");
}

TEST_F(OtherZkthost, IsEmulatedWhereItsBuildSaysHow) {
    builds.write("zkthost", "echo not so\n");
    builds.write("emulate", "echo \"$@\"\n");
    const Finished run = builds.run({"report", "--arch=" + otherName});
    EXPECT_EQ(run.out,
              (builds.other() / "zkthost").string() + " report --arch=" + otherName + "\n");
}

TEST_F(OtherZkthost, ThatIsNotBuiltIsNamedWithWhatBuildsIt) {
    const Finished run = builds.run({"report", "--arch", otherName});
    expectBadInput(run, "--arch " + otherName + ": this zkthost is for " + ownName +
                            ", and there is no " + (builds.other() / "zkthost").string());
    EXPECT_THAT(run.err, HasSubstr(OTHER_BUILD_COMMAND));
}

TEST_F(OtherZkthost, ThatCannotBeStartedIsNamed) {
    fs::create_directory(builds.other() / "zkthost");
    expectBadInput(builds.run({"report", "--arch", otherName}),
                   (builds.other() / "zkthost").string() + " cannot be started: ");
}

TEST_F(OtherZkthost, IsNotNeededForHelp) {
    expectSuccess(builds.run({"report", "--arch", otherName, "--help"}));
}

TEST_F(OtherZkthost, RunsItsPartOfTheBundle) {
    const fs::path build = fs::path(ZKTHOST_PROGRAM).parent_path().parent_path() / OTHER_BUILD;
    if (!fs::exists(build / "zkthost"))
        GTEST_SKIP() << "not built: " << build / "zkthost";
    const Finished run =
        runProgram(ZKTHOST_PROGRAM, {"report", "--format", "json", "--arch", otherName, "--image",
                                     macosImage().path.string()});
    expectSuccess(run);
    EXPECT_EQ(stringMember(parsedJson(run.out), "processor"), otherName);
}
