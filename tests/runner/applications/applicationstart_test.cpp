#include "runner/applications/applicationstart.h"

#include <gtest/gtest.h>

#include <QFile>

#include "runner/processes/shellwords.h"
#include "runner/suites/suitefolder.h"
#include "support/outcomes.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::errorOf;

TEST(ShellWords, AreSplitAsAShellDoes) {
    const struct {
        const char* text;
        QStringList words;
    } table[] = {
        {"", {}},
        {"  a   b\tc ", {"a", "b", "c"}},
        {"a 'b c' \"d e\"f", {"a", "b c", "d ef"}},
        {"'' \"\"", {"", ""}},
        {"a\\ b \\' 'c\\d' \"e\\\"f\\g\"", {"a b", "'", "c\\d", "e\"f\\g"}},
    };
    for (const auto& row : table) {
        const auto words = splitShellWords(row.text);
        ASSERT_EQ(errorOf(words), "");
        EXPECT_EQ(*words, row.words) << row.text;
        EXPECT_EQ(splitShellWords(quotedShellWords(row.words)).value(), row.words) << row.text;
    }
    const QString error = errorOf(splitShellWords("a 'b"));
    EXPECT_TRUE(error.contains("'a 'b'")) << qPrintable(error);
}

class ApplicationStartTest : public testing::Test {
protected:
    ApplicationStartTest() {
        suite.write("bin/my shop", "#!/bin/sh\n");
        QFile(suite.path("bin/my shop")).setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        suite.write("bin/notes.txt", "text");
        places.suiteDirectory = suite.path("");
        places.configFile = suite.path("config.xml");
        ConfiguredApplication shop;
        shop.name = "the shop";
        shop.path = "bin/my shop";
        shop.arguments = QStringList{"--database", "my data"};
        places.configured.append(shop);
    }

    ApplicationStart resolve(const QString& text) {
        const auto start = resolveApplication(text, places);
        error = errorOf(start);
        return start.value_or(ApplicationStart());
    }

    Tamrix::Test::SuiteFolder suite;
    ApplicationPlaces places;
    QString error;
};

TEST_F(ApplicationStartTest, ByNamePathAndPATH) {
    const ApplicationStart named = resolve("'the shop' --x");
    EXPECT_EQ(error, "");
    EXPECT_EQ(named.name, "the shop");
    EXPECT_TRUE(named.commandLine().endsWith("bin/my shop' --database 'my data' --x"))
        << qPrintable(named.commandLine());
    EXPECT_TRUE(suite.path("").startsWith(named.program.workingDirectory));
    // As a whole, without quotes.
    EXPECT_EQ(resolve("the shop").name, "the shop");
    EXPECT_EQ(resolve(suite.path("bin/my shop")).program.program, suite.path("bin/my shop"));
    // A path that counts from the suite's folder.
    EXPECT_EQ(resolve("bin/my\\ shop -v").program.arguments, QStringList{"-v"});
    EXPECT_TRUE(resolve("sh -c 'exit 3'").program.program.endsWith("/sh"));
    EXPECT_EQ(error, "");
}

TEST_F(ApplicationStartTest, FailuresNameWhatIsWrong) {
    const struct {
        QString text;
        const char* part;
    } table[] = {
        {"no-such-program",
         "'no-such-program' was not found; looked for it in the applications of"},
        {"bin/none", "bin/none"},
        {"bin/notes.txt", "no permission"},
        {suite.path("bin"), "is a folder"},
        {"'open", "is not closed"},
        {" ", "no program is named"},
    };
    for (const auto& row : table) {
        resolve(row.text);
        EXPECT_TRUE(error.contains(row.part)) << qPrintable(row.text + ": " + error);
    }
}

}  // namespace
}  // namespace Tamrix
