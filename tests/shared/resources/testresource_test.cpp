#include "shared/resources/testresource.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "shared/settings/settings.h"
#include "support/environmentguard.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Test::EnvironmentGuard;
using Test::WorkingDirectory;
using Test::writeFile;

/// A suite with one test case, in whose folder the test runs.
class TestResourceTest : public testing::Test {
protected:
    TestResourceTest()
        : root(QDir(folder.path()).canonicalPath()),
          suite(root + "/suite"),
          testCase(suite + "/tst_one"),
          script(testCase + "/test.py"),
          created(QDir().mkpath(testCase) && QDir().mkpath(suite + "/shared/scripts")),
          workingDirectory(testCase) {
        EXPECT_TRUE(created);
    }

    QTemporaryDir folder;
    QString root;
    QString suite;
    QString testCase;
    QString script;
    bool created;
    WorkingDirectory workingDirectory;
    EnvironmentGuard suiteVariable{"TAMRIX_SUITE_DIR", suite};
    EnvironmentGuard prefix{"TAMRIX_PREFIX", root + "/prefix"};
    EnvironmentGuard user{"TAMRIX_USER_SETTINGS_DIR", root + "/user"};
    EnvironmentGuard scriptDirectories{"TAMRIX_SCRIPT_DIR", root + "/env1::" + root + "/env2"};
};

/// Each place alone makes the file found, and an earlier place wins over all later ones.
void expectOrder(const QString& name, const QString& fileType,
                 const std::vector<std::pair<QString, QString>>& places) {
    EXPECT_EQ(findTestSuiteFile(name, fileType), QString());
    for (auto place = places.crbegin(); place != places.crend(); ++place) {
        ASSERT_TRUE(writeFile(place->first));
        EXPECT_EQ(findTestSuiteFile(name, fileType), place->second);
    }
}

TEST_F(TestResourceTest, FindsTestDataInOrder) {
    expectOrder("d.tsv", "testdata",
                {{suite + "/d.tsv", suite + "/d.tsv"},
                 {testCase + "/testdata/d.tsv", "testdata/d.tsv"},
                 {suite + "/shared/testdata/d.tsv", suite + "/shared/testdata/d.tsv"},
                 {root + "/shared/testdata/d.tsv", "../../shared/testdata/d.tsv"},
                 {testCase + "/shared/testdata/d.tsv", "shared/testdata/d.tsv"}});
}

TEST_F(TestResourceTest, FindsSharedFilesBesideTheCaseWithoutTheSuiteVariable) {
    Environment::unsetVariable("TAMRIX_SUITE_DIR");
    ASSERT_TRUE(writeFile(suite + "/shared/testdata/d.tsv"));
    EXPECT_EQ(findTestSuiteFile("d.tsv", "testdata"), "../shared/testdata/d.tsv");
    // The first place then lies in the root folder.
    EXPECT_EQ(findTestSuiteFile(root.mid(1) + "/suite", "testdata"), root + "/suite");
}

TEST_F(TestResourceTest, FindsScriptsInOrder) {
    {
        UserSettings paths(UserSettingsType::Paths);
        paths.writeEntry("General", "GlobalScriptDirs",
                         QStringList{root + "/global1", root + "/global2"});
    }
    expectOrder("m.py", "scripts",
                {{suite + "/m.py", suite + "/m.py"},
                 {testCase + "/scripts/m.py", "scripts/m.py"},
                 {suite + "/shared/scripts/m.py", suite + "/shared/scripts/m.py"},
                 {root + "/shared/scripts/m.py", "../../shared/scripts/m.py"},
                 {testCase + "/shared/scripts/m.py", "shared/scripts/m.py"},
                 {testCase + "/m.py", "m.py"},
                 {root + "/prefix/scriptmodules/m.py", root + "/prefix/scriptmodules/m.py"},
                 {root + "/global1/m.py", root + "/global1/m.py"},
                 {root + "/global2/m.py", root + "/global2/m.py"},
                 {root + "/env1/m.py", root + "/env1/m.py"},
                 {root + "/env2/m.py", root + "/env2/m.py"}});
    // A language's import looks in the same folders.
    EXPECT_EQ(scriptSearchFolders(),
              (QStringList{suite, testCase + "/scripts", suite + "/shared/scripts",
                           root + "/shared/scripts", testCase + "/shared/scripts", testCase,
                           root + "/prefix/scriptmodules", root + "/global1", root + "/global2",
                           root + "/env1", root + "/env2"}));
    ASSERT_TRUE(writeFile(root + "/env1/only.tsv"));
    EXPECT_EQ(findTestSuiteFile("only.tsv", "testdata"), QString());
    EXPECT_EQ(environmentScriptDirectories(), (QStringList{root + "/env1", root + "/env2"}));
}

