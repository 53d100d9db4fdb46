// Names of objects in a recording of a suite that has a map of them.

#include "runner/recording/recordednames.h"

#include <gtest/gtest.h>

#include "platform/objectmodel/objectmap.h"
#include "runner/recording/recordedscript.h"
#include "runner/suites/suitefolder.h"
#include "support/environmentguard.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

class RecordedNamesTest : public testing::Test {
protected:
    ~RecordedNamesTest() override { ObjectMap::use(nullptr); }

    static Wire::Query button(const QString& text) {
        return {{{"text", 0, text, nullptr}, {"type", 0, "QPushButton", nullptr}}, 1};
    }
    QString scriptOf(const QString& language, const QStringList& names) {
        const auto writer = scriptWriter(language, recorded.moduleFor(scriptSuffix(language)));
        EXPECT_TRUE(writer);
        QString text = (*writer)->header();
        for (const QString& name : names)
            text += (*writer)->lines(FunctionAction{"click", name, {}});
        return text + (*writer)->footer();
    }

    Tamrix::Test::EnvironmentGuard prefix{"TAMRIX_PREFIX", TAMRIX_TEST_PREFIX};
    Tamrix::Test::SuiteFolder suite;
    RecordedNames recorded;
};

TEST_F(RecordedNamesTest, AreRealOnesWithoutAMap) {
    ASSERT_TRUE(recorded.useMapOf(suite.path()));
    EXPECT_EQ(recorded.nameOf(button("Save")), QString("{text='Save' type='QPushButton'}"));
    EXPECT_EQ(recorded.nameOf({}), QString());
    EXPECT_EQ(recorded.moduleFor("py"), QString());
}

TEST_F(RecordedNamesTest, GoToATable) {
    suite.write("shared/objectnames.tsv", "# All\n:Known\t{text='Open' type='QPushButton'}");
    ASSERT_TRUE(recorded.useMapOf(suite.path()));
    EXPECT_EQ(recorded.nameOf(button("Open")), QString(":Known"));
    EXPECT_EQ(recorded.nameOf(button("Save")), QString(":Save_QPushButton"));
    EXPECT_EQ(recorded.nameOf(button("Save")), QString(":Save_QPushButton"));
    EXPECT_EQ(QString(Tamrix::Test::readFile(suite.path("shared/objectnames.tsv"))),
              "# All\n:Known\t{text='Open' type='QPushButton'}\n"
              ":Save_QPushButton\t{text='Save' type='QPushButton'}\n");
    EXPECT_EQ(recorded.moduleFor("py"), QString());
    EXPECT_TRUE(recorded.result());
}

struct ScriptedMap {
    const char* language;
    const char* suffix;
    /// Of one entry, and what the recording adds to it.
    QByteArray before;
    QByteArray after;
    /// A script that uses the entry and the new one.
    QString script;
};

const ScriptedMap scriptedMaps[] = {
    {"python", "py", "# All\nopener = {\"text\": \"Open\", \"type\": \"QPushButton\"}\n",
     "# All\nopener = {\"text\": \"Open\", \"type\": \"QPushButton\"}\n"
     "save_button = {\"type\": \"QPushButton\", \"text\": \"Save\"}\n",
     "import names\n\n\ndef main():\n    click(names.opener)\n    click(names.save_button)\n"},
    {"javascript", "js", "export const opener = {text: \"Open\", type: \"QPushButton\"};\n",
     "export const opener = {text: \"Open\", type: \"QPushButton\"};\n"
     "export const saveButton = {type: \"QPushButton\", text: \"Save\"};\n",
     "import * as names from \"names\";\n\nexport function main() {\n    click(names.opener);\n"
     "    click(names.saveButton);\n}\n"},
    {"perl", "pl", "package names;\nour $opener = {text => 'Open', type => 'QPushButton'};\n1;\n",
     "package names;\nour $opener = {text => 'Open', type => 'QPushButton'};\n"
     "our $save_button = {type => 'QPushButton', text => 'Save'};\n1;\n",
     "use strict;\nuse warnings;\nrequire 'names.pl';\n\nsub main {\n    click($names::opener);\n"
     "    click($names::save_button);\n}\n"},
    {"ruby", "rb", "module Names\n  OPENER = { text: 'Open', type: 'QPushButton' }\nend\n",
     "module Names\n  OPENER = { text: 'Open', type: 'QPushButton' }\n"
     "  SAVE_BUTTON = { type: 'QPushButton', text: 'Save' }\nend\n",
     "require 'names'\n\ndef main\n  click(Names::OPENER)\n  click(Names::SAVE_BUTTON)\nend\n"},
    {"tcl", "tcl",
     "namespace eval names {}\nset names::opener [dict create text Open type QPushButton]\n",
     "namespace eval names {}\nset names::opener [dict create text Open type QPushButton]\n"
     "set names::save_button [dict create type QPushButton text Save]\n",
     "source [findFile scripts names.tcl]\n\nproc main {} {\n    click $names::opener\n"
     "    click $names::save_button\n}\n"},
};

