#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>

#include "support/fakelanguage.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

/// Writes down what is registered, in order.
struct ListingContext : Test::FakeContext {
    void addGlobalFunction(const QString& name, Function function) override {
        names.append(name);
        FakeContext::addGlobalFunction(name, function);
    }
    void addStaticMemberFunction(const QString& className, const QString& name,
                                 Function function) override {
        names.append(className + "." + name);
        FakeContext::addStaticMemberFunction(className, name, function);
    }
    void addMemberFunction(const QString& className, const QString& name, Function) override {
        names.append(className + "->" + name);
    }
    QStringList names;
};

TEST(Registration, RegistersWhatThereIsInOrder) {
    ListingContext context;
    context.initFunctions();
    const QStringList first = context.names;
    const auto namesOf = [&](const QString& pattern) {
        return first.filter(QRegularExpression(pattern)).join(' ');
    };
    EXPECT_EQ(namesOf("^[^.>]*$"),
              "waitFor waitForObject waitForObjectExists waitForObjectItem findObject "
              "findAllObjects mousePress mouseRelease mouseMove readGesture sendEvent cast source "
              "installEventHandler uninstallEventHandler startApplication attachToApplication "
              "waitForApplicationLaunch setApplicationContext defaultApplicationContext "
              "currentApplicationContext applicationContextList applicationContext");
    EXPECT_EQ(namesOf("^object\\."),
              "object.exists object.children object.globalBounds object.parent "
              "object.topLevelObjects object.properties object.objectName object.isPointer "
              "object.isReference object.isValue object.isArray object.queryInterface "
              "object.convertTo object.createNull");
    EXPECT_EQ(namesOf("^test\\."),
              "test.pass test.xpass test.fail test.breakpoint test.xfail test.fatal test.log "
              "test.warning test.skip test.verify test.xverify test.compare test.xcompare "
              "test.compareTextFiles test.compareXMLFiles test.compareJSONFiles "
              "test.exception test.resultCount test.stackTrace test.fixateResultContext "
              "test.restoreResultContext test.startSection test.endSection test.attachFile "
              "test.expect");
    EXPECT_EQ(namesOf("^tamrixinfo\\."),
              "tamrixinfo.testCase tamrixinfo.testCaseName tamrixinfo.testSuiteName "
              "tamrixinfo.version_str tamrixinfo.version tamrixinfo.major tamrixinfo.minor "
              "tamrixinfo.patch tamrixinfo.settingsGroup tamrixinfo.defaultDevice "
              "tamrixinfo.resultDir");
    EXPECT_EQ(namesOf("->").remove("ApplicationContext->"),
              "name commandLine pid cwd isRunning startTime usedMemory totalTime isFrozen "
              "readStdout readStderr osName environmentVariable host port expectExit detach");
    EXPECT_TRUE(ScriptContext::hasGlobalFunction("source"));
    // What is not built yet is no name at all.
    EXPECT_FALSE(ScriptContext::hasGlobalFunction("runFeatureFile"));
    EXPECT_EQ(context.tryCall("object", "grabScreenshot"), 2);

    const auto description = ScriptContext::functionDescription("test::compare");
    EXPECT_EQ(description.requiredParameters, (QStringList{"value1", "value2"}));
    EXPECT_EQ(description.optionalParameters, QStringList("comment"));
    for (const QString& name : first)
        EXPECT_FALSE(
            ScriptContext::functionDescription(QString(name).replace(".", "::").replace("->", "::"))
                .text.isEmpty())
            << name.toStdString();

    context.names.clear();
    context.initFunctions();
    EXPECT_EQ(context.names, first);
}

TEST(Registration, ArgumentsHaveTheNamesThatAreDocumented) {
    ListingContext().initFunctions();
    QFile document(TAMRIX_TEST_SOURCE_DIR "/docs/scripts.md");
    ASSERT_TRUE(document.open(QIODevice::ReadOnly));
    // Calls with plain arguments in the first column of a table: `object.children(object)`.
    const QRegularExpression call("`([\\w.]+)\\(([\\w=, ]*)\\)`");
    int checked = 0;
    for (const QString& line : QString::fromUtf8(document.readAll()).split('\n')) {
        if (!line.startsWith("| `"))
            continue;
        auto found = call.globalMatch(line.section(" | ", 0, 0));
        while (found.hasNext()) {
            const QRegularExpressionMatch match = found.next();
            const auto description =
                ScriptContext::functionDescription(match.captured(1).replace(".", "::"));
            const QStringList known =
                description.requiredParameters + description.optionalParameters;
            if (description.text.isEmpty())
                continue;
            for (const QString& argument : match.captured(2).split(", ", Qt::SkipEmptyParts))
                EXPECT_TRUE(known.contains(argument.section('=', 0, 0)))
                    << qPrintable(match.captured(0)) << ": " << qPrintable(known.join(' '));
            ++checked;
        }
    }
    EXPECT_GT(checked, 30);
}

}  // namespace
}  // namespace Tamrix
