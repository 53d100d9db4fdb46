#include "runner/suites/suiteconfig.h"

#include <gtest/gtest.h>

#include "runner/applications/launcher.h"
#include "runner/suites/suitefolder.h"
#include "support/outcomes.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::errorOf;

TEST(SuiteConfig, ReadsEverythingItDescribes) {
    const auto read = parseSuiteConfig(R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- a comment -->
<suite>
  <cases>
    <case name="second"/>
    <case name="füßling"></case>
  </cases>
  <settings>
    <setting name="retryDuration" value="200"/>
    <setting name="empty" value=""/>
  </settings>
  <applications>
    <application name="address book" path="bin/addressbook">
      <argument>--fresh</argument>
      <argument> with &lt;blanks&gt; </argument>
      <argument></argument>
      <workingDirectory>data</workingDirectory>
      <variable name="LANG" value="C"/>
      <variable name="EMPTY" value=""/>
    </application>
    <application name="other" path="/usr/bin/other" hook="preload"/>
  </applications>
</suite>
)",
                                       "config.xml");
    ASSERT_EQ(errorOf(read), QString());
    const SuiteConfig& config = *read;
    ASSERT_EQ(config.cases.size(), 2);
    EXPECT_EQ(config.cases.at(0).name, QString("second"));
    EXPECT_EQ(config.cases.at(0).line, 5);
    EXPECT_EQ(config.cases.at(1).name, QString("füßling"));
    ASSERT_EQ(config.settings.size(), 2);
    EXPECT_EQ(config.settings.at(0).name, QString("retryDuration"));
    EXPECT_EQ(config.settings.at(0).value, QString("200"));
    EXPECT_EQ(config.settings.at(1).value, QString(""));
    ASSERT_EQ(config.applications.size(), 2);
    const ConfiguredApplication& application = config.applications.at(0);
    EXPECT_EQ(application.name, QString("address book"));
    EXPECT_EQ(application.path, QString("bin/addressbook"));
    EXPECT_EQ(application.arguments, QStringList({"--fresh", " with <blanks> ", ""}));
    EXPECT_EQ(application.workingDirectory, QString("data"));
    EXPECT_EQ(application.environment,
              (QList<QPair<QString, QString>>{{"LANG", "C"}, {"EMPTY", ""}}));
    EXPECT_EQ(application.launcher->name(), QString("plugin"));
    EXPECT_EQ(config.applications.at(1).name, QString("other"));
    EXPECT_EQ(config.applications.at(1).launcher->name(), QString("preload"));
}

TEST(SuiteConfig, EveryFaultIsNamedWithItsLine) {
    const struct {
        const char* text;
        const char* error;
    } rows[] = {
        {"", "1: Premature end of document."},
        {"no xml", "1: Start tag expected."},
        {"<suite>\n<cases>\n</suite>", "3: Opening and ending tag mismatch."},
        {"<suite/>\n<suite/>", "2: Extra content at end of document."},
        {"<tests/>", "1: the root element is <tests>, not <suite>"},
        {"<suite version=\"2\"/>", "1: unknown attribute \"version\" of <suite>"},
        {"<suite>\n<case name=\"a\"/></suite>", "2: unknown element <case> in <suite>"},
        {"<suite>text</suite>", "1: unexpected text in <suite>"},
        {"<suite><cases>\n<case/></cases></suite>", "2: <case> needs the attribute \"name\""},
        {"<suite><cases>\n<case name=\"\"/></cases></suite>",
         "2: <case> needs the attribute \"name\""},
        {"<suite><cases><case name=\"a\"/>\n<case name=\"a\"/></cases></suite>",
         "2: case 'a' is listed twice"},
        {"<suite><cases><case name=\"a\">\n<x/></case></cases></suite>",
         "2: unknown element <x> in <case>"},
        {"<suite><settings>\n<setting name=\"a\"/></settings></suite>",
         "2: <setting> needs the attribute \"value\""},
        {"<suite><settings><setting name=\"a\" value=\"1\"/></settings>\n"
         "<settings><setting name=\"a\" value=\"2\"/></settings></suite>",
         "2: setting 'a' is listed twice"},
        {"<suite><applications>\n<application name=\"a\"/></applications></suite>",
         "2: <application> needs the attribute \"path\""},
        {"<suite><applications><application name=\"a\" path=\"b\">\n<argument><b/></argument>"
         "</application></applications></suite>",
         "2: unknown element <b> in <argument>"},
        {"<suite><applications><application name=\"a\" path=\"b\">\n"
         "<variable name=\"x=y\" value=\"\"/></application></applications></suite>",
         "2: a variable's name can't hold \"=\": 'x=y'"},
        {"<suite><applications><application name=\"a\" path=\"b\"><workingDirectory>x"
         "</workingDirectory>\n<workingDirectory>y</workingDirectory></application></applications>"
         "</suite>",
         "2: a second <workingDirectory>"},
        {"<!DOCTYPE suite [\n<!ENTITY a \"aaaa\">]>\n<suite>&a;</suite>",
         "2: a document type declaration is not allowed"},
        {"<suite>\xff</suite>", "1: Encountered incorrectly encoded content."},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(errorOf(parseSuiteConfig(row.text, "s/config.xml")),
                  QLatin1String("s/config.xml:") + row.error)
            << row.text;
    }
}

TEST(SuiteConfig, AnUnknownHookIsToldWithAllThatThereAre) {
    const QString error = errorOf(
        parseSuiteConfig("<suite><applications>\n<application name=\"a\" path=\"b\" hook=\"fish\"/>"
                         "</applications></suite>",
                         "s/config.xml"));
    EXPECT_TRUE(error.startsWith(QLatin1String("s/config.xml:2: hook is 'plugin', 'preload' or 'none'")))
        << qPrintable(error);
    EXPECT_TRUE(error.endsWith(QLatin1String(", not 'fish'"))) << qPrintable(error);
    for (const Launcher* const launcher : Launcher::all())
        EXPECT_TRUE(error.contains(QStringLiteral("'%1'").arg(launcher->name())));
}

TEST(SuiteConfig, FileMayBeAbsentButNotTooLargeOrUnreadable) {
    const Tamrix::Test::SuiteFolder suite;
    const auto absent = readSuiteConfig(suite.path());
    ASSERT_EQ(errorOf(absent), QString());
    EXPECT_TRUE(absent->cases.isEmpty());

    QByteArray text = "<suite>";
    text += QByteArray(static_cast<int>(maximalSuiteConfigSize) - text.size() - 8, ' ');
    text += "</suite>";
    suite.write("config.xml", text);
    EXPECT_EQ(errorOf(readSuiteConfig(suite.path())), QString());

    suite.write("config.xml", text + ' ');
    EXPECT_EQ(errorOf(readSuiteConfig(suite.path())),
              suite.path("config.xml") + " is larger than 1048576 bytes");

    QFile::remove(suite.path("config.xml"));
    QDir(suite.path()).mkdir("config.xml");
    QString error = errorOf(readSuiteConfig(suite.path()));
    EXPECT_TRUE(error.startsWith(suite.path("config.xml") + " can't be read: "))
        << qPrintable(error);

    QDir(suite.path()).rmdir("config.xml");
    QFile::link("nowhere", suite.path("config.xml"));
    error = errorOf(readSuiteConfig(suite.path()));
    EXPECT_TRUE(error.startsWith(suite.path("config.xml") + " can't be read: "))
        << qPrintable(error);
}

}  // namespace
}  // namespace Tamrix