class RecordedVariables : public RecordedNamesTest,
                          public testing::WithParamInterface<ScriptedMap> {};
INSTANTIATE_TEST_SUITE_P(, RecordedVariables, testing::ValuesIn(scriptedMaps),
                         [](const auto& row) { return std::string(row.param.language); });

TEST_P(RecordedVariables, AreThoseOfTheMap) {
    const QString language = GetParam().language;
    if (language != "python" && !QString(TAMRIX_TEST_LANGUAGES).split(' ').contains(language))
        GTEST_SKIP() << "its plug-in is not built";
    const QString file = QStringLiteral("shared/scripts/names.%1").arg(GetParam().suffix);
    suite.write(file, GetParam().before);
    ASSERT_TRUE(recorded.useMapOf(suite.path()));
    const QStringList names{recorded.nameOf(button("Open")), recorded.nameOf(button("Save"))};
    EXPECT_TRUE(recorded.result());
    EXPECT_EQ(QString(Tamrix::Test::readFile(suite.path(file))), QString(GetParam().after));
    EXPECT_EQ(scriptOf(language, names), GetParam().script);
}

TEST_F(RecordedNamesTest, OfAnotherLanguageAreTexts) {
    suite.write("shared/scripts/names.py", "opener = {'text': 'Open', 'type': 'QPushButton'}\n");
    ASSERT_TRUE(recorded.useMapOf(suite.path()));
    EXPECT_EQ(scriptOf("tcl", {recorded.nameOf(button("Open"))}),
              QString("proc main {} {\n    click :opener\n}\n"));
}

TEST_F(RecordedNamesTest, OutsideOfAModuleAreTexts) {
    if (!QString(TAMRIX_TEST_LANGUAGES).split(' ').contains("ruby"))
        GTEST_SKIP() << "its plug-in is not built";
    suite.write("shared/scripts/names.rb",
                "# No module Names\nOPENER = { text: 'Open', type: 'QPushButton' }\n");
    ASSERT_TRUE(recorded.useMapOf(suite.path()));
    EXPECT_EQ(scriptOf("ruby", {recorded.nameOf(button("Open"))}),
              QString("def main\n  click(\":OPENER\")\nend\n"));

    suite.write("shared/scripts/names.rb",
                "module Names\n  SAVER = { text: 'Save', type: 'QPushButton' }\nend\n"
                "OPENER = { text: 'Open', type: 'QPushButton' }\n");
    ASSERT_TRUE(recorded.useMapOf(suite.path()));
    EXPECT_EQ(scriptOf("ruby", {recorded.nameOf(button("Open")), recorded.nameOf(button("Save")),
                                recorded.nameOf(button("Quit"))}),
              QString("require 'names'\n\ndef main\n  click(\"names.OPENER\")\n"
                      "  click(Names::SAVER)\n  click(Names::QUIT_BUTTON)\nend\n"));
    EXPECT_TRUE(recorded.result());
}

TEST_F(RecordedNamesTest, StayInTheScriptWhenTheMapCantBeWritten) {
    suite.write("shared/scripts/names.py", "import sys\nsys.exit()\n");
    ASSERT_TRUE(recorded.useMapOf(suite.path()));
    EXPECT_EQ(recorded.nameOf(button("Save")), QString("{text='Save' type='QPushButton'}"));
    EXPECT_FALSE(recorded.result());
    suite.write("shared/scripts/names.py", "a = {'type': b}\n");
    EXPECT_FALSE(RecordedNames().useMapOf(suite.path()));
}

}  // namespace
}  // namespace Tamrix
