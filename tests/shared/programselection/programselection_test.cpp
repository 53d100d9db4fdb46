#include "shared/programselection/programselection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <optional>
#include <string>
#include <vector>

#include "support/environmentguard.h"
#include "support/files.h"

namespace Tamrix {
namespace {

using Test::EnvironmentGuard;
using Test::writeFile;

/// An installation with nothing in it and no variable that restricts programs.
class ProgramSelectionTest : public testing::Test {
protected:
    QTemporaryDir m_folder;
    EnvironmentGuard m_prefix{"TAMRIX_PREFIX", m_folder.path()};
    EnvironmentGuard m_names{"TAMRIX_AUTS", QString()};
    EnvironmentGuard m_paths{"TAMRIX_AUT_PATHS", QString()};
    EnvironmentGuard m_wrappers{"TAMRIX_AUT_WRAPPERS", QString()};
};

TEST_F(ProgramSelectionTest, IgnoresToolsAndWhatTheFileNames) {
    EXPECT_TRUE(isIgnoredProgram("sh"));
    EXPECT_TRUE(isIgnoredProgram("zsh"));
    EXPECT_FALSE(isIgnoredProgram("dash"));

    const QByteArray longLine(1500, 'x');
    ASSERT_TRUE(
        writeFile(m_folder.filePath("etc/ignoredauts.txt"), "myapp\r\n" + longLine + "\nlast\r"));
    EXPECT_TRUE(isIgnoredProgram("myapp"));
    EXPECT_FALSE(isIgnoredProgram("my"));
    EXPECT_FALSE(isIgnoredProgram("last")) << "only a line feed makes a carriage return an end";
    EXPECT_TRUE(isIgnoredProgram("last\r"));

    const EnvironmentGuard none("TAMRIX_PREFIX", QString());
    testing::internal::CaptureStderr();
    EXPECT_TRUE(isIgnoredProgram("calculator"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "TAMRIX_PREFIX not set. Ignoring program calculator.\n");
}

TEST_F(ProgramSelectionTest, TellsThatItCouldNotReadTheFile) {
    ASSERT_TRUE(QDir(m_folder.path()).mkpath("etc/ignoredauts.txt"));
    testing::internal::CaptureStderr();
    EXPECT_FALSE(isIgnoredProgram("calculator"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Error 21 while reading " + m_folder.path().toStdString() + "/etc/ignoredauts.txt\n");
}

TEST_F(ProgramSelectionTest, AllowsByNameAndPlace) {
    ASSERT_TRUE(writeFile(m_folder.filePath("bin/placed")));
    const QString places = "/nowhere:" + m_folder.filePath("bin");
    struct Case {
        const char* program;
        QString names;
        QString paths;
        int allowed;
    };
    const Case cases[] = {
        {"a", QString(), QString(), 1}, {"sh", "sh", QString(), 0},
        {"a", "a:b", QString(), 1},     {"c", "a:b", QString(), 0},
        {"placed", "a", places, 1},     {"placed", QString(), "/nowhere", 0},
        {"a", "", QString(), 0},        {"a", "", "", 0},
    };
    for (const Case& test : cases) {
        const EnvironmentGuard names("TAMRIX_AUTS", test.names);
        const EnvironmentGuard paths("TAMRIX_AUT_PATHS", test.paths);
        EXPECT_EQ(isAllowedProgram(test.program), test.allowed)
            << test.program << " " << test.names.toStdString() << " " << test.paths.toStdString();
    }
    testing::internal::CaptureStderr();
    EXPECT_TRUE(isAllowedProgram(""));
    EXPECT_TRUE(isAllowedProgram(nullptr));
    const std::string message = "isAllowedProgram() called with invalid arg.\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), message + message);
}

TEST_F(ProgramSelectionTest, MatchesWrappers) {
    EXPECT_TRUE(matchWrapper("a", "x"));
    const EnvironmentGuard wrappers("TAMRIX_AUT_WRAPPERS", "a=x,y:broken:a=z");
    EXPECT_TRUE(matchWrapper("a", "y"));
    EXPECT_FALSE(matchWrapper("a", "z"));
    EXPECT_TRUE(matchWrapper("b", "z"));
    EXPECT_DEATH(matchWrapper("broken", "x"), "the entry \"broken\" has no \"=\"");
}

TEST_F(ProgramSelectionTest, RemovesFromPaths) {
    struct Case {
        const char* before;
        const char* after;
    };
    const Case cases[] = {
        {"/usr:/opt/x:/bin", "/usr:/bin"}, {"/opt/x:/bin", "/bin"},
        {"/usr:/opt/x", "/usr"},           {"/opt/x", nullptr},
        {"/usr:/bin", "/usr:/bin"},        {"/opt/x:/opt/x", "/opt/x"},
        {"/usr:/opt/xy", "/usr:y"},
    };
    for (const Case& test : cases) {
        const EnvironmentGuard path("TAMRIX_TEST_PATH", test.before);
        removePathEnv("/opt/x", "TAMRIX_TEST_PATH");
        EXPECT_STREQ(getenv("TAMRIX_TEST_PATH"), test.after);
    }
}

TEST(StrSplitTest, KeepsEmptyParts) {
    const auto split = [](const char* text) {
        char** parts = strSplit(text, ':');
        std::vector<std::string> result;
        for (char** part = parts; *part; ++part)
            result.emplace_back(*part);
        freeStrSplit(parts);
        return result;
    };
    EXPECT_THAT(split(""), testing::ElementsAre(""));
    EXPECT_THAT(split("a::b:"), testing::ElementsAre("a", "", "b", ""));
    EXPECT_EQ(strSplit(nullptr, ':'), nullptr);
    freeStrSplit(nullptr);
}

TEST(ProgramNameTest, IsABaseName) {
    EXPECT_STREQ(tamrix_basename("/usr/bin/a"), "a");
    EXPECT_STREQ(tamrix_basename("a"), "a");
    EXPECT_STREQ(tamrix_basename("/usr/"), "");
    EXPECT_STREQ(progname(), "programselection_test");
}

}  // namespace
}  // namespace Tamrix
