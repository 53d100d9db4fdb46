// What the documents show works: their blocks of scripts run, against real programs where they need
// them.

#include <gtest/gtest.h>

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <algorithm>
#include <iterator>
#include <memory>
#include <vector>

#include "e2e/runnerprocess.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::readFile;
using Tamrix::Test::RunnerProcess;
using Tamrix::Test::writeFile;

/// A language of scripts, as it is named behind ``` in documents.
struct Language {
    const char* name;
    const char* suffix;
    /// Begins the function main().
    const char* main;
    /// Ends it.
    const char* end;
    /// A statement that does nothing.
    const char* nothing;
};

const Language languages[] = {
    {"python", "py", "def main():", "", "pass"},
    {"tcl", "tcl", "proc main {} {", "}\n", ""},
};

/// A block of a script in a document. In the line before it may stand
///
///     <!-- Tested in CASE -->    it is the script of a copy of this test case
///
/// with ", fails" behind the case where its last line is meant to fail, and ", behind CODE" where
/// CODE is to run before. A block without a function main() is the body of one.
struct Block {
    const Language* language;
    /// Document and line, for messages.
    QString place;
    QString caseFolder;
    bool isToFail = false;
    QString codeBefore;
    QStringList lines;

    QByteArray script() const {
        QString text;
        const QString begin = language->main;
        const bool isWhole = std::any_of(lines.begin(), lines.end(), [&](const QString& line) {
            return line.startsWith(begin);
        });
        if (!isWhole)
            text =
                begin + "\n    " + (codeBefore.isEmpty() ? language->nothing : codeBefore) + '\n';
        for (const QString& line : lines)
            text += (isWhole || line.isEmpty() ? line : "    " + line) + '\n';
        if (!isWhole)
            text += language->end;
        return text.toUtf8();
    }
};

/// False when the comment says something else.
bool readSetUp(const QString& comment, Block* block) {
    static const QRegularExpression pattern(
        "^<!-- Tested in ([^ ,]+)(, fails)?(?:, behind (.+))? -->$");
    const QRegularExpressionMatch match = pattern.match(comment);
    block->caseFolder = match.captured(1);
    block->isToFail = !match.captured(2).isEmpty();
    block->codeBefore = match.captured(3);
    return match.hasMatch();
}

std::vector<Block> blocksOf(const QString& document) {
    std::vector<Block> blocks;
    const QStringList lines = QString::fromUtf8(readFile(document)).split('\n');
    for (int index = 0; index < lines.size(); ++index) {
        const auto* const language = std::find_if(
            std::begin(languages), std::end(languages),
            [&](const Language& each) { return lines[index] == QLatin1String("```") + each.name; });
        if (language == std::end(languages))
            continue;
        Block block;
        block.language = language;
        block.place = QFileInfo(document).fileName() + ':' + QString::number(index + 1);
        const QString before = lines.value(index - 1);
        EXPECT_TRUE(readSetUp(before, &block) || !before.startsWith("<!--")) << qPrintable(before);
        for (++index; index < lines.size() && lines[index] != "```"; ++index)
            block.lines.append(lines[index]);
        blocks.push_back(block);
    }
    return blocks;
}

/// A block on its way.
struct BlockRun {
    Block block;
    QTemporaryDir folder;
    RunnerProcess runner;

    QString scriptName() const {
        return QStringLiteral("/test.") + QLatin1String(block.language->suffix);
    }

    void start() {
        const QString source = TAMRIX_TEST_SOURCE_DIR "/" + block.caseFolder;
        QString testCase = folder.filePath("suite/case");
        if (!block.caseFolder.isEmpty()) {
            const QString suite = QFileInfo(source).path();
            ASSERT_EQ(QProcess::execute("cp", {"-r", suite, folder.path()}), 0)
                << qPrintable(suite);
            testCase =
                folder.filePath(QFileInfo(suite).fileName() + '/' + QFileInfo(source).fileName());
            ASSERT_TRUE(QFile::exists(testCase + scriptName())) << qPrintable(block.place);
        }
        ASSERT_TRUE(writeFile(testCase + scriptName(), block.script()));
        // The programs find none of the user's settings and leave none.
        for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
            runner.setVariable(name, folder.path());
        runner.setVariable("QT_QPA_PLATFORM", "offscreen");
        const QString suite = QFileInfo(testCase).path();
        // Programs without agent need a display, and search images are of one.
        const bool needsDisplay = readFile(suite + "/config.xml").contains("hook=\"none\"") ||
                                  QFile::exists(suite + "/shared/searchImages");
        runner.start({"run", suite, QFileInfo(testCase).fileName(), "--result-dir",
                      folder.filePath("results"), "--aut-display",
                      needsDisplay ? "auto" : "inherit"});
    }

    void finish() {
        runner.finish();
        EXPECT_EQ(runner.exitCode(), block.isToFail ? 1 : 0)
            << qPrintable(block.place + ":\n" + runner.output() + runner.errors());
        const QString lastLine =
            scriptName() + ":" + QString::number(block.script().count('\n')) + ": ";
        EXPECT_TRUE(!block.isToFail || runner.output().contains(lastLine))
            << qPrintable(block.place + ":\n" + runner.output());
    }
};

TEST(Documents, EveryScriptRuns) {
    const QDir docs(TAMRIX_TEST_SOURCE_DIR "/docs");
    QStringList documents{TAMRIX_TEST_SOURCE_DIR "/README.md"};
    for (const QString& name : docs.entryList({"*.md"}, QDir::Files))
        documents.append(docs.filePath(name));
    // All at once: one of them waits for what is not there.
    std::vector<std::unique_ptr<BlockRun>> runs;
    for (const QString& document : documents) {
        for (const Block& block : blocksOf(document)) {
            runs.push_back(std::make_unique<BlockRun>());
            runs.back()->block = block;
            runs.back()->start();
        }
    }
    EXPECT_GE(runs.size(), 5U);
    for (const auto& run : runs)
        run->finish();
}

}  // namespace
}  // namespace Tamrix