TEST_F(TestResourceTest, ListsSearchPaths) {
    EXPECT_EQ(TestResource::getSearchPaths(script, QString()),
              (QStringList{testCase, suite + "/shared"}));
    EXPECT_EQ(TestResource::getSearchPaths(testCase + "/../tst_one/test.py", QString()),
              (QStringList{testCase, suite + "/shared"}));
    EXPECT_EQ(TestResource::getSearchPaths(QString(), QString()), QStringList());

    // A file in a "shared" folder, that of another suite say, brings that folder in.
    const QString helpers = root + "/library/shared/scripts/deep";
    ASSERT_TRUE(QDir().mkpath(helpers));
    EXPECT_EQ(TestResource::getSearchPaths(script, helpers + "/helper.py"),
              (QStringList{testCase, suite + "/shared", helpers, root + "/library/shared"}));
    EXPECT_EQ(TestResource::getSearchPaths(root + "/alone/test.py", root + "/library/x.py"),
              (QStringList{root + "/alone", root + "/library"}));
}

TEST_F(TestResourceTest, LocatesAlongTheSearchPaths) {
    const QString shared = suite + "/shared/verificationPoints/VP1";
    ASSERT_TRUE(writeFile(shared));
    const auto locate = [&](const QString& name) {
        return TestResource::locate(TestResource::VerificationPoint, name, script, QString());
    };
    EXPECT_EQ(locate("VP1"), shared);
    ASSERT_TRUE(writeFile(testCase + "/verificationPoints/VP1"));
    EXPECT_EQ(locate("VP1"), testCase + "/verificationPoints/VP1");
    EXPECT_EQ(locate(shared), shared);
    EXPECT_EQ(locate(""), QString());
    EXPECT_EQ(locate("VP2"), QString());
    EXPECT_EQ(locate("../verificationPoints"), QString()) << "a folder is no verification point";
    EXPECT_EQ(TestResource::locate(TestResource::Profile, shared + "x", QStringList()), QString());
}

TEST_F(TestResourceTest, SearchImagesMayLackTheirSuffix) {
    const QString images = testCase + "/searchImages";
    ASSERT_TRUE(writeFile(images + "/button.png"));
    ASSERT_TRUE(writeFile(images + "/LOUD.PNG"));
    ASSERT_TRUE(writeFile(images + "/notes.txt"));
    ASSERT_TRUE(writeFile(images + "/set/b.png"));
    ASSERT_TRUE(writeFile(images + "/set/a.PNG"));
    ASSERT_TRUE(writeFile(images + "/set/c.txt"));
    const auto collection = [&](const QString& name) {
        QStringList found;
        for (const QFileInfo& file :
             TestResource::locateCollection(TestResource::SearchImage, name, script, QString()))
            found.append(file.absoluteFilePath());
        return found;
    };
    EXPECT_EQ(collection("button"), QStringList{images + "/button.png"});
    EXPECT_EQ(collection("button.png"), QStringList{images + "/button.png"});
    EXPECT_EQ(collection("LOUD.PNG"), QStringList{images + "/LOUD.PNG"});
    EXPECT_EQ(collection("LOUD"), QStringList()) << "the suffix that is added is in lower case";
    EXPECT_EQ(collection("notes.txt"), QStringList());
    EXPECT_EQ(collection("set"), (QStringList{images + "/set/a.PNG", images + "/set/b.png"}));
    EXPECT_EQ(collection("none"), QStringList());

    QFileInfo info(images + "/button");
    EXPECT_TRUE(TestResource::isValidResource(info, TestResource::SearchImage));
    EXPECT_EQ(info.fileName(), "button.png");
    EXPECT_FALSE(TestResource::isValidResource(info, static_cast<TestResource::Type>(3)));
    EXPECT_EQ(TestResource::directoryName(static_cast<TestResource::Type>(3)), QString());
}

}  // namespace
}  // namespace Tamrix
