#include "shared/settings/settings.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "support/environmentguard.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/warningrecorder.h"

namespace Tamrix {
namespace {

using Test::EnvironmentGuard;
using Test::readFile;
using Test::WarningRecorder;
using Test::writeFile;

class SettingsTest : public testing::Test {
protected:
    QString path() const { return folder.filePath("test.ini"); }

    Settings parsed(const QByteArray& contents) const {
        EXPECT_TRUE(writeFile(path(), contents));
        return Settings(path());
    }

    QTemporaryDir folder;
};

TEST_F(SettingsTest, MissingFileIsEmpty) {
    const WarningRecorder warnings;
    const Settings settings(path());
    EXPECT_TRUE(settings.groupList().isEmpty());
    EXPECT_EQ(warnings.messages(), QStringList());
}

TEST_F(SettingsTest, ReadsGroupsCommentsAndBlanks) {
    const Settings settings = parsed(
        "# comment\n"
        "\n"
        "[B]\r\n"
        "  key = \"value\"  \n"
        "  # another\n"
        "=x\n"
        "a = b = c\n"
        "twice = 1\n"
        "twice = 2\n"
        "[A]\n"
        "[Open\n"
        "[C] x\n"
        "[ D ]\n"
        "[\n");
    EXPECT_EQ(settings.groupList(), (QStringList{"", " D ", "A", "B", "C] x", "Open"}));
    EXPECT_TRUE(settings.hasGroup("A"));
    EXPECT_FALSE(settings.hasGroup("a"));

    QString raw;
    EXPECT_TRUE(settings.readRawEntry("B", "key", &raw));
    EXPECT_EQ(raw, " \"value\"") << "leading blanks are kept";
    EXPECT_TRUE(settings.readRawEntry("B", "", &raw));
    EXPECT_EQ(raw, "x");
    EXPECT_TRUE(settings.readRawEntry("B", "a", &raw));
    EXPECT_EQ(raw, " b = c");
    EXPECT_EQ(settings.readNumEntry("B", "twice"), 2);
    EXPECT_FALSE(settings.readRawEntry("A", "key", &raw));
    EXPECT_FALSE(settings.isDirty());
}

TEST_F(SettingsTest, RepeatedHeaderReplacesTheGroup) {
    const Settings settings = parsed("[G]\na = \"1\"\n[H]\n[G]\nb = \"2\"\n");
    EXPECT_EQ(settings.entryList("G", ""), QStringList{"b"});
}

TEST_F(SettingsTest, BadLineEndsTheParse) {
    const QString file = path();
    {
        const WarningRecorder warnings;
        const Settings settings = parsed("[G]\na = 1\nnonsense\nb = 2\n");
        EXPECT_EQ(settings.entryList("G", ""), QStringList{"a"});
        EXPECT_EQ(warnings.messages(), QStringList{"Tamrix::Settings::parse: in file " + file +
                                                   ": corrupted line `nonsense' in group `G'"});
    }
    const WarningRecorder warnings;
    const Settings settings = parsed("a = 1\n[G]\nb = 2\n");
    EXPECT_TRUE(settings.groupList().isEmpty());
    EXPECT_EQ(warnings.messages(), QStringList{"Tamrix::Settings::parse: in file " + file +
                                               ": line `a = 1' not in a group"});
}

TEST_F(SettingsTest, WarnsOfWhatItCanNotOpen) {
    const WarningRecorder warnings;
    const Settings settings(folder.path());
    EXPECT_TRUE(settings.groupList().isEmpty());
    EXPECT_EQ(warnings.messages(), QStringList{"Tamrix::Settings::parse: could not open file `" +
                                               folder.path() + "' for reading"});
}

struct StringCase {
    const char* raw;
    /// Null: not one string, the default is given.
    const char* text;
    /// Null: malformed, the default is given.
    const char* list;  ///< joined by "|"
    const char* warning = nullptr;
};

const StringCase stringCases[] = {
    {R"("plain")", "plain", "plain"},
    {R"("")", "", ""},
    {R"("a" junk, "b")", nullptr, "a|b", "Tamrix::Settings: entry is not a string"},
    {R"("","")", nullptr, "|", "Tamrix::Settings: entry is not a string"},
    {"plain", nullptr, "", "Tamrix::Settings: entry is not a string"},
    {"", nullptr, "", "Tamrix::Settings: entry is not a string"},
    {R"("\n\r\t\"\\")", "\n\r\t\"\\", "\n\r\t\"\\"},
    {R"("a","b)", nullptr, nullptr, "Tamrix::Settings: string not delimited by quotes"},
    {R"("a\)", nullptr, nullptr, "Tamrix::Settings: string not delimited by quotes"},
    {R"(")", nullptr, nullptr, "Tamrix::Settings: string not delimited by quotes"},
    {R"("\x")", nullptr, nullptr, "Tamrix::Settings: unknown quoted character 'x' (0x78)"},
    {"\"\\\u00fc\"", nullptr, nullptr,
     "Tamrix::Settings: unknown quoted character '\u00fc' (0xfc)"},
    {"\"\\\u20ac\"", nullptr, nullptr,
     "Tamrix::Settings: unknown quoted character with hex code 0x20ac"},
};

TEST_F(SettingsTest, UnquotesStrings) {
    for (const StringCase& expected : stringCases) {
        SCOPED_TRACE(expected.raw);
        Settings settings(path());
        settings.writeRawEntry("G", "k", QString::fromUtf8(expected.raw));
        const WarningRecorder warnings;
        EXPECT_EQ(settings.readEntry("G", "k", "default"),
                  expected.text ? QString::fromUtf8(expected.text) : QString("default"));
        if (expected.warning) {
            ASSERT_FALSE(warnings.messages().isEmpty());
            EXPECT_EQ(warnings.messages().first(),
                      QString::fromUtf8(expected.warning) + " in " + path());
        }
        EXPECT_EQ(settings.readListEntry("G", "k", {"default"}).join('|'),
                  expected.list ? QString::fromUtf8(expected.list) : QString("default"));
    }
}

TEST_F(SettingsTest, ReadsNumbersAndBools) {
    const Settings settings = parsed(
        "[G]\n"
        "n = 5\nquoted = \"5\"\nhex = 0x10\nd = 1.5e3\nword = plain\n"
        "true = TrUe\nfalse = \"False\"\none = \"1\"\nzero = 0\nodd = \"\"7\"\"\nhalf = 1\"\n");
    EXPECT_EQ(settings.readNumEntry("G", "n", 9), 5);
    EXPECT_EQ(settings.readNumEntry("G", "quoted", 9), 9);
    EXPECT_EQ(settings.readNumEntry("G", "hex", 9), 9);
    EXPECT_EQ(settings.readNumEntry("X", "n", 9), 9);
    EXPECT_EQ(settings.readDoubleEntry("G", "d", 9), 1500);
    EXPECT_EQ(settings.readDoubleEntry("G", "word", 9), 9);

    EXPECT_TRUE(settings.readBoolEntry("G", "true"));
    EXPECT_TRUE(settings.readBoolEntry("G", "one"));
    EXPECT_TRUE(settings.readBoolEntry("G", "half"));
    EXPECT_FALSE(settings.readBoolEntry("G", "false", true));
    EXPECT_FALSE(settings.readBoolEntry("G", "zero", true));
    for (const char* key : {"word", "odd", "none"}) {
        EXPECT_TRUE(settings.readBoolEntry("G", key, true)) << key;
        EXPECT_FALSE(settings.readBoolEntry("G", key, false)) << key;
    }
}

TEST_F(SettingsTest, NormalizesTheKeysOfCallers) {
    Settings settings(path());
    settings.writeEntry("G", "/a//b=c/", "x");
    settings.writeEntry("G", "a///b", "y");
    settings.writeEntry("G", "/", "z");
    EXPECT_EQ(settings.readEntry("G", "a/b_c"), "x");
    EXPECT_EQ(settings.readEntry("G", "a//b_c/"), "x");
    // "//" stays of "///", and is normalized away on reading: such a key is reached as it was
    // written.
    EXPECT_EQ(settings.readEntry("G", "a///b"), "y");
    EXPECT_EQ(settings.readEntry("G", "a//b"), QString());
    EXPECT_EQ(settings.readEntry("G", ""), "z");

    settings.removeEntry("G", "/a/b=c");
    EXPECT_EQ(settings.readEntry("G", "a/b_c", "gone"), "gone");
}

TEST_F(SettingsTest, ListsLevels) {
    const Settings settings = parsed(
        "[G]\nplain = 1\nw/one/a = 1\nw/one/b = 1\nw/two/a/deep = 1\nw/leaf = 1\nwx/a = 1\n");
    EXPECT_EQ(settings.entryList("G", ""), QStringList{"plain"});
    EXPECT_EQ(settings.subkeyList("G", ""), (QStringList{"w", "wx"}));
    EXPECT_EQ(settings.entryList("G", "/w/"), QStringList{"leaf"});
    EXPECT_EQ(settings.subkeyList("G", "w"), (QStringList{"one", "two"}));
    EXPECT_EQ(settings.entryList("G", "w/one"), (QStringList{"a", "b"}));
    EXPECT_EQ(settings.subkeyList("none", ""), QStringList());
}

TEST_F(SettingsTest, WritesWhatItReadsAgain) {
    const QString nasty = QString::fromUtf8("a\nb\r\t\"\\ , \u20ac [x] # = \x01");
    {
        Settings settings(path());
        settings.writeEntry("Z", "text", nasty);
        settings.writeEntry("Z", "list", QStringList{"a", nasty, ""});
        settings.writeEntry("A", "empty", QStringList());
        settings.writeEntry("A", "int", -7);
        settings.writeEntry("A", "double", 1234567.0);
        settings.writeEntry("A", "bool", true);
        settings.writeRawEntry("A", "raw", "  as it is  ");
        EXPECT_TRUE(settings.isDirty());
    }
    const QByteArray written = readFile(path());
    EXPECT_TRUE(
        written.startsWith("[A]\nbool = 1\ndouble = 1.23457e+06\nempty = \nint = -7\n"
                           "raw = as it is\n\n[Z]\nlist = \"a\",\"a\\nb"))
        << written.constData();
    EXPECT_TRUE(written.endsWith("\"\n\n"));

    const Settings again(path());
    EXPECT_EQ(again.readEntry("Z", "text"), nasty);
    EXPECT_EQ(again.readListEntry("Z", "list"), (QStringList{"a", nasty, ""}));
    EXPECT_EQ(again.readListEntry("A", "empty", {"default"}), QStringList());
    EXPECT_TRUE(again.readBoolEntry("A", "bool"));
}

TEST_F(SettingsTest, WritesOnlyWhatWasChanged) {
    const QByteArray odd = "[G]\n# comment\na=1\n";
    ASSERT_TRUE(writeFile(path(), odd));
    {
        const WarningRecorder warnings;
        Settings settings(path());
        settings.removeEntry("none", "a");
        EXPECT_FALSE(settings.isDirty());
        EXPECT_EQ(
            warnings.messages(),
            QStringList{"Tamrix::Settings::removeEntry: group 'none' not found in " + path()});
    }
    EXPECT_EQ(readFile(path()), odd);
    {
        Settings settings(path());
        settings.removeEntry("G", "none");
        EXPECT_TRUE(settings.isDirty()) << "also when there was no such key";
    }
    EXPECT_EQ(readFile(path()), "[G]\na = 1\n\n");
}

TEST_F(SettingsTest, CopyStartsCleanAndAssignmentWritesWhatItReplaces) {
    Settings changed(path());
    changed.writeEntry("G", "a", 1);
    {
        Settings copy(changed);
        EXPECT_FALSE(copy.isDirty());
        EXPECT_EQ(copy.readNumEntry("G", "a"), 1);
        copy.setExpandEnvironment(true);
    }
    EXPECT_FALSE(QFile::exists(path()));
    changed = Settings(folder.filePath("other.ini"));
    EXPECT_EQ(Settings(path()).readNumEntry("G", "a"), 1);
    EXPECT_FALSE(changed.hasGroup("G"));
}

TEST_F(SettingsTest, FlushMakesFoldersAndTellsFailures) {
    const QString deep = folder.filePath("x/y/deep.ini");
    {
        Settings settings(deep);
        settings.writeEntry("G", "a", 1);
        EXPECT_TRUE(settings.flush());
        EXPECT_TRUE(settings.isDirty());
    }
    EXPECT_EQ(readFile(deep), "[G]\na = 1\n\n");

    const auto failureOf = [](const QString& file) {
        const WarningRecorder warnings;
        Settings settings(file);
        settings.writeEntry("G", "a", 1);
        EXPECT_FALSE(settings.flush());
        return warnings.messages().value(0);
    };
    ASSERT_TRUE(writeFile(path()));
    EXPECT_EQ(failureOf(path() + "/sub/a.ini"),
              "Tamrix::Settings::flush: could not create directory `" + path() + "/sub'.");
    ASSERT_TRUE(QDir(folder.path()).mkdir("folder.ini"));
    const WarningRecorder warnings;
    Settings settings(folder.filePath("folder.ini"));
    settings.writeEntry("G", "a", 1);
    EXPECT_FALSE(settings.flush());
    EXPECT_EQ(warnings.messages().value(1), "Tamrix::Settings::flush: could not open file `" +
                                                folder.filePath("folder.ini") + "' for writing");
}

TEST_F(SettingsTest, FlushKeepsALinkAndTheFileBehindIt) {
    ASSERT_TRUE(writeFile(folder.filePath("real.ini"), "[G]\n"));
    ASSERT_TRUE(QFile::link(folder.filePath("real.ini"), path()));
    { Settings(path()).writeEntry("G", "a", 1); }
    EXPECT_TRUE(QFileInfo(path()).isSymLink());
    EXPECT_EQ(readFile(folder.filePath("real.ini")), "[G]\na = 1\n\n");
}

struct ExpansionCase {
    const char* text;
    const char* expanded;
};

const ExpansionCase expansionCases[] = {
    {"a $(TAMRIX_X)/$(TAMRIX_X) b", "a value/value b"},
    {"$$(TAMRIX_X)", "$(TAMRIX_X)"},
    {"$$$(TAMRIX_X)", "$value"},
    {"$", "$"},
    {"a$$", "a$"},
    {"$x $(TAMRIX_X)", "$x value"},
    {"$(TAMRIX_EMPTY) $(TAMRIX_UNSET) $(TAMRIX_X)", "$(TAMRIX_EMPTY) $(TAMRIX_UNSET) value"},
    {"$(TAMRIX_X", "$(TAMRIX_X"},
    {"$()", "$()"},
    // References in a value count from its third character on.
    {"$(TAMRIX_NESTED)", "12value"},
    {"$(TAMRIX_EARLY)", "$(TAMRIX_X)"},
};

TEST_F(SettingsTest, ExpandsTheEnvironment) {
    const EnvironmentGuard x("TAMRIX_X", "value");
    const EnvironmentGuard nested("TAMRIX_NESTED", "12$(TAMRIX_X)");
    const EnvironmentGuard early("TAMRIX_EARLY", "$(TAMRIX_X)");
    const EnvironmentGuard empty("TAMRIX_EMPTY", "");
    const EnvironmentGuard unset("TAMRIX_UNSET", QString());
    for (const auto& [text, expanded] : expansionCases) {
        Settings settings(path());
        settings.writeEntry("G", "k", text);
        EXPECT_EQ(settings.readEntry("G", "k"), text) << "off until asked for";
        settings.setExpandEnvironment(true);
        EXPECT_EQ(settings.readEntry("G", "k"), expanded) << text;
        EXPECT_EQ(settings.readListEntry("G", "k"), QStringList{expanded}) << text;
    }
}

TEST_F(SettingsTest, NamesTheKnownFiles) {
    const EnvironmentGuard user("TAMRIX_USER_SETTINGS_DIR", folder.filePath("user"));
    EXPECT_EQ(Settings::userSettingsDir(), folder.filePath("user/ver1"));
    EXPECT_TRUE(QFileInfo(folder.filePath("user")).isDir()) << "asking creates it";
    EXPECT_EQ(UserSettings(UserSettingsType::Paths).path(), folder.filePath("user/ver1/paths.ini"));
    EXPECT_EQ(UserSettings(UserSettingsType::ResultHubCommand).path(),
              folder.filePath("user/ver1/resulthubcmd.ini"));

    const EnvironmentGuard prefix("TAMRIX_PREFIX", folder.path());
    EXPECT_EQ(GlobalSettings(GlobalSettingsType::Tamrix).path(), folder.filePath("etc/tamrix.ini"));
    EXPECT_EQ(GlobalSettings(GlobalSettingsType::Paths).path(), folder.filePath("etc/paths.ini"));
    const GlobalSettings outside(static_cast<GlobalSettingsType>(2));
    EXPECT_EQ(outside.path(), folder.filePath("etc") + "/");
    EXPECT_TRUE(outside.groupList().isEmpty());
}

TEST_F(SettingsTest, HomeIsTheDefaultForTheUser) {
    const EnvironmentGuard user("TAMRIX_USER_SETTINGS_DIR", "");
    const EnvironmentGuard home("HOME", folder.path());
    EXPECT_EQ(Settings::settingsDir(), folder.path());
    EXPECT_EQ(Settings::userSettingsDir(), folder.filePath(".tamrix/ver1"));
}

}  // namespace
}  // namespace Tamrix
