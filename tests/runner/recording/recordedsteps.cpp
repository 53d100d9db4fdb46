#include "runner/recording/recordedsteps.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include "e2e/runnerprocess.h"
#include "runner/recording/recordedscript.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix::Test {

namespace {

/// Without coordinates, which hang on the style.
QStringList withoutPlaces(QStringList lines) {
    static const QRegularExpression s_place(
        R"re(((?:click|drag)\("[^"]*", )-?\d+, -?\d+(?:, -?\d+, -?\d+)?)re");
    return lines.replaceInStrings(s_place, R"(\1PLACE)");
}

void replay(const RecordedProgram& recorded, const QString& program, const QString& language,
            const QMap<QString, QString>& variables, const QByteArray& journal) {
    const SuiteFolder suite;
    const QByteArray script = recorded.script(program + ' ' + suite.path("journal"), language);
    for (const QString& value : variables)
        EXPECT_FALSE(script.contains(value.toUtf8())) << script.constData();
    suite.write("suite/case/test." + scriptSuffix(language).toUtf8(), script);
    RunnerProcess runner;
    runner.setVariable("QT_QUICK_BACKEND", "software");
    for (auto it = variables.cbegin(); it != variables.cend(); ++it)
        runner.setVariable(it.key().toLatin1(), it.value());
    runner.run({"run", suite.path("suite"), "--aut-display", "auto", "--result-dir",
                suite.path("results")});
    EXPECT_EQ(runner.exitCode(), 0)
        << qPrintable(runner.output()) << qPrintable(runner.errors()) << script.constData();
    EXPECT_EQ(QString::fromUtf8(readFile(suite.path("journal"))), QString::fromUtf8(journal))
        << script.constData();
}

}  // namespace

void recordAndReplay(const QString& target, const std::vector<RecordedStep>& steps,
                     const QMap<QString, QString>& variables, const QStringList& languages) {
    const SuiteFolder folder;
    const QString program = TAMRIX_TEST_PREFIX "/tests/targets/" + target;
    RecordedProgram recorded(program, {folder.path("journal")});
    ASSERT_EQ(recorded.error(), QString());
    for (const RecordedStep& step : steps) {
        step.act(recorded);
        EXPECT_EQ(withoutPlaces(recorded.takeLines()), step.lines) << step.name;
    }
    recorded.end();
    for (const QString& language : languages)
        replay(recorded, program, language, variables, readFile(folder.path("journal")));
}

}  // namespace Tamrix::Test
