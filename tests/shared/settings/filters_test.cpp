#include "shared/settings/filters.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "support/environmentguard.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::writeFile;

class Filters : public testing::Test {
protected:
    static int count(const FilterList& list) { return static_cast<int>(list.size()); }

    QTemporaryDir folder;
    const Tamrix::Test::EnvironmentGuard guard{"TAMRIX_USER_SETTINGS_DIR", folder.path()};
    FilterList list;
};

TEST_F(Filters, BuiltInOnesAreOfKindZero) {
    loadSpyFilters(list);
    EXPECT_EQ(count(list), 46);
    EXPECT_EQ(list.front().rule(), "*:QGuardedPtrPrivate");
    EXPECT_EQ(list.back().rule(), "* *_QMLTYPE_*::__*");
    const struct {
        const char* name;
        bool isFiltered;
    } rows[] = {
        {"x:QObject", true},
        // The whole name counts, and its case.
        {"x:QObjectFoo", false},
        {"x:qobject", false},
        {"x:QPlatformDrag", true},
        {"x:QPushButton", false},
        // The one regular expression.
        {"x:QVBoxLayout", true},
        {"x:QQuickLayout", false},
        {"x:QLayoutItem", false},
        {"___tamrix_helper:Anything", true},
        {"int QWidget::backgroundRole", true},
        {"int Button_QMLTYPE_3::__style", true},
        {"", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(filterListMatch(list, row.name, 0), row.isFiltered) << row.name;
        EXPECT_FALSE(filterListMatch(list, row.name, 1)) << row.name;
        EXPECT_FALSE(filterListMatch(list, row.name, 2)) << row.name;
        // A kind that has no switch is every filter's.
        for (const int kind : {-1, 3})
            EXPECT_EQ(filterListMatch(list, row.name, kind), row.isFiltered) << row.name;
    }

    list.clear();
    loadVisionFilters(list);
    EXPECT_EQ(count(list), 1);
    EXPECT_TRUE(filterListMatch(list, "x:QDesktopWidget", 0));
    EXPECT_FALSE(filterListMatch(list, "x:QDesktopWidget", 1));
}

TEST_F(Filters, AFileOfTheUserTakesTheirPlace) {
    ASSERT_TRUE(writeFile(folder.filePath("spyfilter"),
                          "*:QFoo\tfalse\ttrue\tTRUE\n"
                          "\n"
                          "too\tfew\tfields\n"
                          "*:Q\t\t\ttrue\t\ttrue\ttrue\r\n"
                          "a+\ttrue\tfalse\tfalse\ttrue\tmore\n"
                          "b+\ttrue\tfalse\tfalse\tfalse\n"
                          "*:\xc3\xa4\ttrue\tfalse\tfalse"));
    loadSpyFilters(list);
    EXPECT_EQ(count(list), 5);
    const struct {
        const char* name;
        bool isFiltered[Filter::kinds];
    } rows[] = {
        {"x:QFoo", {false, true, false}},    {"x:Q", {true, true, true}},
        {"aaa", {true, false, false}},       {"a+", {false, false, false}},
        {"b+", {true, false, false}},        {"x:\xc3\xa4", {true, false, false}},
        {"x:QTimer", {false, false, false}},
    };
    for (const auto& row : rows) {
        for (int kind = 0; kind < Filter::kinds; ++kind)
            EXPECT_EQ(filterListMatch(list, row.name, kind), row.isFiltered[kind])
                << row.name << ' ' << kind;
    }

    // An empty file filters nothing.
    list.clear();
    ASSERT_TRUE(writeFile(folder.filePath("visionfilter"), ""));
    loadVisionFilters(list);
    EXPECT_EQ(count(list), 0);
    EXPECT_FALSE(loadFiltersFromFile(list, folder.filePath("none")));
}

}  // namespace
}  // namespace Tamrix
