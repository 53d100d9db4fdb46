// "completions": names that what was typed may become, of the variables where the script stands.

#include <QRegularExpression>
#include <algorithm>

#include "dap/requests/request.h"

namespace Tamrix::Dap {

namespace {

Outcome<CompletionsBody> completions(Session& session, const CompletionsArguments& arguments) {
    const Outcome<Debuggee*> debuggee = session.debuggeeAt(arguments.frameId);
    if (!debuggee)
        return fail(debuggee.error());
    // Of a text of several lines, the one with the cursor. Lines are counted as columns are.
    const QStringList lines = arguments.text.split('\n');
    const int line = arguments.line ? session.indexOfColumn(*arguments.line) : 0;
    const int column = std::max(session.indexOfColumn(arguments.column), 0);
    const QString typed = lines.value(line).left(column);
    // The name at its end, behind the names of what it is in.
    static const QRegularExpression pattern(
        QStringLiteral("((?:[^\\W\\d]\\w*\\.)*)((?:[^\\W\\d]\\w*)?)$"),
        QRegularExpression::UseUnicodePropertiesOption);
    const QRegularExpressionMatch match = pattern.match(typed);
    QString inside = match.captured(1);
    inside.chop(1);
    const QString start = match.captured(2);
    CompletionsBody body;
    for (const Variable& variable : session.values().members(inside, **debuggee)) {
        if (!variable.name.startsWith(start))
            continue;
        CompletionItem item;
        item.label = variable.name;
        item.type = inside.isEmpty() ? QStringLiteral("variable") : QStringLiteral("property");
        item.start = session.columnOfIndex(match.capturedStart(2));
        item.length = start.size();
        body.targets.push_back(item);
    }
    return body;
}

}  // namespace

RequestKind completionsRequest() {
    return makeRequest("completions", completions);
}

}  // namespace Tamrix::Dap
