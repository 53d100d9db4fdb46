#include "interpreter/bridge/scriptlanguage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "support/environmentguard.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Test::EnvironmentGuard;
using Test::writeFile;
using testing::HasSubstr;

class ScriptLanguages : public testing::Test {
protected:
    ScriptLanguages() : prefix("TAMRIX_PREFIX", folder.path()) {
        EXPECT_TRUE(writeFile(folder.filePath("etc/paths.ini"),
                              "[Interpreter]\n"
                              "PythonPluginVersion = \"3\"\n"
                              "[Paths]\n"
                              "Scripting/PythonHome = \"@(TAMRIX_PREFIX)/python\"\n"));
    }

    QTemporaryDir folder;
    EnvironmentGuard prefix;
};

TEST_F(ScriptLanguages, FindsRows) {
    const auto* python = ScriptLanguageInformation::forFile(QFileInfo("/suite/tst.old/test.py"));
    ASSERT_NE(python, nullptr);
    EXPECT_EQ(python->language, Interpreter::Python);
    EXPECT_EQ(python->pluginName, "tamrixpython-3");
    EXPECT_EQ(python->home.filePath(), folder.filePath("python"));
    EXPECT_EQ(ScriptLanguageInformation::forFile(QFileInfo("test.PY")), nullptr);
    EXPECT_EQ(ScriptLanguageInformation::forFile(QFileInfo("test")), nullptr);

    EXPECT_EQ(ScriptLanguageInformation::forLanguageName("py"), python);
    EXPECT_EQ(ScriptLanguageInformation::forLanguageName("Python"), python);
    EXPECT_EQ(ScriptLanguageInformation::forLanguageName("python"), python);
    EXPECT_EQ(ScriptLanguageInformation::forLanguageName("Pythons"), nullptr);
    EXPECT_EQ(ScriptLanguageInformation::forLanguage(Interpreter::Python), python);

    QStringList suffixes;
    for (const ScriptLanguageInformation* language : ScriptLanguageInformation::knownLanguages()) {
        suffixes.append(language->suffix);
        EXPECT_EQ(ScriptLanguageInformation::forLanguage(language->language), language);
    }
    EXPECT_EQ(suffixes, (QStringList{"py", "js", "tcl", "pl", "rb"}));
}

TEST_F(ScriptLanguages, PythonOfUnknownVersion) {
    // In a new process: the table is made once and stays.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ASSERT_TRUE(QFile::remove(folder.filePath("etc/paths.ini")));
    EXPECT_EXIT(
        {
            const auto* python = ScriptLanguageInformation::forLanguage(Interpreter::Python);
            std::fprintf(stderr, "%s home:'%s'\n", qPrintable(python->pluginName),
                         qPrintable(python->home.filePath()));
            std::exit(0);
        },
        testing::ExitedWithCode(0), "tamrixpython-unknown home:''");
}

class ScriptLanguagePlugins : public testing::Test {
protected:
    ScriptLanguagePlugins() : prefix("TAMRIX_PREFIX", folder.path()) {
        EXPECT_TRUE(QDir(folder.path()).mkdir("lib"));
    }

    void install(const QString& library, const QString& name) const {
        EXPECT_TRUE(QFile::link(QStringLiteral(TEST_LIBRARIES "/") + library,
                                folder.filePath("lib/" + name)));
    }

    QTemporaryDir folder;
    EnvironmentGuard prefix;
};

TEST_F(ScriptLanguagePlugins, CallsTheFactories) {
    install("testplugin.so", "libanylanguage.so");
    const ScriptLanguagePlugin plugin("anylanguage");
    EXPECT_EQ(plugin.lastErrorMessage(), "");

    auto* runner = reinterpret_cast<RunnerInterface*>(&folder);
    EXPECT_EQ(static_cast<void*>(plugin.interpreter(runner)), &folder);
    EXPECT_EQ(plugin.eventRecorder(true, false, true, "text"), reinterpret_cast<EventRecorder*>(1));
    EXPECT_EQ(plugin.scriptedObjectMap("four"), reinterpret_cast<ScriptedObjectMap*>(4));
}

TEST_F(ScriptLanguagePlugins, TellsWhatIsMissing) {
    // Another plug-in is loaded: its factories must not stand in.
    install("testplugin.so", "other.so");
    const ScriptLanguagePlugin other("other");

    const ScriptLanguagePlugin missing("tamrixnone");
    EXPECT_EQ(missing.lastErrorMessage(), "Missing script language plugin 'tamrixnone'");
    testing::internal::CaptureStderr();
    EXPECT_EQ(missing.interpreter(nullptr), nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Error creating interpreter: Missing script language plugin 'tamrixnone'\n");

    ASSERT_TRUE(writeFile(folder.filePath("lib/broken.so"), "no library"));
    EXPECT_THAT(ScriptLanguagePlugin("broken").lastErrorMessage().toStdString(),
                HasSubstr("broken.so"));

    install("testpluginwithoutfactories.so", "empty.so");
    const ScriptLanguagePlugin empty("empty");
    EXPECT_EQ(empty.lastErrorMessage(), "");
    testing::internal::CaptureStderr();
    EXPECT_EQ(empty.interpreter(nullptr), nullptr);
    EXPECT_EQ(empty.eventRecorder(true, true, true, "x"), nullptr);
    EXPECT_EQ(empty.scriptedObjectMap("x"), nullptr);
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_THAT(errors, HasSubstr("Error creating interpreter: "));
    EXPECT_THAT(errors, HasSubstr("Error creating event recorder object: "));
    EXPECT_THAT(errors, HasSubstr("Error creating scripted object map object: "));
    EXPECT_THAT(errors, HasSubstr("createScriptedObjectMap")) << "the system's reason";
}

}  // namespace
}  // namespace Tamrix
