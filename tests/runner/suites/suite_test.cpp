#include "runner/suites/suite.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "runner/suites/suitefolder.h"
#include "support/outcomes.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::errorOf;

QStringList names(const QList<SuiteCase>& cases) {
    QStringList all;
    for (const SuiteCase& each : cases)
        all.append(each.name);
    return all;
}

TEST(Suite, AFolderThatCannotBeReadIsTold) {
    const Tamrix::Test::SuiteFolder folder;
    folder.write("a/test.py");
    folder.write("b/test.py");
    // Root may read everything.
    ASSERT_EQ(::chmod(folder.path("b").toLocal8Bit(), 0), 0);
    ASSERT_EQ(::chmod(folder.path().toLocal8Bit(), 0755), 0);
    const uid_t user = ::geteuid();
    ASSERT_TRUE(user != 0 || ::setresuid(65534, 65534, 0) == 0);
    const QString error = errorOf(loadSuite(folder.path()));
    ASSERT_TRUE(user != 0 || ::setresuid(0, 0, 0) == 0);
    EXPECT_EQ(error, QString("the folder '%1' can't be read").arg(folder.path("b")));
    ::chmod(folder.path("b").toLocal8Bit(), 0755);
}

TEST(Suite, CasesAreFoldersWithAScriptInNaturalOrder) {
    const Tamrix::Test::SuiteFolder folder;
    for (const char* file :
         {"case10/test.py", "case2/test.js", "über uns/test.py", "both/test.js", "both/test.py",
          "shared/test.py", "shared/scripts/helper.py", "data/values.txt", "other/test.txt",
          "other/Test.py", "test.py", ".hidden/test.py", "folder/test.py/x"})
        folder.write(file);
    // The link makes a case, which can't be read.
    ASSERT_TRUE(QDir(folder.path()).mkdir("link") &&
                QFile::link("nowhere", folder.path("link/test.rb")));

    const auto loaded = loadSuite(folder.path());
    ASSERT_EQ(errorOf(loaded), QString());
    const Suite& suite = *loaded;
    EXPECT_EQ(suite.name, QFileInfo(folder.path()).fileName());
    EXPECT_EQ(suite.directory, folder.path());
    EXPECT_EQ(names(suite.cases), QStringList({"both", "case2", "case10", "link", "über uns"}));
    EXPECT_EQ(suite.cases.at(1).script, folder.path("case2/test.js"));
    EXPECT_EQ(suite.cases.at(1).directory, folder.path("case2"));
    // Two languages: the order of the languages decides, not that of the files.
    EXPECT_EQ(suite.cases.at(0).script, folder.path("both/test.py"));
}

TEST(Suite, ConfigFixesTheOrderOfTheListedCases) {
    const Tamrix::Test::SuiteFolder folder;
    for (const char* file : {"a/test.py", "b/test.py", "c/test.py", "d/test.py"})
        folder.write(file);
    folder.write("config.xml",
                 "<suite><cases><case name=\"d\"/><case name=\"b\"/></cases></suite>");
    const auto loaded = loadSuite(folder.path());
    ASSERT_EQ(errorOf(loaded), QString());
    EXPECT_EQ(names(loaded->cases), QStringList({"d", "b", "a", "c"}));

    folder.write("config.xml", "<suite><cases>\n<case name=\"e\"/></cases></suite>");
    EXPECT_EQ(errorOf(loadSuite(folder.path())),
              folder.path("config.xml") + ":2: the suite has no test case 'e'");
}

TEST(Suite, PathMayBeRelativeOrALink) {
    const Tamrix::Test::SuiteFolder folder;
    folder.write("my suite/case/test.py");
    ASSERT_TRUE(QFile::link("my suite", folder.path("link")));
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path("my suite")));
    const auto here = loadSuite(".");
    const auto link = loadSuite("../link/");
    QDir::setCurrent(before);
    ASSERT_EQ(errorOf(here) + errorOf(link), QString());
    EXPECT_EQ(here->name, QString("my suite"));
    EXPECT_EQ(here->directory, folder.path("my suite"));
    EXPECT_EQ(link->name, QString("link"));
    EXPECT_EQ(link->cases.at(0).script, folder.path("link/case/test.py"));
}

TEST(Suite, WhatIsNoSuiteIsNamed) {
    const Tamrix::Test::SuiteFolder folder;
    folder.write("empty/shared/scripts/helper.py");
    folder.write("file");
    folder.write("faulty/case/test.py");
    folder.write("faulty/config.xml", "<suite><x/></suite>");
    const struct {
        const char* name;
        const char* error;
    } rows[] = {
        {"absent", "there is no suite '%1'"},
        {"file", "'%1' is not a folder"},
        {"empty",
         "the suite '%1' has no test case: no folder in it holds a script named \"test\" (for "
         "example test.py)"},
        {"faulty", "%1/config.xml:1: unknown element <x> in <suite>"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(errorOf(loadSuite(folder.path(row.name))),
                  QString(row.error).arg(folder.path(row.name)));
    }
}

TEST(Suite, NamedCasesKeepTheOrderOfTheSuite) {
    Suite suite;
    suite.name = "s";
    for (const char* name : {"login", "logout", "Search", "zoom"})
        suite.cases.append({name, {}, {}});
    const struct {
        QStringList wanted;
        QStringList selected;
        const char* error;
    } rows[] = {
        {{}, {"login", "logout", "Search", "zoom"}, ""},
        {{"zoom", "login/", "zoom"}, {"login", "zoom"}, ""},
        {{"login", "logn"}, {}, "the suite 's' has no test case 'logn'; did you mean 'login'?"},
        {{"search"}, {}, "the suite 's' has no test case 'search'; did you mean 'Search'?"},
        {{"log"}, {}, "the suite 's' has no test case 'log'; did you mean 'login' or 'logout'?"},
        {{"xyzxyz"}, {}, "the suite 's' has no test case 'xyzxyz'"},
    };
    for (const auto& row : rows) {
        const auto selected = selectCases(suite, row.wanted);
        EXPECT_EQ(errorOf(selected), QString(row.error));
        EXPECT_EQ(names(selected.value_or(QList<SuiteCase>())), row.selected);
    }
}

}  // namespace
}  // namespace Tamrix
