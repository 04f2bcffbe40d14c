#include "JUnitReport.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <unistd.h>

namespace {

std::string written(const JUnitReport &report) {
    const auto folder =
        std::filesystem::temp_directory_path() / ("junit-" + std::to_string(getpid()));
    report.write(folder / "inner" / "report.xml", "a \"label\"", 1.5);
    std::ifstream stream(folder / "inner" / "report.xml");
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    std::filesystem::remove_all(folder);
    return text;
}

} // namespace

TEST(JUnitReport, CountsAndNamesWhatCameOfTheTests) {
    JUnitReport report;
    report.addPassed("Suite.Passes", 0.25);
    report.addSkipped("Suite.Waits", 0);
    report.addFailed("Suite.Fails/1", 2, "ended with status 1", "is <4> & not \"5\"\x1B[0m \xFF\n");
    EXPECT_EQ(
        written(report),
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<testsuite name=\"a &quot;label&quot;\" tests=\"3\" failures=\"1\" skipped=\"1\" "
        "time=\"1.500000\">\n"
        "  <testcase classname=\"Suite\" name=\"Passes\" time=\"0.250000\"/>\n"
        "  <testcase classname=\"Suite\" name=\"Waits\" time=\"0.000000\"><skipped/></testcase>\n"
        "  <testcase classname=\"Suite\" name=\"Fails/1\" time=\"2.000000\"><failure "
        "message=\"ended with status 1\">is &lt;4&gt; &amp; not &quot;5&quot;?[0m ?\n"
        "</failure></testcase>\n"
        "</testsuite>\n");
}

TEST(JUnitReport, NamesAFileThatCannotBeWritten) {
    EXPECT_THAT(
        [] { JUnitReport().write("/dev/null/report.xml", "label", 0); },
        testing::ThrowsMessage<std::runtime_error>("/dev/null/report.xml: cannot be written"));
}
