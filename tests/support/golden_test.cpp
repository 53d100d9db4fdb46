#include "support/golden.h"

#include "support/printqt.h"

namespace Tamrix::Test {

TEST(LineDifference, ShowsOnlyWhatDiffersAndItsSurroundings) {
    EXPECT_EQ(lineDifference("1\n2\n3\n4\n5\n6\n7", "1\n2\n3\n4\nfive\n6\n7\n8"),
              "...\n 3\n 4\n-5\n+five\n 6\n 7\n+8");
    EXPECT_EQ(lineDifference("same", "same"), "");
    EXPECT_TRUE(lineDifference("", QString("line\n").repeated(1000)).endsWith("left out)"));
}

TEST(Normaliser, ReplacesPathsTimesAndDurations) {
    const Normaliser normaliser =
        Normaliser().path("/tmp/x/suite", "<SUITE>").path("/tmp/x", "<PREFIX>").times().durations();
    const struct {
        QString text;
        QString wanted;
    } rows[] = {
        {"/tmp/x/suite/case/test.py:3", "<SUITE>/case/test.py:3"},
        {"/tmp/x/suite_other, /tmp/x/bin", "<PREFIX>/suite_other, <PREFIX>/bin"},
        {"/tmp/xy", "/tmp/xy"},
        {"at 2024-02-03T04:05:06.789+01:00 or 04:05:06", "at <TIME> or <TIME>"},
        {"in 12 ms, 1.5s", "in <DURATION> ms, <DURATION>s"},
        {"<testcase time=\"0.012\">", "<testcase time=\"<DURATION>\">"},
        {"{\"duration\":12,\"line\":3}", "{\"duration\":<DURATION>,\"line\":3}"},
        {"3 passed, 2 sections", "3 passed, 2 sections"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(normaliser(row.text), row.wanted);
}

TEST(Golden, NamesAMissingFileAndShowsTheText) {
    if (qEnvironmentVariableIsSet("TAMRIX_UPDATE_GOLDEN"))
        GTEST_SKIP() << "the file would be written";
    const testing::AssertionResult result = compareWithGolden("no/such/file.txt", "some text");
    EXPECT_FALSE(result);
    EXPECT_NE(std::string(result.message()).find("tests/golden/no/such/file.txt"),
              std::string::npos);
    EXPECT_NE(std::string(result.message()).find("some text"), std::string::npos);
}

}  // namespace Tamrix::Test
