#include "platform/testresult/journalcompletion.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "platform/testresult/journalreader.h"
#include "platform/testresult/testresult.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/recordingreport.h"

using namespace Tamrix;
using namespace Tamrix::Test;

namespace {

const QByteArray header = "{\"format\":\"tamrix-journal\",\"version\":1}\n";
const QByteArray suiteStart = "{\"kind\":\"suiteStart\",\"message\":\"s\"}\n";
const QByteArray caseStart = "{\"kind\":\"caseStart\",\"message\":\"c\",\"path\":\"/c.py\"}\n";
const QByteArray caseEnd = "{\"kind\":\"caseEnd\",\"extra\":\"finished\"}\n";
const QByteArray section = "{\"kind\":\"sectionStart\",\"message\":\"t\",\"extra\":\"k\"}\n";
const QByteArray sectionEnd = "{\"kind\":\"sectionEnd\",\"message\":\"t\",\"extra\":\"k\"}\n";

/// The kinds of entries from one on, with the file of a position and what an end says.
QStringList shapeOf(const RecordingReport& recorded, size_t from) {
    QStringList shape = recorded.kinds(from);
    const auto endOf = [](bool isInterrupted) {
        return isInterrupted ? QStringLiteral(" interrupted") : QStringLiteral(" finished");
    };
    for (size_t index = from; index < recorded.entries.size(); ++index) {
        const ReportEntry& entry = recorded.entries[index];
        QString& text = shape[static_cast<int>(index - from)];
        if (const auto* result = eventOf<ResultAdded>(entry); result && !result->callStack.empty())
            text += " at " + result->callStack[0].fileName();
        if (const auto* end = eventOf<CaseEnded>(entry))
            text += endOf(end->isInterrupted);
        if (const auto* end = eventOf<SuiteEnded>(entry))
            text += endOf(end->isInterrupted);
    }
    return shape;
}

TEST(JournalCompletion, EndsWhatIsOpen) {
    const struct {
        QByteArray journal;
        int entries;
        int cases;
        QString shape;
    } rows[] = {
        {"", 0, 0, "result"},
        {header + suiteStart, 1, 0, "result,suiteEnd interrupted"},
        {header + suiteStart + caseStart, 2, 1,
         "result at /c.py,caseEnd finished,suiteEnd interrupted"},
        {header + suiteStart + caseStart + section + section + sectionEnd, 5, 1,
         "result at /c.py,sectionEnd,caseEnd finished,suiteEnd interrupted"},
        // Between cases; an entry without its line feed, and one that is cut.
        {header + suiteStart + caseStart + section + caseEnd, 4, 1, "result,suiteEnd interrupted"},
        {header + suiteStart + caseStart + caseEnd.chopped(1), 2, 1,
         "result at /c.py,caseEnd finished,suiteEnd interrupted"},
        {header + suiteStart + caseStart.left(20), 1, 0, "result,suiteEnd interrupted"},
    };
    const QTemporaryDir directory;
    const QString path = directory.filePath("journal");
    for (const auto& row : rows) {
        ASSERT_TRUE(writeFile(path, row.journal));
        const JournalCompletion completion = completeJournal(path, "message", "detail");
        EXPECT_EQ(completion.error, "");
        EXPECT_EQ(completion.entryCount, row.entries) << row.journal.constData();
        EXPECT_EQ(completion.caseCount, row.cases);
        RecordingReport recorded;
        JournalReader reader(&recorded);
        ASSERT_TRUE(reader.replay(path)) << reader.errorText().toStdString();
        EXPECT_FALSE(reader.isCut());
        EXPECT_EQ(shapeOf(recorded, static_cast<size_t>(row.entries)).join(','), row.shape)
            << row.journal.constData();
    }
}

TEST(JournalCompletion, LeavesAloneWhatIsNone) {
    const QTemporaryDir directory;
    const QString path = directory.filePath("journal");
    EXPECT_TRUE(completeJournal(path, "m", "d").error.contains(path));
    EXPECT_FALSE(QFile::exists(path));
    ASSERT_TRUE(writeFile(path, "no journal\n"));
    EXPECT_TRUE(completeJournal(path, "m", "d").error.contains(path + ":1"));
    EXPECT_EQ(readFile(path), "no journal\n");
}

}  // namespace
