#include "platform/testresult/htmldata.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QStringList>
#include <QUrl>
#include <algorithm>

#include "base/overloaded.h"
#include "base/textescape.h"
#include "base/wholetext.h"
#include "platform/testresult/longtext.h"
#include "platform/testresult/resulttext.h"
#include "platform/testresult/resulttypes.h"
#include "platform/testresult/runsummary.h"

namespace Tamrix {

namespace {

/// How much text of attachments stands in the page itself, in bytes; the rest is linked.
constexpr qint64 allTexts = 8 * 1024 * 1024;
/// The same for what results say and scripts write, in characters. A single text has at most
/// `longestText`, and when there have been many, `longestLateText`.
constexpr qint64 allEntryTexts = 8 * 1024 * 1024;
constexpr int longestText = 64 * 1024;
constexpr int longestLateText = 4 * 1024;
constexpr int longestBrief = 400;
/// More actions than these are left to the journal: a browser has to hold them all.
constexpr int mostActions = 20000;

const char* outcomeId(CaseOutcome outcome) {
    switch (outcome) {
        case CaseOutcome::Passed:
            return "passed";
        case CaseOutcome::Flaky:
            return "flaky";
        case CaseOutcome::Failed:
            return "failed";
        case CaseOutcome::Error:
            return "error";
        case CaseOutcome::Skipped:
            return "skipped";
        case CaseOutcome::Incomplete:
            return "incomplete";
        case CaseOutcome::Interrupted:
            return "interrupted";
    }
    return "";
}

/// Of an attempt behind which the case ran again: no outcome of the case.
const QLatin1String supersededId("repeated");

/// A text from outside as the page shows it: what can't be seen is shown as an escape.
QString shown(QString text) {
    return escapedForTerminal(text.replace(QLatin1String("\r\n"), QLatin1String("\n")));
}

QString timeText(const QDateTime& time) {
    return time.isValid() ? time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) : QString();
}

qint64 milliseconds(double seconds) {
    return qRound64(seconds * 1000);
}

void insertText(QJsonObject& object, const char* key, const QString& text) {
    if (!text.isEmpty())
        object.insert(QLatin1String(key), text);
}

bool hasSuffix(const QString& path, const char* suffixes) {
    const QString suffix = QFileInfo(path).suffix().toLower();
    return QString::fromLatin1(suffixes).split(QLatin1Char(' ')).contains(suffix);
}

bool isPicture(const QString& path) {
    return hasSuffix(path, "png jpg jpeg gif bmp webp svg");
}

bool isVideo(const QString& path) {
    return hasSuffix(path, "mp4 m4v webm");
}

bool isText(const QString& path) {
    return hasSuffix(path, "txt log out err json jsonl xml csv tsv ini conf cfg yaml yml md py js");
}

QByteArray toJson(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray toJson(const QJsonArray& array) {
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

QString briefText(const CaseTally& tally) {
    if (tally.outcome() == CaseOutcome::Flaky)
        return QStringLiteral("passed in attempt %1").arg(tally.attempt);
    if (tally.failures.empty())
        return tally.skipText;
    const ResultAdded& first = tally.failures.front();
    QString message = first.message;
    takeScreenshotNote(&message);
    return messageText(message, first.detail).left(longestBrief);
}

QString labelOf(const FileAttached& file) {
    switch (file.type) {
        case TestResult::OutputAttachment:
            return QStringLiteral("Application");
        case TestResult::ImageAttachment:
            return QStringLiteral("Picture");
        case TestResult::ObjectsAttachment:
            return QStringLiteral("Objects");
        default:
            return QStringLiteral("File");
    }
}

/// What every entry of the page has: its kind, which tells the scripts of the page how to show it,
/// its label and its message.
void insertHead(QJsonObject& object, const char* kind, const QString& label,
                const QString& message) {
    object.insert(QStringLiteral("kind"), QLatin1String(kind));
    object.insert(QStringLiteral("label"), label);
    object.insert(QStringLiteral("message"), shown(message));
}

/// The ends of videos, by path.
QMap<QString, const ReportEntry*> videoEnds(const std::vector<ReportEntry>& entries) {
    QMap<QString, const ReportEntry*> ends;
    for (const ReportEntry& entry : entries) {
        if (const auto* video = eventOf<VideoEnded>(entry))
            ends.insert(video->path, &entry);
    }
    return ends;
}

void insertAction(QJsonObject& object, const ActionEnded& action) {
    insertHead(object, "action", QStringLiteral("Action"), action.function);
    insertText(object, "detail", shown(action.arguments));
    object.insert(QStringLiteral("took"), std::max(0, action.milliseconds));
    if (action.hasFailed)
        object.insert(QStringLiteral("failed"), true);
    // No lines of scripts: there may be very many actions.
    insertText(object, "position", shown(positionText(action.position)));
}

void insertItem(QJsonObject& object, const ItemDescribed& item) {
    object.insert(QStringLiteral("kind"), QStringLiteral("item"));
    insertText(object, "keyword", shown(item.keyword));
    insertText(object, "tags", shown(item.tags));
    insertText(object, "argument", shown(item.argument));
}

void insertMatch(QJsonObject& object, const StepMatched& match) {
    object.insert(QStringLiteral("kind"), QStringLiteral("match"));
    insertText(object, "definition", shown(match.definition));
    insertText(object, "position", shown(positionText(match.position)));
    QJsonArray parameters;
    for (const StepParameterRange& each : match.parameters)
        parameters.append(QJsonArray{each.begin, each.end});
    if (!parameters.isEmpty())
        object.insert(QStringLiteral("parameters"), parameters);
}

}  // namespace

HtmlData::HtmlData(const RunTally& tally, const EntriesById& entries, const RunFacts& environment,
                   ReportFiles* files)
    : m_tally(tally),
      m_entries(entries),
      m_environment(environment),
      m_files(files),
      m_excerpts(tally.suites().empty() ? QDateTime() : tally.suites().front().outside.start),
      m_textBudget(allTexts),
      m_entryBudget(allEntryTexts) {}

QString HtmlData::title() const {
    QStringList names;
    for (const SuiteTally& suite : m_tally.suites()) {
        if (!suite.outside.name.isEmpty())
            names += shown(suite.outside.name);
    }
    return names.isEmpty() ? QStringLiteral("Test report") : names.join(QLatin1String(", "));
}

QByteArray HtmlData::json() {
    QJsonArray suites;
    for (const SuiteTally& suite : m_tally.suites()) {
        const int index = suites.size();
        suites.append(QJsonObject{{QStringLiteral("name"), shown(suite.outside.name)},
                                  {QStringLiteral("path"), shown(suite.outside.path)}});
        const auto outside = m_entries.find(suite.outside.id);
        if (outside != m_entries.end() && !outside->second.empty())
            addRow(suite.outside, index, false);
        for (const CaseTally& testCase : suite.cases) {
            if (!testCase.isSuperseded)
                addAttempts(testCase, index);
        }
    }

    QJsonArray outcomes;
    for (const CaseOutcome outcome : caseOutcomes) {
        outcomes.append(QJsonObject{{QStringLiteral("id"), QLatin1String(outcomeId(outcome))},
                                    {QStringLiteral("label"), outcomeText(outcome)}});
    }
    outcomes.append(QJsonObject{{QStringLiteral("id"), supersededId},
                                {QStringLiteral("label"), QStringLiteral("repeated")}});
    QStringList noteTexts{outsideSummary(m_tally), endSummary(m_tally)};
    if (m_actionCount > mostActions) {
        noteTexts += QStringLiteral("Actions that are not shown, only in the journal: %1")
                         .arg(m_actionCount - mostActions);
    }
    QJsonArray notes;
    for (const QString& note : qAsConst(noteTexts)) {
        if (!note.isEmpty())
            notes.append(note);
    }
    QJsonArray environment;
    for (const EnvironmentFact& fact : m_environment) {
        environment.append(QJsonObject{{QStringLiteral("name"), shown(fact.name)},
                                       {QStringLiteral("fact"), shown(fact.fact)}});
    }
    const QDateTime start =
        m_tally.suites().empty() ? QDateTime() : m_tally.suites().front().outside.start;
    QJsonObject head{{QStringLiteral("title"), title()},
                     {QStringLiteral("summary"), caseSummary(m_tally)},
                     {QStringLiteral("isGood"), isGood(m_tally)},
                     {QStringLiteral("notes"), notes},
                     {QStringLiteral("environment"), environment},
                     {QStringLiteral("milliseconds"), milliseconds(m_tally.seconds())},
                     {QStringLiteral("outcomes"), outcomes},
                     {QStringLiteral("suites"), suites}};
    insertText(head, "start", timeText(start));
    insertText(head, "results", resultSummary(m_tally));

    QByteArray text = toJson(head);
    text.chop(1);
    text += ",\n\"rows\":" + toJson(m_rows).replace("},{", "},\n{");
    text += ",\n\"entries\":[" + m_rowEntries + "]";
    text += ",\n\"excerpts\":[";
    const char* separator = "\n";
    for (const QJsonObject& excerpt : m_excerpts.all()) {
        text += separator + toJson(excerpt);
        separator = ",\n";
    }
    text += "],\n\"trees\":" + toJson(m_trees.all()) + "}\n";
    // In JSON the character stands in texts only. It could end the element, or begin a comment.
    return text.replace("<", "\\u003c");
}

void HtmlData::addAttempts(const CaseTally& last, int suite) {
    std::vector<const CaseTally*> attempts;
    for (const CaseTally* attempt = &last; attempt; attempt = attempt->previous)
        attempts.push_back(attempt);
    for (auto attempt = attempts.rbegin(); attempt != attempts.rend(); ++attempt)
        addRow(**attempt, suite, true);
}

void HtmlData::addRow(const CaseTally& tally, int suite, bool isCase) {
    // What happened outside the cases has no outcome of its own, unless something failed.
    const bool hasOutcome = isCase || !tally.failures.empty();
    QString name = isCase ? shown(tally.name) : QStringLiteral("Outside the cases");
    // The case's own name leads to the attempt that counts.
    if (tally.isSuperseded)
        name += QStringLiteral(" (attempt %1)").arg(tally.attempt);
    QJsonObject row{{QStringLiteral("id"), m_rows.size()},
                    {QStringLiteral("suite"), suite},
                    {QStringLiteral("name"), name},
                    {QStringLiteral("milliseconds"), milliseconds(tally.seconds())}};
    if (hasOutcome) {
        row.insert(QStringLiteral("outcome"),
                   tally.isSuperseded ? supersededId : QLatin1String(outcomeId(tally.outcome())));
    }
    m_caseName = isCase ? tally.name : QString();
    insertText(row, "path", shown(tally.path));
    insertText(row, "start", timeText(tally.start));
    insertText(row, "results", resultSummary(tally));
    insertText(row, "brief", shown(briefText(tally)));

    m_rowEntries += m_rows.isEmpty() ? "\n[" : ",\n[";
    const auto entries = m_entries.find(tally.id);
    if (entries != m_entries.end()) {
        m_videoEnds = videoEnds(entries->second);
        const char* separator = "\n";
        for (const ReportEntry& entry : entries->second) {
            if (isLeftOut(entry))
                continue;
            m_rowEntries += separator + toJson(entryObject(entry, tally.start));
            separator = ",\n";
        }
    }
    m_rowEntries += "]";
    m_rows.append(row);
}

bool HtmlData::isLeftOut(const ReportEntry& entry) {
    const auto isDiscarded = [this](const QString& path) {
        const ReportEntry* const end = m_videoEnds.value(path);
        return end && eventOf<VideoEnded>(*end)->isDiscarded;
    };
    if (const auto* video = eventOf<VideoStarted>(entry))
        return isDiscarded(video->path);
    if (const auto* video = eventOf<VideoEnded>(entry))
        return video->isDiscarded;
    return eventOf<ActionEnded>(entry) && ++m_actionCount > mostActions;
}

ReportEvent HtmlData::limitedEvent(const ReportEvent& event, QJsonObject& object) {
    QJsonArray wholes;
    const auto store = [&](const QString& text, const QString& name) {
        const QString path = m_files->store(text, name + QLatin1String(".txt")).path;
        if (!path.isEmpty()) {
            wholes.append(
                QJsonObject{{QStringLiteral("name"), name}, {QStringLiteral("path"), path}});
        }
        return path;
    };
    const ReportEvent limited =
        withLimitedTexts(event, m_entryBudget > 0 ? longestText : longestLateText, store);
    m_entryBudget -= textSize(limited);
    if (!wholes.isEmpty())
        object.insert(QStringLiteral("wholes"), wholes);
    return limited;
}

QJsonObject HtmlData::entryObject(const ReportEntry& entry, const QDateTime& rowStart) {
    QJsonObject object;
    const ReportEvent limited = limitedEvent(entry.event, object);
    const bool hasTime = entry.time.isValid() && rowStart.isValid();
    object.insert(QStringLiteral("at"),
                  hasTime ? std::max<qint64>(0, rowStart.msecsTo(entry.time)) : 0);
    insertText(
        object, "time",
        entry.time.isValid() ? entry.time.toString(QStringLiteral("HH:mm:ss.zzz")) : QString());
    std::visit(Overloaded{
                   [&](const SectionStarted& section) {
                       insertHead(object, "sectionStart", QString(), section.title);
                       insertText(object, "detail", shown(section.description));
                       insertText(object, "section", section.kind);
                   },
                   [&](const SectionEnded&) {
                       object.insert(QStringLiteral("kind"), QStringLiteral("sectionEnd"));
                   },
                   [&](const ResultAdded& result) {
                       addResult(object, result);
                       if (isFailure(result))
                           addTrace(object, entry.time);
                   },
                   [&](const FileAttached& file) { addFile(object, file); },
                   [&](const VideoStarted& video) { addVideo(object, video, rowStart); },
                   [&](const VideoEnded& video) {
                       insertHead(object, "result", QStringLiteral("Video ends"), video.message);
                   },
                   [&](const OutputWritten& output) {
                       insertHead(object, "output",
                                  output.stream == OutputStream::StandardError
                                      ? QStringLiteral("Script errors")
                                      : QStringLiteral("Script output"),
                                  output.text);
                   },
                   [&](const ActionEnded& action) { insertAction(object, action); },
                   [&](const ItemDescribed& item) { insertItem(object, item); },
                   [&](const StepMatched& match) { insertMatch(object, match); },
                   // Frames and facts stand elsewhere on the page.
                   [](const auto&) {},
               },
               limited);
    return object;
}

void HtmlData::addResult(QJsonObject& object, const ResultAdded& result) {
    QString message = result.message;
    const QString screenshot = takeScreenshotNote(&message);
    insertHead(object, "result", resultTypeName(result.type), message);
    insertText(object, "detail", shown(result.detail));
    if (!screenshot.isEmpty())
        object.insert(QStringLiteral("screenshot"), fileObject(screenshot, true));
    if (isFailure(result))
        object.insert(QStringLiteral("failure"), true);
    if (result.isEcho)
        object.insert(QStringLiteral("echo"), true);
    insertText(object, "comment", shown(commentText(result)));
    if (!isCaseSkip(result))
        insertText(object, "skipped", shown(result.skipped));
    // A difference may lie in the line ends.
    insertText(object, "explanation", escapedForTerminal(result.explanation));
    addStack(object, result.callStack);
}

void HtmlData::addTrace(QJsonObject& object, const QDateTime& time) {
    const auto fact = std::find_if(
        m_environment.begin(), m_environment.end(),
        [](const EnvironmentFact& one) { return one.name == QLatin1String(traceFactName); });
    if (fact == m_environment.end() || m_caseName.isEmpty())
        return;
    const QByteArray at = QUrl::toPercentEncoding(time.toString(Qt::ISODateWithMs));
    const QByteArray name = QUrl::toPercentEncoding(m_caseName);
    object.insert(
        QStringLiteral("trace"),
        QStringLiteral("%1/index.html#at=%2&case=%3")
            .arg(m_files->urlOf(fact->fact), QString::fromLatin1(at), QString::fromLatin1(name)));
}

void HtmlData::addVideo(QJsonObject& object, const VideoStarted& video, const QDateTime& rowStart) {
    insertHead(object, "video", QStringLiteral("Video"), video.message);
    object.insert(QStringLiteral("file"), fileObject(video.path, false));
    // A run that was killed leaves a video without its end.
    const ReportEntry* const end = m_videoEnds.value(video.path);
    if (end && end->time.isValid() && rowStart.isValid())
        object.insert(QStringLiteral("until"), std::max<qint64>(0, rowStart.msecsTo(end->time)));
}

void HtmlData::addFile(QJsonObject& object, const FileAttached& file) {
    insertHead(object, "file", labelOf(file), file.message);
    object.insert(QStringLiteral("file"),
                  file.type == TestResult::ObjectsAttachment
                      ? objectsObject(file.path)
                      : fileObject(file.path, file.type == TestResult::ImageAttachment));
    if (file.belongsToResult)
        object.insert(QStringLiteral("belongsToResult"), true);
    if (file.type == TestResult::OutputAttachment)
        object.insert(QStringLiteral("isApplicationOutput"), true);
}

void HtmlData::addStack(QJsonObject& object, const CallStack& callStack) {
    QJsonArray stack;
    for (const LineInfo& position : callStack) {
        const QString text = positionText(position);
        if (text.isEmpty())
            continue;
        QJsonObject call{{QStringLiteral("position"), shown(text)}};
        const int excerpt = m_excerpts.indexOf(position);
        if (excerpt >= 0)
            call.insert(QStringLiteral("excerpt"), excerpt);
        stack.append(call);
    }
    if (!stack.isEmpty())
        object.insert(QStringLiteral("stack"), stack);
}

QJsonObject HtmlData::fileObject(const QString& source, bool isImage) {
    QJsonObject object{{QStringLiteral("name"), shown(QFileInfo(source).fileName())}};
    const ReportFiles::Copy copy = m_files->copy(source);
    if (copy.path.isEmpty()) {
        insertText(object, "problem", shown(copy.problem));
        return object;
    }
    object.insert(QStringLiteral("path"), copy.path);
    if (isImage || isPicture(source))
        object.insert(QStringLiteral("kind"), QStringLiteral("image"));
    else if (isVideo(source))
        object.insert(QStringLiteral("kind"), QStringLiteral("video"));
    else if (isText(source))
        addText(object, copy);
    return object;
}

QJsonObject HtmlData::objectsObject(const QString& source) {
    const ReportFiles::Copy copy = m_files->copy(source);
    QJsonObject object{{QStringLiteral("name"), shown(QFileInfo(source).fileName())}};
    if (copy.path.isEmpty()) {
        insertText(object, "problem", shown(copy.problem));
        return object;
    }
    object.insert(QStringLiteral("path"), copy.path);
    const int tree = m_trees.indexOf(copy.path, m_files->text(copy, m_textBudget), &m_textBudget);
    if (tree >= 0)
        object.insert(QStringLiteral("tree"), tree);
    else
        object.insert(QStringLiteral("note"), QStringLiteral("The objects are not shown here."));
    return object;
}

void HtmlData::addText(QJsonObject& object, const ReportFiles::Copy& copy) {
    qint64 size = 0;
    const QByteArray text = m_files->endOfText(copy, &size);
    if (text.size() > m_textBudget) {
        object.insert(QStringLiteral("note"),
                      QStringLiteral("Not shown here, since the report has many texts."));
        return;
    }
    m_textBudget -= text.size();
    object.insert(QStringLiteral("text"), shown(wholeUtf8(text)));
    if (text.size() < size) {
        object.insert(QStringLiteral("note"),
                      QStringLiteral("The last %1 KiB of %2 KiB.")
                          .arg(QString::number(text.size() / 1024), QString::number(size / 1024)));
    }
}

}  // namespace Tamrix
