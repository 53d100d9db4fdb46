#include "platform/testresult/htmlreport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>

#include "base/overloaded.h"
#include "base/textescape.h"
#include "platform/testresult/htmldata.h"
#include "platform/testresult/reportfiles.h"
#include "platform/testresult/reporttarget.h"
#include "platform/testresult/resulttext.h"
#include "platform/testresult/runsummary.h"

namespace Tamrix {

namespace {

QByteArray resource(const char* name) {
    QFile file(QStringLiteral(":/tamrix/htmlreport/") + QLatin1String(name));
    // It is part of this library.
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The page's script: files that share their names, in this order.
QByteArray script() {
    QByteArray text;
    for (const char* const name : {"elements.js", "videos.js", "results.js", "actions.js",
                                   "features.js", "cases.js", "report.js"})
        text += resource(name);
    return text;
}

QByteArray escapedForHtml(const QString& text) {
    return escapedForTerminal(text).toHtmlEscaped().toUtf8();
}

/// What a browser without JavaScript shows: how the run came out, and what did not pass.
QByteArray fallbackText(const RunTally& tally, const QString& title) {
    QByteArray text =
        "<h1>" + escapedForHtml(title) + "</h1>\n<p>" + escapedForHtml(caseSummary(tally)) +
        "</p>\n<p>The details need JavaScript, which this browser does not run.</p>\n";
    text += "<ul>\n";
    for (const SuiteTally& suite : tally.suites()) {
        for (const CaseTally& testCase : suite.cases) {
            if (!testCase.isSuperseded && testCase.outcome() != CaseOutcome::Passed) {
                text += "<li>" + escapedForHtml(testCase.name) + ": " +
                        escapedForHtml(outcomeText(testCase.outcome())) + "</li>\n";
            }
        }
    }
    return text + "</ul>\n";
}

}  // namespace

HtmlReport::HtmlReport(const QString& folder) {
    m_page = prepareReportTarget(QDir(folder).filePath(QStringLiteral("index.html")), &m_error);
    m_folder = QFileInfo(m_page).path();
}

HtmlReport::~HtmlReport() = default;

void HtmlReport::add(const ReportEntry& entry) {
    std::vector<ReportEntry>& entries = m_entries[m_tally.add(entry).id];
    std::visit(Overloaded{
                   // The tally knows the frame of the run.
                   [](const SuiteStarted&) {},
                   [](const SuiteEnded&) {},
                   [](const CaseStarted&) {},
                   [](const CaseEnded&) {},
                   [this](const EnvironmentFact& fact) { addFact(fact); },
                   [&](const OutputWritten& output) {
                       // Scripts write in small pieces.
                       auto* const last = entries.empty()
                                              ? nullptr
                                              : std::get_if<OutputWritten>(&entries.back().event);
                       if (last && last->stream == output.stream)
                           last->text += output.text;
                       else
                           entries.push_back(entry);
                   },
                   [&](const auto&) { entries.push_back(entry); },
               },
               entry.event);
}

void HtmlReport::addFact(const EnvironmentFact& fact) {
    if (std::find(m_environment.begin(), m_environment.end(), fact) == m_environment.end())
        m_environment.push_back(fact);
}

void HtmlReport::finish() {
    if (!m_error.isEmpty())
        return;
    ReportFiles files(m_folder, QStringLiteral("attachments"));
    if (writePage(files))
        files.removeUnused();
    else
        files.removeNew();
}

bool HtmlReport::writePage(ReportFiles& files) {
    HtmlData data(m_tally, m_entries, m_environment, &files);
    const QString title = data.title();
    const std::map<QByteArray, QByteArray> parts = {
        {"title", escapedForHtml(title)},
        {"style", resource("report.css")},
        {"fallback", fallbackText(m_tally, title)},
        {"data", data.json()},
        {"script", script()},
    };
    m_error = files.errorText();
    if (!m_error.isEmpty())
        return false;

    QByteArray text;
    // Only the template is searched for "{{NAME}}", never what takes its place.
    const QByteArray frame = resource("page.html");
    for (int position = 0; position < frame.size();) {
        const int begin = frame.indexOf("{{", position);
        text += frame.mid(position, begin < 0 ? -1 : begin - position);
        if (begin < 0)
            break;
        const int close = frame.indexOf("}}", begin);
        text += parts.at(frame.mid(begin + 2, close - begin - 2));
        position = close + 2;
    }
    m_error = writeReport(m_page, text);
    return m_error.isEmpty();
}

}  // namespace Tamrix
