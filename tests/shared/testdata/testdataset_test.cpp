#include "shared/testdata/testdataset.h"

#include <gtest/gtest.h>

#include "support/printqt.h"

namespace Tamrix {
namespace {

TestDataRecord* makeRecord(TestDataSet* set, int index, const QStringList& values) {
    auto* record = new TestDataRecord(set, index);
    for (const QString& value : values)
        record->addValue(value);
    return record;
}

QStringList valuesOf(const TestDataRecord* record) {
    QStringList values;
    for (int column = 0; column < record->count(); ++column)
        values.append(record->valueAsString(column));
    return values;
}

class TestDataSetTest : public testing::Test {
protected:
    TestDataSetTest() : set(new TestDataSet("data.tsv", '\t', false)) {
        set->setHeader(makeRecord(set.get(), -1, {"name", "age", "name"}));
        for (int row = 0; row < 3; ++row)
            set->addRecord(makeRecord(set.get(), row, {QString("n%1").arg(row), "1", "x"}));
    }

    SharedPtr<TestDataSet> set;
};

TEST_F(TestDataSetTest, FindsValuesByFieldAndColumn) {
    EXPECT_EQ(set->fieldIndex("name"), 2) << "of two equal names the later wins";
    EXPECT_EQ(set->fieldIndex("none"), -1);
    const TestDataRecord* record = set->record(1);
    EXPECT_EQ(record->valueAsString("age"), "1");
    EXPECT_EQ(record->valueAsString(0), "n1");
    EXPECT_TRUE(record->valueAsString("none").isNull());
    EXPECT_TRUE(record->valueAsString(-1).isNull());
    EXPECT_TRUE(record->valueAsString(3).isNull());
}

TEST_F(TestDataSetTest, GrowsARecordWithEmptyValues) {
    TestDataRecord* record = set->record(0);
    record->setValue(4, "late");
    record->setValue(-1, "nowhere");
    EXPECT_EQ(valuesOf(record), (QStringList{"n0", "1", "x", "", "late"}));
    EXPECT_FALSE(record->valueAsString(3).isNull());
}

TEST_F(TestDataSetTest, RecordsKeepTheirNumber) {
    set->removeRecord(0);
    set->removeRecord(7);
    ASSERT_EQ(set->count(), 2);
    EXPECT_EQ(set->record(0)->index(), 1);

    set->insertRecord(makeRecord(set.get(), 9, {"new"}), 1);
    set->insertRecord(makeRecord(set.get(), 10, {"no append"}), 3);
    ASSERT_EQ(set->count(), 3);
    EXPECT_EQ(set->record(1)->index(), 9);
    EXPECT_EQ(set->record(3), nullptr);
    EXPECT_EQ(set->record(-1), nullptr);
}

TEST_F(TestDataSetTest, FieldNamesStayUntilTheHeaderIsSetAgain) {
    set->removeField(0);
    EXPECT_EQ(valuesOf(set->record(0)), (QStringList{"1", "x"}));
    EXPECT_EQ(set->fieldIndex("age"), 1);
    set->insertField(1);
    set->insertField(5);
    EXPECT_EQ(valuesOf(set->header()), (QStringList{"age", "", "name"}));

    set->setHeader(set->header());
    EXPECT_EQ(set->fieldIndex("age"), 0);
    EXPECT_EQ(set->fieldIndex("name"), 2);
}

}  // namespace
}  // namespace Tamrix
