#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>
#include <vector>

#include "base/export.h"
#include "platform/testresult/lineinfo.h"
#include "platform/testresult/reportgenerator.h"

namespace Tamrix {

/// The result sink of a run: every operation becomes one event that goes to the report generator at
/// once, so that nothing is lost when the process ends. Script thread only.
///
/// A skipped test case: a result of type Skipped with the extra text "testcase" ends the script
/// with a script error, which is reported in its turn with addSkipEcho().
class TAMRIX_EXPORT TestResult {
public:
    /// The numbers are part of the report formats.
    enum ResultType {
        SectionStart = 4,
        SectionEnd = 5,
        Skipped = 6,
        Log = 7,
        Fatal = 8,
        Error = 9,
        Pass = 10,
        Fail = 11,
        ExpectedFail = 12,
        UnexpectedPass = 13,
        Warning = 14
    };

    enum AttachmentType {
        FileAttachment = 1,
        ImageAttachment = 2,
        OutputAttachment = 3,  ///< what an application wrote to its standard output or error
        ObjectsAttachment = 4  ///< the objects of an application, as JSON
    };

    /// `generator` is not owned, must live longer, and may be null; entries are then only counted.
    explicit TestResult(ReportGenerator* generator);
    /// Ends what is still open, as interrupted: a run in order has ended its suite before.
    ~TestResult();
    TestResult(const TestResult&) = delete;
    TestResult& operator=(const TestResult&) = delete;

    // Frame of a run. Starting a level ends an earlier one that is still open, and ending an outer
    // level ends what is open inside it; sections never reach from one level into another.
    void startSuite(const QString& name, const QString& path);
    void endSuite(bool interrupted = false);
    /// Starts a test case; the counts of count() start anew.
    void startCase(const QString& name, const QString& scriptPath);
    void endCase(bool interrupted = false);

    /// Adds a result. `extra` is a comment, or of a skip what is skipped ("testcase"), `value` is
    /// -1 unless the kind of result has a number of its own.
    ///
    /// Types SectionStart and SectionEnd open and close sections in the same nesting as
    /// startSection(); `extra` then names the kind of section. A SectionEnd with a kind ends the
    /// innermost section of that kind and what a script left open inside it; when there is none,
    /// a Qt warning says so and nothing is added.
    void addResult(ResultType type, const QString& message, const QString& detail,
                   const LineInfo& location, const QString& extra = QString(), int value = -1);
    void addResult(const QDateTime& time, ResultType type, const QString& message,
                   const QString& detail, const LineInfo& location,
                   const QString& extra = QString(), int value = -1);
    /// `callStack` has the innermost position first; an empty one is a result without position.
    /// `explanation` is what reports show beside the detail, see ResultAdded.
    void addResult(const QDateTime& time, ResultType type, const QString& message,
                   const QString& detail, const std::vector<LineInfo>& callStack,
                   const QString& extra = QString(), int value = -1,
                   const QString& explanation = QString());

    /// Adds the script error by which a skip ends the script: the entry is marked as an echo, and
    /// neither count() nor lastScenarioHasError() regards it.
    void addSkipEcho(ResultType type, const QString& message, const QString& detail,
                     const std::vector<LineInfo>& callStack);

    void startSection(const QString& title, const QString& description, const LineInfo& location);
    /// Ends the innermost section. Returns an error text when none is open, else an empty string.
    QString endSection(const LineInfo& location);

    /// Tells more of the part of a feature whose section was started last.
    void describeItem(const ItemDescribed& item);
    void addStepMatch(const StepMatched& match);

    /// Number of results of a category since the test case started, -1 for an unknown category.
    /// Categories: "passes", "fails", "xpasses", "xfails", "errors", "fatals", "warnings", "skips",
    /// "logs", and "tests" for all verdicts together (the first four).
    int count(const QString& category) const;

    void addAttachment(AttachmentType type, const QString& message, const QString& path,
                       const std::vector<LineInfo>& callStack);
    /// An attachment that belongs to the result that comes next.
    void addResultAttachment(AttachmentType type, const QString& message, const QString& path);
    void addStartVideo(const QString& message, const QString& path,
                       const std::vector<LineInfo>& callStack);
    void addEndVideo(const QString& message, const QString& path,
                     const std::vector<LineInfo>& callStack);
    /// Ends a video that no report is to show, since its file is gone.
    void addDiscardedVideo(const QString& message, const QString& path);
    /// Text that the script wrote.
    void addOutput(OutputStream stream, const QString& text);

    /// What the script did to an application, at its end; see ActionEnded.
    void addAction(const QString& function, const QString& what, int milliseconds, bool hasFailed,
                   const LineInfo& position);
    /// Whether addAction() does anything; it does unless somebody switches it off.
    bool recordsActions() const { return m_recordsActions; }
    void setRecordsActions(bool on) { m_recordsActions = on; }

    /// A fact about the run: a version, a display, arguments. `name` says what it is about.
    void addEnvironment(const QString& name, const QString& fact);

    /// No more entries are taken; late tasks ask isComplete() before they write.
    /// What is open then gets no end: end the suite first.
    void setComplete();
    bool isComplete() const;

    ReportGenerator* reportGenerator() const;

    /// Whether a Fatal, Error, Fail or UnexpectedPass was added since clearLastScenarioError().
    /// The echo of a skip is none of them.
    bool lastScenarioHasError() const;
    void clearLastScenarioError();

private:
    struct OpenSection {
        QString title;
        QString kind;
    };

    /// Hands the event to the generator; without a time it happened now.
    void forward(ReportEvent event, const QDateTime& time = QDateTime());
    void openSection(SectionStarted section, const QDateTime& time);
    void endSectionOfKind(SectionEnded end, const QDateTime& time);
    void closeInnermostSection(SectionEnded end, const QDateTime& time = QDateTime());
    /// Ends the sections inside the outermost `depth` ones.
    void closeSections(std::size_t depth);

    ReportGenerator* m_generator;
    bool m_complete = false;
    bool m_recordsActions = true;
    bool m_suiteOpen = false;
    bool m_caseOpen = false;
    std::vector<OpenSection> m_openSections;
    QMap<int, int> m_counts;
    bool m_lastScenarioHasError = false;
};

}  // namespace Tamrix
