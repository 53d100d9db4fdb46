#include "dap/program/stopline.h"

#include <QRegularExpression>
#include <QStringList>
#include <algorithm>

#include "base/protocolescapes.h"

namespace Tamrix::Dap {

namespace {

/// The stops whose line has fields between tabs: line, column, file, and what follows.
struct FieldedStop {
    const char* word;
    StopKind kind;
    int subjectField;
    int detailField;
};
constexpr int noField = -1;
constexpr int fileField = 2;
constexpr FieldedStop fieldedStops[] = {
    {"@objLookupError ", StopKind::ObjectNotFound, 3, 4},
    {"@imgLookupError ", StopKind::ImageNotFound, 3, 5},
    {"@textLookupError ", StopKind::TextNotFound, noField, 3},
};

std::optional<Stop> readFieldedStop(const QByteArray& line) {
    for (const FieldedStop& each : fieldedStops) {
        if (!line.startsWith(each.word))
            continue;
        const QStringList fields = QString::fromUtf8(line.mid(qstrlen(each.word))).split('\t');
        if (fields.size() <= fileField)
            return std::nullopt;
        const QString detail = fields.value(each.detailField);
        Stop stop;
        stop.kind = each.kind;
        stop.place = {fields[fileField], fields[0].toInt()};
        stop.column = std::max(fields[1].toInt(), 0);
        stop.subject = unescapeVariablePrinting(fields.value(each.subjectField));
        stop.detail = each.kind == StopKind::ObjectNotFound ? unescapeNonPrintable(detail)
                                                            : unescapeVariablePrinting(detail);
        return stop;
    }
    return std::nullopt;
}

/// Splits at a character that no backslash takes.
QStringList splitUnescaped(const QString& text, QChar separator) {
    QStringList parts;
    int start = 0;
    for (int index = 0; index < text.size(); ++index) {
        if (text[index] == '\\') {
            ++index;
        } else if (text[index] == separator) {
            parts.append(text.mid(start, index - start));
            start = index + 1;
        }
    }
    parts.append(text.mid(start));
    return parts;
}

Binding readBinding(const QString& text) {
    // What lies behind the first "#" may have more of them, as a front end that is strict about the
    // escapes would not expect; the same holds for "=".
    const QStringList byType = splitUnescaped(text, '#');
    const QString rest = byType.mid(1).join('#');
    const QStringList byName = splitUnescaped(rest, '=');
    Binding binding;
    binding.type = unescapeVariablePrinting(byType[0]);
    binding.name = unescapeVariablePrinting(byName[0]);
    if (byName.size() > 1)
        binding.value = unescapeVariablePrinting(byName.mid(1).join('='));
    return binding;
}

}  // namespace

std::optional<Stop> readStop(const QByteArray& line) {
    static const QRegularExpression reachedLine(
        QStringLiteral("^@line (-?\\d+), column (-?\\d+), "));
    static const QRegularExpression missingStep(QStringLiteral("^@missingStep (-?\\d+) "));
    if (!line.startsWith('@'))
        return std::nullopt;
    if (std::optional<Stop> stop = readFieldedStop(line))
        return stop;
    const QString text = QString::fromUtf8(line);
    const QRegularExpressionMatch reached = reachedLine.match(text);
    if (reached.hasMatch() && text.endsWith(QLatin1Char(':'))) {
        const int end = reached.capturedEnd();
        Stop stop;
        stop.place = {text.mid(end, text.size() - end - 1), reached.captured(1).toInt()};
        stop.column = std::max(reached.captured(2).toInt(), 0);
        return stop;
    }
    const QRegularExpressionMatch missing = missingStep.match(text);
    if (missing.hasMatch()) {
        Stop stop;
        stop.kind = StopKind::StepMissing;
        stop.place.line = missing.captured(1).toInt();
        stop.subject = text.mid(missing.capturedEnd());
        return stop;
    }
    return std::nullopt;
}

std::optional<ScriptPlace> readFrame(const QByteArray& line) {
    const int colon = line.lastIndexOf(": ");
    bool isNumber = false;
    const int number = colon < 0 ? 0 : line.mid(colon + 2).toInt(&isNumber);
    if (!isNumber || line.startsWith('@'))
        return std::nullopt;
    return ScriptPlace{QString::fromUtf8(line.left(colon)), number};
}

std::optional<Notice> readNotice(const QByteArray& line) {
    static const QByteArray s_word = QByteArrayLiteral("@notify ");
    if (!line.startsWith(s_word))
        return std::nullopt;
    const QString text = QString::fromUtf8(line.mid(s_word.size()));
    const int tab = text.indexOf(QLatin1Char('\t'));
    return Notice{unescapeVariablePrinting(text.left(tab)),
                  tab < 0 ? QString() : unescapeVariablePrinting(text.mid(tab + 1))};
}

std::optional<std::vector<Binding>> readListing(const QByteArray& line) {
    const int start = line.indexOf(":{");
    if (!line.startsWith("symb") || start < 0 || !line.endsWith('}'))
        return std::nullopt;
    std::vector<Binding> bindings;
    const QString listing = QString::fromUtf8(line.mid(start + 2, line.size() - start - 3));
    if (listing.isEmpty())
        return bindings;
    for (const QString& binding : splitUnescaped(listing, ','))
        bindings.push_back(readBinding(binding));
    return bindings;
}

}  // namespace Tamrix::Dap
