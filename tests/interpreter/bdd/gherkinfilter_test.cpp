#include "interpreter/bdd/gherkinfilter.h"

#include <gtest/gtest.h>

#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tags = std::vector<std::string>;

/// The tags of scenarios in a file, as they are asked one after the other.
const std::vector<Tags> scenarios = {{"a"}, {}, {"b", "c"}, {"a", "c"}, {"b"}, {}};

/// The numbers of the scenarios that run, or the error.
std::string chosen(const QStringList& tagArgs, const std::vector<unsigned>& indices = {}) {
    QString error;
    const std::unique_ptr<GherkinFilter> filter = gherkinFilterByArgs(tagArgs, indices, &error);
    if (!filter)
        return "error: " + error.toStdString();
    EXPECT_EQ(error, "");
    std::string numbers;
    for (std::size_t i = 0; i < scenarios.size(); ++i) {
        if (filter->shouldExecuteScenarioWithTags(scenarios[i]))
            numbers += std::to_string(i);
    }
    return numbers;
}

TEST(GherkinFilters, ChooseByTags) {
    const struct {
        QStringList tagArgs;
        const char* expected;
    } rows[] = {
        {{}, "012345"},
        {{"a"}, "03"},
        {{"@a"}, "03"},
        {{"A"}, ""},
        {{"a,b"}, "0234"},
        {{",a,"}, "03"},
        {{"@a,@b", "~@c"}, "04"},
        {{"~a"}, "1245"},
        {{"~@a,c"}, "12345"},
        {{"untagged"}, "15"},
        {{"@untagged,b"}, "1245"},
        {{","}, ""},
        {{""}, ""},
        {{"~untagged"}, "error: ~ operator is not supported for reserved tag: ~untagged"},
        {{"a", "b,~@untagged"}, "error: ~ operator is not supported for reserved tag: ~@untagged"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(chosen(row.tagArgs), row.expected) << row.tagArgs.join("|").toStdString();
}

TEST(GherkinFilters, CountTheQuestionsThatReachThem) {
    EXPECT_EQ(chosen({}, {3}), "3");
    EXPECT_EQ(chosen({}, {9}), "");
    EXPECT_EQ(chosen({"untagged"}, {1}), "5") << "only what passes the tags is counted";
    // The second number misses the question at which the first one holds.
    EXPECT_EQ(chosen({}, {0, 2}), "03");
    EXPECT_EQ(chosen({}, {2, 0}), "02");
}

}  // namespace
}  // namespace Tamrix
