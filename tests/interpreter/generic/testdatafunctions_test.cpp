#include "interpreter/generic/testdatafunctions.h"

#include <QTemporaryDir>

#include "base/bytetext.h"
#include "interpreter/generic/apitest.h"
#include "support/environmentguard.h"
#include "support/files.h"

namespace Tamrix {
namespace {

using namespace Test;

/// A row of a table as a script's value.
class RowArgument : public FakeArgument {
public:
    RowArgument(SharedPtr<TestDataSet> set, int index) : m_set(std::move(set)), m_index(index) {}
    const TestDataRecord* toTestDataRecord() const override { return m_set->record(m_index); }

private:
    SharedPtr<TestDataSet> m_set;
    int m_index;
};

class TestDataFunctions : public ApiTest {
protected:
    TestDataFunctions() {
        EXPECT_TRUE(
            writeFile(folder.filePath("case/testdata/local.tsv"), "name\tage\nAda\t36\nBob"));
        EXPECT_TRUE(writeFile(folder.filePath("shared/testdata/local.tsv"), "wrong\n"));
        EXPECT_TRUE(writeFile(folder.filePath("shared/testdata/shared.txt"), "a;b\n1;2\n"));
        EXPECT_TRUE(writeFile(folder.filePath("shared/testdata/plain.txt"), "text\n"));
    }

    SharedPtr<ScriptArgument> row(const char* name, int index) {
        EXPECT_FALSE(context.call(testDataDataSet, {text(name)}))
            << context.errorMessage().toStdString();
        return new RowArgument(context.result->toTestDataSet(), index);
    }

