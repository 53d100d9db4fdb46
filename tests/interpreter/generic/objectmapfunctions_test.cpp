#include "interpreter/generic/objectmapfunctions.h"

#include <QTemporaryDir>

#include "interpreter/generic/apitest.h"
#include "interpreter/names/objectmaps.h"
#include "platform/objectmodel/objectmap.h"
#include "support/environmentguard.h"
#include "support/files.h"

namespace Tamrix {
namespace {

using namespace Test;

class ObjectMapFunctions : public ApiTest {
protected:
    ObjectMapFunctions() {
        EXPECT_TRUE(writeFile(path, ":Main\t{type='Window' name='main'}\n:Broken\t{in=':Main'}\n"));
        EXPECT_TRUE(useObjectMap(path));
    }
    ~ObjectMapFunctions() override { ObjectMap::use(nullptr); }

    QTemporaryDir folder;
    QString path = folder.filePath("shared/objectnames.tsv");
    const EnvironmentGuard suite{"TAMRIX_SUITE_DIR", folder.path()};
    SharedPtr<InMemoryObject> main = model.addObject("Window", "main", nullptr);
    SharedPtr<InMemoryObject> button = model.addObject("Button", "ok", main);
};

TEST_F(ObjectMapFunctions, RefuseWrongArguments) {
    const auto anObject = object(main);
    expectRefusals({
        {objectMapLoad, {}, "load() requires a file name argument"},
        {objectMapLoad, {text("a"), text("b")}, "load() requires a file name argument"},
        {objectMapLoad, {integer(1)}, "load() expression has to be of type string"},
        {objectMapLoad, {text("none.tsv")}, "File 'none.tsv' couldn't be found."},
        {objectMapLoad, {text("/none.py")}, "File '/none.py' couldn't be found."},
        {objectMapRealName, {}, "realName() expected object name or reference"},
        {objectMapRealName, {integer(1)}, "realName() expected object name or reference"},
        {objectMapRealName, {text(":None")}, "The object map has no name ':None'"},
        {objectMapSymbolicName,
         {anObject, anObject},
         "symbolicName() expected object name or reference"},
        {objectMapSymbolicName,
         {text("{a=1}")},
         "The name {a=1} is malformed: expected \"'\" or '{' for the value of 'a' at character 4"},
        {objectMapSymbolicNames, {text("a")}, "symbolicNames() does not take any arguments"},
        {objectMapAdd, {}, "add expected an object reference argument"},
        {objectMapAdd, {text(":Main")}, "add expected an object reference argument"},
    });
}

TEST_F(ObjectMapFunctions, TellNamesInBothDirections) {
    EXPECT_EQ(call(objectMapRealName, {text(":Broken")}), "{in={name='main' type='Window'}}");
    EXPECT_EQ(call(objectMapRealName, {map({{"in", text(":Main")}})}),
              "{in={name='main' type='Window'}}");
    EXPECT_EQ(call(objectMapRealName, {object(button)}), "{name='ok' type='Button'}");
    EXPECT_EQ(call(objectMapSymbolicName, {object(main)}), ":Main");
    EXPECT_EQ(call(objectMapSymbolicName, {text("{type='Window' name='main'}")}), ":Main");
    EXPECT_EQ(call(objectMapSymbolicName, {object(button)}), "") << "has none";
    call(objectMapSymbolicNames);
    ASSERT_EQ(context.result->toList().size(), 2U);
    EXPECT_EQ(context.result->toList().front()->toString(), ":Broken");
}

TEST_F(ObjectMapFunctions, AddWritesANameAndLeavesTheLastErrorAlone) {
    Inspector::self()->setLastError("from before");
    EXPECT_EQ(call(objectMapAdd, {object(button)}), ":ok_Button");
    EXPECT_EQ(Inspector::self()->lastError(), "from before");
    EXPECT_TRUE(readFile(path).endsWith("\n:ok_Button\t{name='ok' type='Button'}\n"));
    EXPECT_EQ(call(objectMapRealName, {text(":ok_Button")}), "{name='ok' type='Button'}");
    ObjectMap::use(nullptr);
    expectRefusals({{objectMapAdd,
                     {object(button)},
                     "There is no object map in use to which a name can be added"}});
}

TEST_F(ObjectMapFunctions, LoadTakesAnotherMap) {
    ASSERT_TRUE(writeFile(folder.filePath("shared/scripts/other.tsv"), ":Other\t{a='1'}\n"));
    EXPECT_EQ(call(objectMapLoad, {text("other.tsv")}), "no result");
    EXPECT_EQ(call(objectMapRealName, {text(":Other")}), "{a='1'}");
    EXPECT_EQ(call(objectMapRealName, {text(":Main")}), "The object map has no name ':Main'");
    ASSERT_TRUE(writeFile(folder.filePath("shared/scripts/faulty.tsv"), "nonsense"));
    const QString faulty = folder.filePath("shared/scripts/faulty.tsv");
    EXPECT_EQ(call(objectMapLoad, {text(faulty)}),
              faulty + ", line 1: there is no tab between symbolic and real name");
    // A script in a language whose plug-in knows no maps.
    const EnvironmentGuard prefix("TAMRIX_PREFIX", folder.path());
    ASSERT_TRUE(writeFile(folder.filePath("shared/scripts/names.tcl")));
    const QString script = folder.filePath("shared/scripts/names.tcl");
    EXPECT_EQ(call(objectMapLoad, {text(script)}),
              "The object map '" + script +
                  "' can't be used: Missing script language plugin 'tamrixtcl'");
}

TEST_F(ObjectMapFunctions, ASuiteHasItsPlainMapOrAScript) {
    EXPECT_EQ(suiteObjectMap(folder.path()), path);
    ASSERT_TRUE(writeFile(folder.filePath("shared/scripts/names.tcl")));
    EXPECT_EQ(suiteObjectMap(folder.path()), path);
    ASSERT_TRUE(QFile::remove(path));
    EXPECT_EQ(suiteObjectMap(folder.path()), folder.filePath("shared/scripts/names.tcl"));
    ASSERT_TRUE(writeFile(folder.filePath("shared/scripts/names.py")));
    EXPECT_EQ(suiteObjectMap(folder.path()), folder.filePath("shared/scripts/names.py"));
    // Without any, the first name makes a plain one.
    const QString other = folder.filePath("other");
    ASSERT_TRUE(useObjectMap(suiteObjectMap(other)));
    EXPECT_EQ(call(objectMapAdd, {object(main)}), ":main_Window");
    EXPECT_EQ(readFile(other + "/shared/objectnames.tsv"),
              ":main_Window\t{name='main' type='Window'}\n");
}

}  // namespace
}  // namespace Tamrix
