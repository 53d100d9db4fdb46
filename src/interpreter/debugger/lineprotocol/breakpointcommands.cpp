// Break points.

#include "base/protocolescapes.h"
#include "interpreter/debugger/lineprotocol/commandfunctions.h"

namespace Tamrix {

namespace {

struct SourceLine {
    QString file;
    int line = 0;
};

Outcome<SourceLine> parseSourceLine(const QStringList& arguments) {
    const auto malformed = [] {
        return fail(FailureKind::BadArgument, QStringLiteral("malformed breakpoint input"));
    };
    if (arguments.size() != 1)
        return malformed();
    // 1. The last colon stands between file and line, unless it ends a drive's name.
    const QString text = unescapeNonPrintable(arguments.first());
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    const QChar behind = colon + 1 < text.size() ? text.at(colon + 1) : QChar();
    if (colon < 0 || (colon == 1 && (behind == '/' || behind == '\\')))
        return malformed();
    // 2. The line.
    bool isNumber = false;
    const int line = text.midRef(colon + 1).toInt(&isNumber);
    if (!isNumber || line < 0)
        return fail(FailureKind::BadArgument, QStringLiteral("invalid line number"));
    // 3. The file.
    const QString file = text.left(colon);
    if (file.isEmpty())
        return fail(FailureKind::BadArgument, QStringLiteral("invalid file path"));
    return SourceLine{file, line};
}

std::string placeText(const CommandCall& call, const Debugger::BreakPointPlace& place) {
    return call.output.encoded(place.file) + ':' + std::to_string(place.line);
}

}  // namespace

CommandEffect breakCommand(const CommandCall& call) {
    const Outcome<SourceLine> wanted = parseSourceLine(call.arguments);
    if (!wanted) {
        call.output.fail("break error: " + call.output.encoded(wanted.error().text));
        return CommandEffect::Stays;
    }
    const Debugger::BreakPointPlace place = call.debugger.addBreakPoint(wanted->file, wanted->line);
    const char* const what = place.isBuffered ? "Set buffered break point " : "Set break point ";
    call.output.print("break ok: " + (what + placeText(call, place)));
    return CommandEffect::Stays;
}

CommandEffect deleteCommand(const CommandCall& call) {
    const Outcome<SourceLine> wanted = parseSourceLine(call.arguments);
    const Outcome<Debugger::BreakPointPlace> deleted =
        wanted ? call.debugger.deleteBreakPoint(wanted->file, wanted->line) : fail(wanted.error());
    if (deleted)
        call.output.print("delete ok: Deleted break point " + placeText(call, *deleted));
    else
        call.output.fail("delete error: " + call.output.encoded(deleted.error().text));
    return CommandEffect::Stays;
}

}  // namespace Tamrix