    QTemporaryDir folder;
    EnvironmentGuard suite{"TAMRIX_SUITE_DIR", folder.path()};
    const bool made = QDir(folder.path()).mkdir("case");
    WorkingDirectory inCase{folder.filePath("case")};
};

TEST_F(TestDataFunctions, ReadsTablesOfTheSuite) {
    const SharedPtr<ScriptArgument> bob = row("local.tsv", 1);
    const SharedPtr<ScriptArgument> ada = row("local.tsv", 0);
    EXPECT_EQ(call(testDataField, {ada, text("age")}), "36");
    EXPECT_EQ(call(testDataField, {ada, integer(0)}), "Ada");
    EXPECT_EQ(call(testDataField, {bob, integer(1)}), "");
    EXPECT_FALSE(context.call(testDataFieldNames, {bob}));
    ASSERT_EQ(context.result->toList().size(), 2U);
    EXPECT_EQ(context.result->toList()[1]->toString(), "age");
    EXPECT_EQ(call(testDataField, {row("shared.txt", 0), text("b")}), "2");

    EXPECT_TRUE(writeFile("testdata/folder.csv/x"));
    expectRefusals({{testDataDataSet, {}, "dataset() requires a name argument"},
                    {testDataDataSet, {integer(1)}, "dataset() requires a name argument"},
                    {testDataDataSet, {text("none.csv")}, "File 'none.csv' couldn't be found."},
                    {testDataDataSet,
                     {text("folder.csv")},
                     "Data set 'testdata/folder.csv' couldn't be parsed."},
                    {testDataDataSetExcel,
                     {text("a"), integer(1)},
                     "datasetExcel() requires either a filename or a filename and a sheet name"},
                    {testDataDataSetExcel,
                     {text("local.tsv"), text("x")},
                     "Data set 'testdata/local.tsv' couldn't be parsed."},
                    {testDataField, {ada}, "field() expects two arguments"},
                    {testDataField, {text("x"), text("age")}, "Invalid test data record"},
                    {testDataField, {ada, integer(-1)}, "Invalid field index -1"},
                    {testDataField, {ada, integer(2)}, "Invalid field index 2"},
                    {testDataField, {ada, text("none")}, "Invalid field: none"},
                    {testDataField,
                     {ada, new FakeArgument(1.0)},
                     "Field argument must be of a string or a number"},
                    {testDataFieldNames, {}, "fieldNames() expects a recordset argument"},
                    {testDataFieldNames, {text("x")}, "Invalid test data record"}});
    EXPECT_EQ(
        call(testDataDataSet, {text("plain.txt")}),
        "Data set '" + folder.filePath("shared/testdata/plain.txt") + "' couldn't be parsed.");
}

TEST_F(TestDataFunctions, MakesFoldersForNewFiles) {
    QDir("testdata").removeRecursively();
    EXPECT_EQ(call(testDataCreate, {text("local"), text("a.csv")}), "testdata/a.csv");
    EXPECT_TRUE(QFileInfo("testdata").isDir());
    EXPECT_EQ(call(testDataCreate, {text("shared"), text("b")}), "../shared/testdata/b");
    ASSERT_TRUE(QFile::link(folder.path(), "testdata/out"));
    ASSERT_TRUE(QFile::link(folder.filePath("nowhere"), "testdata/dangling"));
    ASSERT_TRUE(QDir("testdata").mkdir("real") && QFile::link("real", "testdata/inner"));
    EXPECT_EQ(call(testDataCreate, {text("local"), text("inner/a")}), "testdata/inner/a");
    EXPECT_EQ(call(testDataCreate, {text("local"), text("..a/b..")}), "testdata/..a/b..");
    expectRefusals({{testDataCreate, {text("local")}, "create() takes two string arguments"},
                    {testDataCreate,
                     {text("elsewhere"), text("a")},
                     "First argument of create() must be 'shared' or 'local'"},
                    {testDataCreate,
                     {text("local"), text("../a")},
                     "The path '../a' leads out of the folder 'testdata'"},
                    {testDataCreate,
                     {text("shared"), text("a/../b")},
                     "The path 'a/../b' leads out of the folder '../shared/testdata'"},
                    {testDataCreate,
                     {text("local"), text("out/a")},
                     "The path 'out/a' leads out of the folder 'testdata'"},
                    {testDataCreate,
                     {text("local"), text("dangling")},
                     "The path 'dangling' leads out of the folder 'testdata'"},
                    {testDataCreate, {text("local"), text("a/")}, "'a/' is no name of a file"},
                    {testDataCreate, {text("local"), text("")}, "'' is no name of a file"},
                    {testDataCreate,
                     {text("local"), text("/tmp/a")},
                     "The path '/tmp/a' is absolute: files can be made below 'testdata' only"}});
}

TEST_F(TestDataFunctions, ExchangesFilesWithTheApplication) {
    QMap<QString, QString> files;
    model.onCall = [&](const SharedPtr<Object>&, const QString& method,
                       const ObjectList& arguments) -> Outcome<SharedPtr<Object>> {
        const QString name = arguments.at(0)->toVariant().toString();
        QVariant result = true;
        if (method == "testDataPut") {
            files[name] = arguments.at(1)->toVariant().toString();
            result = "/there/" + name;
        } else if (!files.contains(name)) {
            return fail(FailureKind::Failed, "it has no such file");
        } else if (method == "testDataGet") {
            result = files[name];
        } else if (method == "testDataRemove") {
            files.remove(name);
        }
        return Inspector::self()->createObject(result);
    };
    EXPECT_EQ(call(testDataPut, {text("local.tsv")}),
              "The application has no function 'testDataPut'");
    for (const char* name : {"testDataPut", "testDataGet", "testDataExists", "testDataRemove"})
        model.editableGlobalClass()->addMethod(name, Signature());

    EXPECT_EQ(call(testDataPut, {text("local.tsv")}), "/there/local.tsv");
    EXPECT_EQ(call(testDataExists, {text("local.tsv")}), "true");
    EXPECT_EQ(call(testDataGet, {text("local.tsv")}), "no result");
    EXPECT_EQ(readFile("local.tsv"), readFile("testdata/local.tsv"));
    EXPECT_EQ(call(testDataRemove, {text("local.tsv")}), "true");
    files["broken"] = "2x";
    files["../local.tsv"] = "1";
    QFile::remove("local.tsv");
    expectRefusals({{testDataExists, {text("local.tsv")}, "it has no such file"},
                    {testDataGet, {text("local.tsv")}, "Failed to fetch file 'local.tsv'"},
                    {testDataGet, {text("broken")}, "Failed to fetch file 'broken'"},
                    {testDataGet,
                     {text("../local.tsv")},
                     "The path '../local.tsv' leads out of the folder '.'"},
                    {testDataPut, {text("none")}, "File 'none' couldn't be found."},
                    {testDataPut, {}, "put() takes a string argument"},
                    {testDataGet, {integer(1)}, "get() takes a string argument"},
                    {testDataExists, {}, "exists() takes a string argument"},
                    {testDataRemove, {text("a"), text("b")}, "remove() takes a string argument"}});
    EXPECT_FALSE(QFile::exists("local.tsv") || QFile::exists("broken"));
}

TEST(ByteText, CarriesBytes) {
    EXPECT_EQ(encodedQString(""), "1");
    EXPECT_EQ(encodedQString("ab"), QString("1") + QChar(0x6261));
    EXPECT_EQ(encodedQString("abc"), QString("0") + QChar(0x6261) + QChar(0x63));
    for (int size = 0; size < 600; ++size) {
        QByteArray bytes;
        for (int i = 0; i < size; ++i)
            bytes += static_cast<char>(size + i);
        QByteArray back;
        ASSERT_TRUE(decodedQByteArray(encodedQString(bytes), &back));
        ASSERT_EQ(back, bytes);
    }
    QByteArray bytes = "kept";
    for (const char* wrong : {"", "2", "0", "x1"})
        EXPECT_FALSE(decodedQByteArray(wrong, &bytes)) << wrong;
    EXPECT_EQ(bytes, "kept");
}

}  // namespace
}  // namespace Tamrix
