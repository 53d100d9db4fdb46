#include <QStringList>
#include <algorithm>

#include "base/overloaded.h"
#include "platform/testresult/journalreader.h"
#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/resulttext.h"
#include "runner/mcp/screen/viewtext.h"
#include "runner/mcp/session/session.h"
#include "runner/mcp/tools/arguments.h"

namespace Tamrix::Mcp {

namespace {

constexpr int defaultCount = 40;
/// Of a longer text the beginning is told.
constexpr int longestEntry = 1000;

/// What happened in a run, a text each.
class EntryTexts : public ReportGenerator {
public:
    void add(const ReportEntry& entry) override {
        const QString text = std::visit(
            Overloaded{
                [](const CaseStarted& testCase) { return testCase.name + QLatin1Char(':'); },
                [](const SectionStarted& section) { return QStringLiteral("- ") + section.title; },
                [](const ResultAdded& result) { return describeResult(result); },
                [](const ActionEnded& action) { return describeAction(action); },
                [](const FileAttached& file) {
                    return QStringLiteral("%1: %2").arg(file.message, file.path);
                },
                [](const OutputWritten& output) {
                    return QStringLiteral("output: ") + output.text.trimmed();
                },
                [](const auto&) { return QString(); },
            },
            entry.event);
        if (!text.isEmpty())
            m_texts.append(text.left(longestEntry));
    }
    const QStringList& texts() const { return m_texts; }

private:
    QStringList m_texts;
};

Outcome<ToolAnswer> journal(Session& session, const Arguments& arguments) {
    if (session.journal().isEmpty())
        return fail(FailureKind::Refused, QStringLiteral("nothing was run yet: use run_case"));
    EntryTexts entries;
    JournalReader reader(&entries);
    if (!reader.replay(session.journal()))
        return fail(FailureKind::Failed, reader.errorText());
    QStringList texts = entries.texts();
    const QString find = arguments.text("find");
    if (!find.isEmpty())
        texts = texts.filter(find, Qt::CaseInsensitive);
    // The last ones, as many as fit.
    const int most = std::max(arguments.integer("last").value_or(defaultCount), 1);
    int first = static_cast<int>(texts.size());
    int size = 0;
    while (first > 0 && texts.size() - first < most &&
           size + texts.at(first - 1).size() < longestViewText) {
        --first;
        size += texts.at(first).size() + 1;
    }
    QString text;
    if (first > 0)
        text = QStringLiteral("... %1 before: ask with find or last\n").arg(first);
    for (const QString& each : texts.mid(first))
        text += each + QLatin1Char('\n');
    return ToolAnswer{text.isEmpty() ? QStringLiteral("nothing of that\n") : text};
}

}  // namespace

Tool journalTool() {
    return {"journal",
            "What happened in the last run",
            {{"find", ParameterType::Text, Parameter::Optional},
             {"last", ParameterType::Integer, Parameter::Optional, "entries; default 40"}},
            journal};
}

}  // namespace Tamrix::Mcp
