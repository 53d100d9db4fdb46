// The cases in every language, see README.md beside this file.

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QTemporaryDir>

#include "conformance/casejournal.h"
#include "e2e/journal.h"
#include "e2e/runnerprocess.h"
#include "support/files.h"
#include "support/golden.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

const QString folder = QStringLiteral(TAMRIX_TEST_SOURCE_DIR "/tests/conformance");

struct Language {
    const char* suffix;
    const char* name;
    const char* plugin;
    /// Of files that no other language gets.
    const char* furtherSuffix;
};

const Language languages[] = {
    {"py", "Python", "tamrixpython-3", ""}, {"js", "JavaScript", "tamrixjavascript", "mjs"},
    {"tcl", "Tcl", "tamrixtcl", ""},        {"pl", "Perl", "tamrixperl", "pm"},
    {"rb", "Ruby", "tamrixruby", ""},
};

QStringList caseNames() {
    return QDir(folder + "/cases").entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
}

QString caseFile(const QString& name, const QString& file) {
    return folder + "/cases/" + name + '/' + file;
}

LanguageFacts factsOf(const Language& language) {
    return LanguageFacts::read(folder + "/languages/" + language.suffix + ".tsv");
}

/// Whether there is anything in the language: one that nobody has begun is left out.
bool isWritten(const Language& language) {
    return QFile::exists(folder + "/languages/" + language.suffix + ".tsv");
}

bool isBuilt(const Language& language) {
    return QFile::exists(QString(TAMRIX_TEST_PREFIX "/lib/%1.so").arg(language.plugin));
}

bool hasOwnSuite(const QString& name) {
    return QFile::exists(caseFile(name, "run.txt"));
}

/// Whether the file of a case is one for the language.
bool isFor(const Language& language, const QString& file) {
    const QString suffix = QFileInfo(file).suffix();
    bool isOfALanguage = false;
    for (const Language& each : languages) {
        const bool is =
            suffix == each.suffix || (!suffix.isEmpty() && suffix == each.furtherSuffix);
        if (is && QByteArray(each.suffix) == language.suffix)
            return true;
        isOfALanguage = isOfALanguage || is;
    }
    return !isOfALanguage;
}

/// A suite of cases in one language, on disk.
class Suite {
public:
    explicit Suite(const Language& language) : m_language(language) {
        writeFile(path("config.xml"),
                  "<suite><applications><application name='widgets' path='" WIDGETS_TARGET
                  "'/></applications></suite>");
    }

    /// False when the language has no such case.
    bool add(const QString& name) {
        const QString own = caseFile(name, "");
        const bool isFeature =
            QFile::exists(own + "test.feature") && QDir(own).entryList({"script.*"}).isEmpty();
        if (!isFeature && !QFile::exists(own + "script." + m_language.suffix))
            return false;
        QDirIterator files(own, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString file = files.next();
            const QString relative = file.mid(own.size());
            if (relative == "expected.txt" || relative == "run.txt" || !isFor(m_language, file))
                continue;
            QString target = name + '/' + relative;
            if (relative.startsWith("script."))
                target = name + "/test." + QFileInfo(file).suffix();
            else if (relative.startsWith("shared/"))
                target = relative;
            writeFile(path(target), readFile(file));
        }
        m_names += name;
        return true;
    }

    /// Runs the cases and gives their journals. `commands` are the lines of a run.txt.
    QMap<QString, QString> run(const QStringList& commands) {
        const QString journal = path("results/journal.jsonl");
        QStringList arguments{"run",           path(""),       "--result-dir",
                              path("results"), "--no-actions", "--quiet"};
        QString awaited;
        for (const QString& command : commands) {
            if (command.startsWith("interrupt "))
                awaited = command.mid(10);
            else
                arguments += command.split(' ', Qt::SkipEmptyParts);
        }
        RunnerProcess runner;
        runner.setVariable("QT_QPA_PLATFORM", "offscreen");
        runner.setVariable("LC_ALL", "C.UTF-8");
        if (awaited.isEmpty()) {
            runner.run(arguments);
        } else {
            arguments.replaceInStrings("--quiet", "--verbose");
            runner.start(arguments);
            EXPECT_TRUE(runner.waitForOutput(awaited)) << qPrintable(runner.output());
            runner.sendSignal(SIGINT);
            runner.finish();
        }
        m_errors = runner.errors();
        return caseJournals(readJournal(journal), m_folder.path(), factsOf(m_language));
    }

    QString errors() const { return m_errors; }
    QStringList names() const { return m_names; }

private:
    QString path(const QString& name) const { return m_folder.filePath(name); }

