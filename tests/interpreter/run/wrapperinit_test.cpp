#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "interpreter/run/scripttestcase.h"
#include "platform/objectmodel/inspector.h"
#include "support/environmentguard.h"
#include "support/fakelanguage.h"
#include "support/fakerunner.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

using namespace Test;

class WrapperInit : public testing::Test {
protected:
    WrapperInit() : prefix("TAMRIX_PREFIX", folder.path()) {
        QDir(folder.path()).mkpath("etc");
        // The fake languages' plug-ins, in an installation with settings of its own.
        EXPECT_TRUE(QFile::link(QString(TAMRIX_FAKE_PREFIX) + "/lib", folder.filePath("lib")));
        Inspector::self()->reset();
        FakeInterpreter::s_made = 0;
    }
    ~WrapperInit() override {
        // As a test case does at its end.
        ScriptTestCase(nullptr, QDir(), nullptr, {});
    }

    void settings(const char* entries) {
        EXPECT_TRUE(
            writeFile(folder.filePath("etc/tamrix.ini"), QByteArray("[General]\n") + entries));
    }
    void file(const char* name, const QByteArray& contents) {
        EXPECT_TRUE(writeFile(folder.filePath("wrapper/") + name, contents));
    }
    bool init() { return ScriptTestCase::initWrapper("kit", &result, &runner); }
    QString lastResult() const {
        const auto results = report.results();
        if (results.empty())
            return "none";
        const ResultAdded& entry = results.back();
        return QStringLiteral("%1|%2|%3|%4:%5")
            .arg(entry.type)
            .arg(entry.message, QString(entry.detail).replace(folder.path(), ""),
                 QString(entry.callStack.at(0).fileName()).replace(folder.path(), ""))
            .arg(entry.callStack.at(0).lineNumber());
    }

    QTemporaryDir folder;
    EnvironmentGuard prefix;
    FakeRunner runner;
    RecordingReport report;
    TestResult result{&report};
};

constexpr const char* baseDir = "Wrappers/kit/BaseDir = \"@(TAMRIX_PREFIX)/wrapper\"\n";

TEST_F(WrapperInit, WithoutSettingsThereIsNothingToDo) {
    EXPECT_TRUE(init());
    EXPECT_EQ(lastResult(), "none");
}

TEST_F(WrapperInit, CollectsExtensionScripts) {
    settings(
        "Wrappers/kit/ExtensionScripts = \"@(TAMRIX_PREFIX)/wrapper/a.js,,"
        "@(TAMRIX_PREFIX)/wrapper/none.js,@(TAMRIX_PREFIX)/wrapper/b.qs\"\n");
    file("a.js", "first\r\n");
    file("b.qs", QByteArray("second\0hidden", 13));
    FakeContext context;
    ScriptContext::setCurrent(&context);
    EXPECT_TRUE(init());
    EXPECT_EQ(ScriptContext::current(), &context);
    ScriptContext::setCurrent(nullptr);
    const auto scripts = Inspector::self()->extensionScripts();
    ASSERT_EQ(scripts.size(), 1);
    EXPECT_EQ(scripts.first(), qMakePair(QString("first\n\nsecond\n"), QString("qs")));
}

TEST_F(WrapperInit, RunsInitScriptsInOrder) {
    settings((QByteArray(baseDir) + "Wrappers/kit/InitScripts = \"a.cmd,b.tcl\",\"c.cmd\"\n")
                 .constData());
    file("a.cmd", "setUniqueProperty Button name\n");
    file("b.tcl", "helper\n");
    file("c.cmd", "setMouseTracking Button true\n");
    EXPECT_TRUE(init()) << lastResult().toStdString();
    EXPECT_EQ(Inspector::self()->classSettings("Button").uniqueProperty, "name");
    EXPECT_TRUE(Inspector::self()->classSettings("Button").mouseTracking);
    // Without a test script the wrapper's interpreter stays.
    ASSERT_NE(ScriptTestCase::ip, nullptr);
    EXPECT_TRUE(ScriptTestCase::ip->hasFunction("helper"));
    EXPECT_EQ(ScriptTestCase::defip, nullptr);
}

TEST_F(WrapperInit, TheTestScriptsInterpreterIsCurrentAgain) {
    ASSERT_TRUE(writeFile(folder.filePath("suite/tst/test.pl"), "main"));
    ScriptTestCase testCase(&result, QDir(folder.filePath("suite/tst")), &runner, {});
    ASSERT_TRUE(testCase.load(folder.filePath("suite/tst/test.pl"), Debugger::Run));
    Interpreter* const own = ScriptTestCase::ip;
    settings((QByteArray(baseDir) + "Wrappers/kit/InitScripts = \"b.tcl,b.pl\"\n").constData());
    file("b.tcl", "helper\n");
    file("b.pl", "perlHelper\n");
    EXPECT_TRUE(init());
    EXPECT_EQ(ScriptTestCase::ip, own);
    EXPECT_EQ(Interpreter::self(), own);
    // One of the same language runs in the test script's own interpreter.
    EXPECT_TRUE(own->hasFunction("perlHelper"));
    EXPECT_FALSE(own->hasFunction("helper"));
    EXPECT_EQ(FakeInterpreter::s_alive, 1);
}

TEST_F(WrapperInit, FailuresAreResults) {
    struct {
        const char* script;
        const char* contents;
        const char* result;
    } const rows[] = {
        {"none.cmd", nullptr,
         "8|Error opening init script|Init script '/wrapper/none.cmd' could not be opened: No such "
         "file or directory|:-1"},
        {"a.tcl", "evaluation error 4 boom\n", "9|Script Error|boom|/wrapper/a.tcl:4"},
        // evaluate() is true here: the line alone decides.
        {"b.tcl", "evaluation line 3\n", "9|Script Error|boom|/wrapper/b.tcl:3"},
        // The missing quote is meant.
        {"c.cmd", "jump up\n",
         "8|Unidentified init script language|Wasn't able to deduce type of language for init "
         "script '/wrapper/c.cmd|:-1"},
    };
    for (const auto& row : rows) {
        settings((QByteArray(baseDir) + "Wrappers/kit/InitScripts = \"" + row.script + "\"\n")
                     .constData());
        if (row.contents)
            file(row.script, row.contents);
        EXPECT_FALSE(init()) << row.script;
        EXPECT_EQ(lastResult(), row.result);
    }
    const auto results = report.results();
    EXPECT_EQ(results.at(results.size() - 2).message, "Unexpected token 'jump'");
}

}  // namespace
}  // namespace Tamrix
