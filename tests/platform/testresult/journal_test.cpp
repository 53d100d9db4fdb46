#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <functional>

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include "platform/testresult/journalentry.h"
#include "platform/testresult/journalpaths.h"
#include "platform/testresult/journalreader.h"
#include "platform/testresult/journalreport.h"
#include "platform/testresult/samplerun.h"
#include "support/environmentguard.h"
#include "support/files.h"
#include "support/golden.h"
#include "support/recordingreport.h"

using namespace Tamrix;
using namespace Tamrix::Test;

namespace {

const QByteArray header = "{\"format\":\"tamrix-journal\",\"version\":1}\n";

/// What a JSON text can hold of any text: lone surrogates become U+FFFD.
QString wellFormed(const QString& text) {
    QString result;
    for (int i = 0; i < text.size(); ++i) {
        const bool isPair =
            text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair)
            result += text[i++];
        result += isPair || !text[i].isSurrogate() ? text[i] : QChar(QChar::ReplacementCharacter);
    }
    return result;
}

class JournalTest : public testing::Test {
protected:
    /// Replays bytes as the journal "j".
    bool replay(QByteArray bytes) {
        recorded.entries.clear();
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        return reader.replay(&buffer, "j");
    }

    QTemporaryDir directory;
    QString path = directory.filePath("run.journal");
    RecordingReport recorded;
    JournalReader reader{&recorded};
};

TEST_F(JournalTest, IsJsonLinesThatOtherProgramsRead) {
    JournalReport journal(path);
    addSampleRun(&journal);
    ResultAdded result;
    result.message =
        QStringLiteral("a\"b\\\n\x01/") + QChar(0x2028) + QString::fromUtf8("\xc3\xa4");
    result.callStack = {{"/t.py", 3}, LineInfo(), {"/u.py", -1}};
    result.value = 0;
    journal.add({QDateTime(), result});

    const auto normalised = Normaliser()
                                .pattern("\"created\":\"[^\"]*\"", "\"created\":\"<TIME>\"")
                                .pattern("Tamrix [0-9.]+", "Tamrix <VERSION>");
    EXPECT_TRUE(
        compareWithGolden("testresult/run.journal", normalised(QString::fromUtf8(readFile(path)))));
}

TEST_F(JournalTest, TellsLocalTimesWithTheirOffset) {
    const EnvironmentGuard timeZone("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    const std::pair<QTime, QByteArray> rows[] = {
        {QTime(1, 59, 59), "T01:59:59.000+01:00"},
        {QTime(3, 0), "T03:00:00.000+02:00"},
        {QTime(3, 1), "T03:01:00.000+02:00"},
    };
    for (const auto& [time, text] : rows) {
        const QByteArray line =
            Journal::entryLine({QDateTime(QDate(2024, 3, 31), time), CaseEnded{}});
        EXPECT_TRUE(line.contains(text)) << line.toStdString();
    }
}

TEST_F(JournalTest, ReplaysTheRun) {
    RecordingReport direct;
    addSampleRun(&direct);
    JournalReport journal(path);
    for (const ReportEntry& entry : direct.entries)
        journal.add(entry);
    ASSERT_TRUE(reader.replay(path)) << reader.errorText().toStdString();
    EXPECT_FALSE(reader.isCut());
    // A position that is none is left out.
    for (ReportEntry& entry : direct.entries) {
        auto* const result = std::get_if<ResultAdded>(&entry.event);
        if (result && result->callStack == CallStack{LineInfo()})
            result->callStack.clear();
    }
    EXPECT_EQ(recorded.entries, direct.entries);
}