    const Language& m_language;
    QTemporaryDir m_folder;
    QStringList m_names;
    QString m_errors;
};

class Conformance : public testing::TestWithParam<Language> {
protected:
    void SetUp() override {
        if (!isBuilt(GetParam()) || !isWritten(GetParam()))
            GTEST_SKIP() << "There is no plug-in for " << GetParam().name;
    }

    /// Expected is what follows the title. Only the run of Python writes it.
    static void compare(const QString& name, const QString& journal) {
        SCOPED_TRACE(qPrintable(name));
        const QString expected =
            factsOf(GetParam())
                .withoutMissingNames(QString::fromUtf8(readFile(caseFile(name, "expected.txt"))));
        const QString title = expected.section('\n', 0, 0);
        EXPECT_TRUE(title.startsWith("# "));
        if (QByteArray(GetParam().suffix) == "py") {
            EXPECT_TRUE(compareWithGolden("../conformance/cases/" + name + "/expected.txt",
                                          title + '\n' + journal));
        } else if (expected.section('\n', 1) != journal) {
            ADD_FAILURE() << qPrintable(lineDifference(expected.section('\n', 1), journal));
        }
    }
};

TEST_P(Conformance, EachCaseHasTheExpectedJournal) {
    const LanguageFacts facts = factsOf(GetParam());
    Suite suite(GetParam());
    for (const QString& name : caseNames()) {
        if (hasOwnSuite(name) || facts.refused.contains(name))
            continue;
        EXPECT_TRUE(suite.add(name)) << "No script and no reason: " << qPrintable(name);
    }
    const QMap<QString, QString> journals = suite.run({});
    EXPECT_EQ(suite.errors(), QString(""));
    for (const QString& name : suite.names())
        compare(name, journals.value(name));
}

TEST_P(Conformance, EachCaseWithARunOfItsOwnHasTheExpectedJournal) {
    const LanguageFacts facts = factsOf(GetParam());
    for (const QString& name : caseNames()) {
        if (!hasOwnSuite(name) || facts.refused.contains(name))
            continue;
        Suite suite(GetParam());
        EXPECT_TRUE(suite.add(name)) << "No script and no reason: " << qPrintable(name);
        const QStringList commands =
            QString::fromUtf8(readFile(caseFile(name, "run.txt"))).split('\n', Qt::SkipEmptyParts);
        compare(name, suite.run(commands).value(name));
    }
}

INSTANTIATE_TEST_SUITE_P(, Conformance, testing::ValuesIn(languages),
                         [](const auto& each) { return std::string(each.param.suffix); });

/// The table of docs/languages.md: a row for each case, a column for each language.
TEST(ConformanceTable, StandsInTheDocumentation) {
    QString table = "| What holds |";
    QString rule = "|---|";
    QMap<QByteArray, LanguageFacts> facts;
    for (const Language& language : languages) {
        facts[language.suffix] = factsOf(language);
        table += QString(" %1 |").arg(language.name);
        rule += "---|";
    }
    table += '\n' + rule + '\n';
    QStringList reasons;
    for (const QString& name : caseNames()) {
        const QString expected = QString::fromUtf8(readFile(caseFile(name, "expected.txt")));
        table += "| " + expected.section('\n', 0, 0).mid(2) + " |";
        for (const Language& language : languages) {
            const QString reason = facts[language.suffix].refused.value(name);
            if (!isWritten(language)) {
                table += " |";
            } else if (reason.isEmpty()) {
                table += " yes |";
            } else {
                if (!reasons.contains(reason))
                    reasons += reason;
                table += QString(" no (%1) |").arg(reasons.indexOf(reason) + 1);
            }
        }
        table += '\n';
    }
    for (int index = 0; index < reasons.size(); ++index)
        table += QString("\n%1. %2").arg(QString::number(index + 1), reasons.at(index));
    if (!reasons.isEmpty())
        table += '\n';

    const QString begin = "<!-- Made by conformance_test. -->\n";
    const QString end = "<!-- End of what it made. -->\n";
    const QString document =
        QString::fromUtf8(readFile(TAMRIX_TEST_SOURCE_DIR "/docs/languages.md"));
    const int from = document.indexOf(begin);
    const int to = document.indexOf(end);
    ASSERT_TRUE(from >= 0 && to > from);
    EXPECT_TRUE(compareWithGolden("../../docs/languages.md",
                                  document.left(from) + begin + table + document.mid(to)));
}

}  // namespace
}  // namespace Tamrix
