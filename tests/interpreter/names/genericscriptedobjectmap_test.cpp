// Maps that are scripts, with a shell script in the place of the program that runs them.

#include "interpreter/names/genericscriptedobjectmap.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include "interpreter/names/objectmaptool.h"
#include "platform/objectmodel/inspector.h"
#include "support/environmentguard.h"
#include "support/fakelanguage.h"
#include "support/files.h"
#include "support/namedobject.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

class FakeObjectMap : public GenericScriptedObjectMap {
public:
    explicit FakeObjectMap(const QString& path)
        : GenericScriptedObjectMap(path, "py",
                                   {.literal = [](const QString& text) { return '"' + text + '"'; },
                                    .reserved = "if else"}) {}

    ScriptArgument::Map variables;

protected:
    ScriptArgument::Map scriptVariables() override { return variables; }
};

class NamesInScripts : public testing::Test {
protected:
    NamesInScripts() {
        EXPECT_TRUE(writeFile(path, "# mine\n"));
        Inspector::self()->reset();
    }

    /// The program writes this text, and a mark in the file "calls" for each time.
    void useTool(const QByteArray& script) {
        const QString tool = objectMapToolBinary();
        ASSERT_TRUE(writeFile(
            tool, "#!/bin/sh\necho \"$@\" >> " + calls.toLocal8Bit() + "\n" + script + "\n"));
        ASSERT_TRUE(
            QFile::setPermissions(tool, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    int callCount() const { return readFile(calls).count('\n'); }
    /// Writes a file that has a later time than all before.
    void edit(const QString& file, const QByteArray& content) {
        ASSERT_TRUE(writeFile(file, content));
        QFile edited(file);
        ASSERT_TRUE(edited.open(QIODevice::ReadWrite));
        m_time = m_time.addSecs(1);
        ASSERT_TRUE(edited.setFileTime(m_time, QFileDevice::FileModificationTime));
    }

    static constexpr char twoNames[] =
        "printf ':main\\t{type='\"'W'\"'}\\n:save\\t{text='\"'Save'\"' window='\"':main'\"'}\\n'";

    QTemporaryDir folder;
    QString path = folder.filePath("scripts/names.py");
    QString calls = folder.filePath("calls");
    const EnvironmentGuard prefix{"TAMRIX_PREFIX", folder.path()};
    FakeObjectMap map{path};

private:
    QDateTime m_time = QDateTime::currentDateTime().addSecs(10);
};

TEST_F(NamesInScripts, TheToolRunsOnceForEachStateOfTheScripts) {
    useTool(twoNames);
    // Names that need no map need no tool.
    EXPECT_EQ(map.realName("{type='X'}"), "{type='X'}");
    EXPECT_EQ(callCount(), 0);
    EXPECT_EQ(map.realName(":save"), "{text='Save' window={type='W'}}");
    EXPECT_EQ(map.realName("{a='1' window=':main'}"), "{a='1' window={type='W'}}");
    EXPECT_EQ(map.realName("names.main"), "{type='W'}");
    EXPECT_EQ(readFile(calls), "--mode getEntryMap --scriptMap --scriptedObjectMapPath " +
                                   path.toLocal8Bit() + "\n");
    edit(folder.filePath("scripts/data.txt"), "x");
    EXPECT_EQ(map.realName(":main"), "{type='W'}");
    EXPECT_EQ(callCount(), 1) << "is no script";
    for (const char* other : {"scripts/names.py", "scripts/below/other.tcl"}) {
        const int before = callCount();
        edit(folder.filePath(other), "# changed\n");
        EXPECT_EQ(map.realName(":main"), "{type='W'}");
        EXPECT_EQ(map.realName(":main"), "{type='W'}");
        EXPECT_EQ(callCount(), before + 1) << other;
    }
}

TEST_F(NamesInScripts, FailuresAreKeptLikeNames) {
    const struct {
        QByteArray tool;
        QString error;
    } rows[] = {
        {"printf 'a\\r\\nb\\n\\n' >&2; exit 1", "Objectmaptool error: a\nb"},
        {"kill -9 $$", "Objectmaptool error: "},
        {"echo nonsense",
         "Objectmaptool error: line 1: there is no tab between symbolic and real name"},
    };
    for (const auto& row : rows) {
        useTool(row.tool);
        const int before = callCount();
        edit(path, "# " + row.tool);
        EXPECT_EQ(map.resolve(":main").error().text,
                  "The object map has no name ':main': " + row.error);
        EXPECT_EQ(map.symbolicNames().error().text, row.error);
        QString error;
        EXPECT_EQ(map.toLegacyRepresentation(&error), "");
        EXPECT_EQ(error, row.error);
        EXPECT_EQ(callCount(), before + 1);
        // It is told once for each state of the files.
        EXPECT_FALSE(map.loadIfChanged(path));
        EXPECT_TRUE(map.loadIfChanged(path));
    }
    testing::internal::CaptureStderr();
    EXPECT_EQ(map.existingSymbolicNames(), QStringList());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Unable to get real name mapping from scripted object map: 'Objectmaptool error: "
              "line 1: there is no tab between symbolic and real name'\n");

    ASSERT_TRUE(QFile::remove(path));
    EXPECT_EQ(map.resolve(":main").error().text,
              "The object map has no name ':main': There is no file '" + path + "'");
    useTool(twoNames);
    edit(path, "# again");
    EXPECT_EQ(map.realName(":main"), "{type='W'}");
}

TEST_F(NamesInScripts, AToolThatTakesTooLongIsEnded) {
    useTool("exec sleep 1000");
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(runObjectMapTool(path, QByteArray(), 200).error().text,
              "Failed to run objectmaptool");
    EXPECT_LT(timer.elapsed(), 500'000);
    ASSERT_TRUE(QFile::remove(objectMapToolBinary()));
    EXPECT_EQ(runObjectMapTool(path, QByteArray(), 60000).error().text,
              "Failed to run objectmaptool");
    EXPECT_LT(timer.elapsed(), 500'000);
}

TEST_F(NamesInScripts, AnswersInBothDirections) {
    useTool(twoNames);
    using Name = ScriptedSymbolicName;
    EXPECT_EQ(*map.symbolicNames(), (QStringList{":main", ":save"}));
    EXPECT_EQ(map.existingSymbolicNames(), (QStringList{":main", ":save"}));
    EXPECT_EQ(map.getRealName(Name("names.save")), "{text='Save' window=':main'}");
    EXPECT_EQ(map.getRealName(Name(":save")), "{text='Save' window=':main'}");
    EXPECT_EQ(map.getRealName(Name("other.save")), "");
    EXPECT_EQ(map.getNestedScriptedRealName(Name(":save")),
              "{\"text\": \"Save\", \"window\": main}");
    EXPECT_EQ(map.getNestedScriptedRealName(Name(":none")), "");
    EXPECT_EQ(map.createScriptedRealName(ObjectName("{a='1' window={type='W'}}"), true, true),
              "{\n    \"a\": \"1\",\n    \"window\": main\n}");
    EXPECT_EQ(map.createScriptedRealName(ObjectName("{a='1' window={type='W'}}"), false, false),
              "{\"a\": \"1\", \"window\": {\"type\": \"W\"}}");
    EXPECT_EQ(map.semiQualifiedSymbolicName(Name(":save")), "names.save");
    EXPECT_TRUE(map.variableNameExists(Name("names.main")));
    EXPECT_FALSE(map.variableNameExists(Name("names.maim")));
    for (const char* form : {"{text='Save' window={type='W'}}", "{text='Save' window=':main'}"})
        EXPECT_EQ(map.existingSymbolicName(ObjectName(form)), ":save") << form;
    EXPECT_EQ(map.existingSymbolicName(ObjectName("{text='Save'}")), "");
    QString error;
    EXPECT_EQ(map.toLegacyRepresentation(&error),
              ":main\t{type='W'}\n:save\t{text='Save' window=':main'}");
    EXPECT_EQ(error, "");
}

TEST_F(NamesInScripts, NestedNamesBecomeReferences) {
    using Names = QMap<QString, QString>;
    const Names realNames{{":a", "{type='W'}"},
                          {":b", "{type='W'}"},
                          {":c", "{text='{type=\\'W\\'}' window={type='W'}}"},
                          {":d", "{box={in={type='W'} x='1'} type='B'}"},
                          {":e", "{in={text='{type=\\'W\\'}' window={type='W'}}}"},
                          {":f", "no name"}};
    EXPECT_EQ(GenericScriptedObjectMap::toSimplifiedRealNameMapping(realNames),
              (Names{{":a", "{type='W'}"},
                     {":b", "{type='W'}"},
                     {":c", "{text='{type=\\'W\\'}' window=':a'}"},
                     {":d", "{box={in=':a' x='1'} type='B'}"},
                     {":e", "{in=':c'}"},
                     {":f", "no name"}}));
}

TEST_F(NamesInScripts, VariablesOfTheScriptAreNames) {
    const FakeInterpreter interpreter(nullptr, Interpreter::Tcl);
    const auto main = Tamrix::Test::map({{"type", text("W")}});
    map.variables = {
        {"main", main},
        {"save",
         Tamrix::Test::map(
             {{"text*", text("S*")}, {"n", integer(2)}, {"on", boolean(true)}, {"window", main}})},
        {"_own", Tamrix::Test::map({{"a b", text("")}})},
        {"empty", Tamrix::Test::map({})},
        {"word", text("{type='W'}")}};
    EXPECT_EQ(
        *map.toRealNameMapping("main\n"),
        (QMap<QString, QString>{{":main", "{type='W'}"},
                                {":save", "{n='2' on='true' text*='S*' window={type='W'}}"}}));

    EXPECT_EQ(GenericScriptedObjectMap::toRealNameMapping({{"main", main}}),
              (QMap<QString, QString>{{"main", "{type='W'}"}}));

    const auto endless = [] {
        SharedPtr<ScriptArgument> value = Tamrix::Test::map({{"a", text("1")}});
        for (int level = 0; level < 20; ++level)
            value = Tamrix::Test::map({{"in", value}});
        return value;
    };
    map.variables = {
        {"deep", endless()},
        {"listed", Tamrix::Test::map({{"in", Tamrix::Test::map({{"a", list({})}})}})},
        {"hollow", Tamrix::Test::map({{"in", Tamrix::Test::map({})}})},
        {"spaced", Tamrix::Test::map({{"a b", text("")}})},
        {"pattern", Tamrix::Test::map({{"text~", text("(")}})},
    };
    const QString start = path + ", line 2: the variable '";
    const QString reason =
        "' is no name of an object (one that is not meant to be starts with '_'): ";
    EXPECT_EQ(
        map.getObjectMapping("evaluation\ndeep = \n").error().text.section('\n', 0, 1),
        start + "deep" + reason +
            "The name of an object is nested deeper than 16: does a part of it hold itself?\n" +
            path + ": the variable 'hollow" + reason + "the property 'in' is empty");
    EXPECT_EQ(map.getObjectMapping("evaluation\n").error().text.count('\n'), 4);

    EXPECT_EQ(map.getObjectMapping("evaluation error 3 words\n").error().text,
              path + ", line 3: words");
    EXPECT_EQ(map.getObjectMapping("syntax error 4 words\n").error().text,
              path + ", line 4: words");
}

/// The tool reads the text that it is given as that of the script, and says what it means.
TEST_F(NamesInScripts, NewEntriesAreTriedBeforeTheyAreWritten) {
    const QByteArray echo =
        QByteArray(twoNames) + "\nif [ \"$6\" ]; then cat > " + calls.toLocal8Bit() + ".text; fi\n";
    const auto add = [this](const QString& realName) {
        const Outcome<QString> key = map.add(SharedPtr<Object>(new NamedObject(realName)));
        return key ? *key : key.error().text;
    };
    useTool(echo);
    EXPECT_EQ(add("{window={type='W'} text='Save'}"), ":save");
    EXPECT_EQ(add("{window={type='W'} text='Click'}"),
              "The entry click_2 = {\"text\": \"Click\", \"window\": main} can't be added to '" +
                  path + "': it has no effect behind the end of the script");
    EXPECT_EQ(readFile(path), "# mine\n");
    EXPECT_EQ(readFile(calls + ".text"),
              "# mine\nclick_2 = {\"text\": \"Click\", \"window\": main}\n");
    EXPECT_EQ(*map.symbolicNames(), (QStringList{":main", ":save"})) << "nothing is left of it";
    useTool(echo + "if [ \"$6\" ]; then echo wrong >&2; exit 1; fi");
    EXPECT_TRUE(add("{text='Mine'}").endsWith("': Objectmaptool error: wrong"));
    EXPECT_EQ(readFile(path), "# mine\n");

    useTool(echo + "if [ \"$6\" ]; then printf ':mine_2\\t{text='\"'Mine'\"'}\\n'; fi");
    EXPECT_EQ(add("{text='Mine'}"), ":mine_2") << "the word stands in the script";
    EXPECT_EQ(readFile(path), "# mine\nmine_2 = {\"text\": \"Mine\"}\n");
}

}  // namespace
}  // namespace Tamrix