TEST_F(JournalTest, KeepsTextsOfAnyCodeUnits) {
    std::mt19937 random(20240501);
    std::mt19937 again(20240501);
    std::vector<ReportEntry> entries;
    std::vector<ReportEntry> expected;
    for (int i = 0; i < 3000; ++i) {
        const auto time = QDateTime::fromMSecsSinceEpoch(qint64(i) * 500000000, Qt::LocalTime);
        entries.push_back({time, randomEvent(random)});
        const ReportEntry entry{time, randomEvent(again, wellFormed)};
        expected.push_back(entry);
        // Paths count from the journal's folder.
        if (Journal::hasRelativePath(entry.event)) {
            expected.back().event =
                Journal::withAbsolutePath(entry.event, QFileInfo(path).absolutePath());
        }
    }
    // Every single code unit, too.
    for (int unit = 0; unit < 0x10000; unit += 64) {
        ResultAdded result;
        for (int i = 0; i < 64; ++i)
            result.message += QString(QChar(unit + i)) + "|";
        result.detail = QString(QChar(unit == 0xfec0 ? 0xfeff : unit)) + "begins";
        entries.push_back({QDateTime(), result});
        result.message = wellFormed(result.message);
        result.detail = wellFormed(result.detail);
        expected.push_back({QDateTime(), result});
    }
    {
        JournalReport journal(path);
        for (const ReportEntry& entry : entries)
            journal.add(entry);
        journal.finish();
        EXPECT_EQ(journal.errorText(), QString());
    }
    ASSERT_TRUE(reader.replay(path)) << reader.errorText().toStdString();
    ASSERT_EQ(recorded.entries.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        ASSERT_EQ(recorded.entries[i], expected[i]) << i;
}

TEST_F(JournalTest, ReadsWhatAnEarlierProgramWrote) {
    // Never renewed, unlike a golden file: journals that people keep look like this.
    const QString earlier = TAMRIX_TEST_SOURCE_DIR "/tests/platform/testresult/version1.journal";
    ASSERT_TRUE(reader.replay(earlier)) << reader.errorText().toStdString();
    QList<QByteArray> lines = readFile(earlier).trimmed().split('\n');
    ASSERT_EQ(int(recorded.entries.size()), lines.size() - 1);
    for (std::size_t i = 0; i < recorded.entries.size(); ++i)
        EXPECT_EQ(Journal::entryLine(recorded.entries[i]), lines[int(i) + 1] + '\n');

    EXPECT_EQ(recorded.all<SuiteStarted>(), (std::vector<SuiteStarted>{{"suite_shop", "/s"}}));
    EXPECT_EQ(recorded.all<SuiteEnded>(), std::vector<SuiteEnded>{{true}});
    EXPECT_EQ(recorded.all<CaseStarted>()[0], (CaseStarted{"tst_login", "/s/tst_login/test.py"}));
    EXPECT_EQ(recorded.all<CaseEnded>()[0], CaseEnded{false});
    const CallStack stack{{"/s/a.feature", 4}};
    EXPECT_EQ(recorded.all<SectionStarted>()[0],
              (SectionStarted{"Pay", "as a guest", "scenario", 0, stack}));
    EXPECT_EQ(recorded.all<SectionEnded>()[0],
              (SectionEnded{"Pay", "as a guest", "scenario", stack}));
    const std::vector<ResultAdded> results = recorded.results();
    EXPECT_EQ(results[0].type, TestResult::Fail);
    EXPECT_EQ(results[0].comment, "the total");
    EXPECT_EQ(results[0].explanation, "@@ -1 +1 @@\n-1\n+2");
    EXPECT_EQ(results[0].callStack.size(), 2u);
    EXPECT_EQ(results[1].skipped, "testcase");
    EXPECT_EQ(results[1].value, 3);
    EXPECT_TRUE(results[2].isEcho);
    EXPECT_EQ(recorded.all<FileAttached>()[0],
              (FileAttached{2, "Failure", "/r/p.png", CallStack(), true}));
    EXPECT_EQ(recorded.all<VideoStarted>()[0], (VideoStarted{"Video", "/r/v.mp4", stack}));
    EXPECT_EQ(recorded.all<VideoEnded>()[0], (VideoEnded{"Video", "/r/v.mp4", stack}));
    EXPECT_EQ(recorded.all<OutputWritten>()[0],
              (OutputWritten{OutputStream::StandardOutput, "a\n"}));
    EXPECT_EQ(recorded.all<OutputWritten>()[1].stream, OutputStream::StandardError);
    EXPECT_EQ(recorded.all<ActionEnded>()[0],
              (ActionEnded{"click", "{name='ok'}", 56, true, LineInfo("/s/a.feature", 4)}));
    EXPECT_EQ(recorded.all<EnvironmentFact>()[0], (EnvironmentFact{"Qt", "5.15.8"}));
}

TEST_F(JournalTest, EveryBeginningOfAJournalReplays) {
    JournalReport journal(path);
    addSampleRun(&journal);
    const QByteArray whole = readFile(path);
    ASSERT_TRUE(replay(whole));
    const std::vector<ReportEntry> entries = recorded.entries;
    for (int size = 0; size < whole.size(); ++size) {
        const QByteArray part = whole.left(size);
        ASSERT_TRUE(replay(part)) << size << ": " << reader.errorText().toStdString();
        // A line counts when all of it is there but for the line feed.
        const int wholeLines = whole.left(size + 1).count('\n');
        ASSERT_EQ(int(recorded.entries.size()), std::max(0, wholeLines - 1)) << size;
        ASSERT_TRUE(std::equal(recorded.entries.begin(), recorded.entries.end(), entries.begin()));
        const bool endsWithLine = part.endsWith('\n') || whole[size] == '\n';
        ASSERT_EQ(reader.isCut(), !endsWithLine) << size;
    }
}

TEST_F(JournalTest, RefusesWhatIsNoJournal) {
    const QByteArray line = "{\"kind\":\"output\",\"message\":\"x\"}\n";
    const struct {
        QByteArray bytes;
        const char* error;
    } rows[] = {
        {"hello", "j:1: this is not a journal"},
        {"\n", "j:1: this is not a journal"},
        {"[1]\n", "j:1: this is not a journal"},
        {"{\"format\":\"tamrix-journal\"}\n",
         "j:1: the journal has version -1, this program reads version 1"},
        {"{\"format\":\"tamrix-journal\",\"version\":3}\n",
         "j:1: the journal has version 3, this program reads version 1"},
        {"{\"format\":\"tamrix-journal\",\"version\":\"1\"}\n",
         "j:1: \"version\" is not an integer"},
        {header + line + "{\"kind\":\"output\",\n" + line, "j:3: unterminated object"},
        {header + "\n" + line, "j:2: illegal value"},
        {header + "[]\n", "j:2: the line is not a JSON object"},
        {header + "{}\n", "j:2: the entry has no \"kind\""},
        {header + "{\"kind\":\"dream\"}", "j:2: unknown kind \"dream\""},
        {header + "{\"kind\":7}\n", "j:2: \"kind\" is not a text"},
        {header + "{\"kind\":\"result\"}\n", "j:2: the result has no \"type\""},
        {header + "{\"kind\":\"result\",\"type\":1.5}\n", "j:2: \"type\" is not an integer"},
        {header + "{\"kind\":\"result\",\"type\":1e12}\n", "j:2: \"type\" is not an integer"},
        {header + "{\"kind\":\"output\",\"message\":[]}\n", "j:2: \"message\" is not a text"},
        {header + "{\"kind\":\"output\",\"time\":\"noon\"}\n", "j:2: \"time\" is not a time"},
        {header + "{\"kind\":\"output\",\"echo\":1}\n", "j:2: \"echo\" is not true or false"},
        {header + "{\"kind\":\"output\",\"callStack\":{}}\n", "j:2: \"callStack\" is not a list"},
        {header + "{\"kind\":\"output\",\"callStack\":[1]}\n",
         "j:2: \"callStack\" is not a list of positions"},
        {header + "{\"kind\":\"output\",\"callStack\":[{\"file\":1}]}\n",
         "j:2: \"file\" is not a text"},
        {header + "{\"kind\":\"output\",\"message\":\"\xff\"}\n", "j:2: invalid UTF8 string"},
        {header + QByteArray(5000, '[') + "\n", "j:2: too deeply nested document"},
    };
    for (const auto& row : rows) {
        EXPECT_FALSE(replay(row.bytes)) << row.bytes.toStdString();
        EXPECT_EQ(reader.errorText().toStdString(), row.error);
    }
    EXPECT_FALSE(reader.replay("/nowhere/j"));
    EXPECT_EQ(reader.errorText(),
              "The journal '/nowhere/j' can't be read: No such file or directory");
    EXPECT_FALSE(reader.replay(directory.path()));
}

TEST_F(JournalTest, PassesOverFieldsOfALaterProgram) {
    ASSERT_TRUE(
        replay("{\"format\":\"tamrix-journal\",\"version\":1,\"host\":\"h\"}\n"
               "{\"kind\":\"output\",\"message\":\"x\",\"thread\":[1,{}]}\r\n"));
    ASSERT_EQ(recorded.entries.size(), 1u);
    EXPECT_EQ(recorded.all<OutputWritten>()[0].text, "x");
}

TEST_F(JournalTest, RefusesAnEndlessLine) {
    /// A device that never gives a line feed.
    class Endless : public QIODevice {
    public:
        bool isSequential() const override { return true; }

    protected:
        qint64 readData(char* data, qint64 size) override {
            memset(data, 'x', std::size_t(size));
            return size;
        }
        qint64 writeData(const char*, qint64) override { return -1; }
    };
    Endless device;
    device.open(QIODevice::ReadOnly);
    EXPECT_FALSE(reader.replay(&device, "j"));
    EXPECT_EQ(reader.errorText(), "j:1: the line is longer than 67108864 bytes");
}

TEST_F(JournalTest, WritesNoLineThatTheReaderRefuses) {
    const QString huge = QString(3 * 1024 * 1024, QChar(0)) + QString(10, 'x');
    ResultAdded result;
    result.type = TestResult::Fail;
    result.message = result.detail = result.comment = result.explanation = huge;
    OutputWritten output;
    // The surrogate pair lies where the text is taken apart.
    output.text = QString(2 * 1024 * 1024 - 1, QChar(1)) + QString::fromUtf8("\xf0\x9f\x98\x80") +
                  QString(10 * 1024 * 1024, QChar(2));
    {
        JournalReport journal(path);
        journal.add({QDateTime(), result});
        journal.add({QDateTime(), output});
    }
    ASSERT_TRUE(reader.replay(path)) << reader.errorText().toStdString();
    const QString detail = recorded.results()[0].detail;
    EXPECT_TRUE(detail.endsWith("[... 1048686 characters left out]"))
        << detail.right(60).toStdString();
    QString joined;
    for (const OutputWritten& part : recorded.all<OutputWritten>())
        joined += part.text;
    EXPECT_TRUE(joined == output.text);
}

TEST_F(JournalTest, TellsWriteErrors) {
    const QString folder = directory.path();
    const QString file = directory.filePath("file");
    ASSERT_TRUE(writeFile(file));
    const struct {
        QString path;
        QString error;
    } rows[] = {
        {"/dev/full", "The journal '/dev/full' could not be written: No space left on device"},
        {folder, QString("The report '%1' can't be written: it is a directory").arg(folder)},
        {file + "/j", QString("The report '%1/j' can't be written: the directory '%1' could not be "
                              "created")
                          .arg(file)},
    };
    for (const auto& row : rows) {
        JournalReport journal(row.path);
        addSampleRun(&journal);
        journal.finish();
        EXPECT_EQ(journal.errorText(), row.error);
    }
}

TEST_F(JournalTest, NoticesThatItsFileIsGone) {
    const QString folder = directory.filePath("f");
    const QString other = directory.filePath("other");
    const struct {
        const char* description;
        std::function<bool()> change;
        bool isGone;
    } rows[] = {
        {"removed", [&] { return QFile::remove(folder + "/j"); }, true},
        {"renamed", [&] { return QFile::rename(folder + "/j", folder + "/k"); }, true},
        {"replaced",
         [&] {
             return writeFile(other) && ::rename(qPrintable(other), qPrintable(folder + "/j")) == 0;
         },
         true},
        {"folder removed", [&] { return QDir(folder).removeRecursively(); }, true},
        {"read by somebody", [&] { return !readFile(folder + "/j").isEmpty(); }, false},
    };
    for (const auto& row : rows) {
        JournalReport journal(folder + "/j");
        addSampleRun(&journal);
        EXPECT_EQ(journal.errorText(), QString());
        EXPECT_TRUE(row.change()) << row.description;
        addSampleRun(&journal);
        journal.finish();
        EXPECT_EQ(journal.errorText().contains("removed or replaced"), row.isGone)
            << row.description;
    }
}

TEST_F(JournalTest, ReplacesAnEarlierFileAndMakesFolders) {
    const QString nested = directory.filePath("a/b/j");
    for (int run = 0; run < 2; ++run) {
        JournalReport journal(nested);
        addSampleRun(&journal);
        EXPECT_EQ(journal.errorText(), QString());
    }
    ASSERT_TRUE(reader.replay(nested));
    EXPECT_EQ(recorded.entries.size(), 24u);
}

TEST_F(JournalTest, LosesNothingWhenTheRunIsKilled) {
    const pid_t child = fork();
    if (child == 0) {
        JournalReport journal(path);
        addSampleRun(&journal);
        raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_TRUE(reader.replay(path)) << reader.errorText().toStdString();
    ASSERT_FALSE(recorded.entries.empty());
    EXPECT_EQ(recorded.results().back().message, "before the kill");
}

}  // namespace
