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
        return text;
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

TEST_F(RecordedNamesTest, GoToAScriptAsVariables) {
    suite.write("shared/scripts/names.py",
                "# All\nopener = {\"text\": \"Open\", \"type\": \"QPushButton\"}\n");
    ASSERT_TRUE(recorded.useMapOf(suite.path()));
    const QStringList names{recorded.nameOf(button("Open")), recorded.nameOf(button("Save"))};
    EXPECT_EQ(scriptOf("python", names),
              QString("import names\n\n\ndef main():\n    click(names.opener)\n"
                      "    click(names.save_button)\n"));
    // Other languages have no such module, but the map all the same.
    EXPECT_EQ(scriptOf("tcl", names),
              QString("proc main {} {\n    click :opener\n    click :save_button\n"));
    EXPECT_EQ(QString(Tamrix::Test::readFile(suite.path("shared/scripts/names.py"))),
              "# All\nopener = {\"text\": \"Open\", \"type\": \"QPushButton\"}\n"
              "save_button = {\"type\": \"QPushButton\", \"text\": \"Save\"}\n");
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
