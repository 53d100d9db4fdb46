#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "shared/testdata/testdataset.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

TEST(DataSetFactory, FindsOutTheSeparator) {
    const QTemporaryDir folder;
    const struct {
        const char* name;
        const char* text;
        /// 0 for no table.
        char separator;
    } rows[] = {
        {"a.txt", "a,b", ','},
        {"a.txt", "abc", 0},
        {"a.txt", "", 0},
        {"a.txt", "a,b;c\nd,e;f", ','},
        {"a.txt", "a;b;c\nd;e;f", ';'},
        {"a.txt", "a\tb;c\nd\te;f", ';'},
        {"a.txt", "a\tb\tc,d", '\t'},
        {"a.txt", "a,b\na,b,c", 0},
        {"a.csv", "a,b\na,b,c", ','},
        {"a.CSV", "a,b\na,b,c", 0},
        {"a.csv", "a;b\na;b\na,b;c\na", ';'},
        {"a.tsv", "a,b\n1,2", '\t'},
        {"a.csv", "\"a,b\";c", ';'},
        {"a.csv", "a;b\n\nx", ';'},
    };
    for (const auto& row : rows) {
        ASSERT_TRUE(writeFile(folder.filePath(row.name), row.text));
        testing::internal::CaptureStderr();
        const SharedPtr<TestDataSet> set(TestDataSet::createTestDataSet(folder.filePath(row.name)));
        testing::internal::GetCapturedStderr();
        EXPECT_EQ(set ? set->getSep() : 0, row.separator) << row.name << ": " << row.text;
    }
    testing::internal::CaptureStderr();
    const SharedPtr<TestDataSet> none(TestDataSet::createTestDataSet(folder.filePath("none.csv")));
    testing::internal::GetCapturedStderr();
    ASSERT_TRUE(none);
    EXPECT_EQ(none->header()->valueAsString(0), "1");
    EXPECT_EQ(none->count(), 0);
}

TEST(DataSetFactory, TablesAreWritten) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.csv");
    ASSERT_TRUE(writeFile(path, "a,b,c,d\n1,\"x\"\"y\n\"\n\"\"\n"));
    testing::internal::CaptureStderr();
    const SharedPtr<TestDataSet> set(TestDataSet::createTestDataSet(path));
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(set->save(folder.filePath("b.csv")));
    const QByteArray saved = "\"a\",\"b\",\"c\",\"d\"\n\"1\",\"x\"\"y\n\",,\n\"\",,,\n";
    EXPECT_EQ(readFile(folder.filePath("b.csv")), saved);
    set->removeField(0);
    EXPECT_EQ(set->fieldIndex("b"), 1);
    EXPECT_EQ(set->record(0)->valueAsString(0), "x\"y\n");
    EXPECT_TRUE(set->save({}));
    EXPECT_EQ(readFile(path), "\"b\",\"c\",\"d\"\n\"x\"\"y\n\",,\n\"\",,\n");
    EXPECT_FALSE(set->save(folder.filePath("none/c.csv")));
    EXPECT_FALSE(set->save("/dev/full"));
    EXPECT_FALSE(SharedPtr<TestDataSet>(new TestDataSet("a", ',', true))->save(path));
}

}  // namespace
}  // namespace Tamrix
