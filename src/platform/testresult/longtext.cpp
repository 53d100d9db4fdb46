#include "platform/testresult/longtext.h"

#include <algorithm>

namespace Tamrix {

namespace {

/// A part is not cut within its line when the line's end is this near.
constexpr int nearLineEnd = 200;

/// Where the first part ends, near `wanted`: at the end of a line, and not within a character.
int endOfBeginning(const QString& text, int wanted) {
    const int lineEnd = text.lastIndexOf(QLatin1Char('\n'), wanted - 1) + 1;
    if (lineEnd > 0 && wanted - lineEnd < nearLineEnd)
        return lineEnd;
    return text.at(wanted - 1).isHighSurrogate() ? wanted - 1 : wanted;
}

/// Where the last part begins, likewise.
int beginOfEnd(const QString& text, int wanted) {
    const int lineEnd = text.indexOf(QLatin1Char('\n'), wanted) + 1;
    if (lineEnd > 0 && lineEnd < text.size() && lineEnd - wanted < nearLineEnd)
        return lineEnd;
    return text.at(wanted).isLowSurrogate() ? wanted + 1 : wanted;
}

}  // namespace

QString limitedText(const QString& text, int longest, const QString& place) {
    if (text.size() <= longest)
        return text;
    const int begin = endOfBeginning(text, longest / 2);
    const int end = std::max(begin, beginOfEnd(text, text.size() - longest / 2));
    QString note = QStringLiteral("[... %1 characters left out").arg(end - begin);
    if (!place.isEmpty())
        note += QStringLiteral("; the whole text: ") + place;
    const QString beginning = text.left(begin);
    return beginning + (beginning.endsWith(QLatin1Char('\n')) ? QString() : QStringLiteral("\n")) +
           note + QStringLiteral("]\n") + text.mid(end);
}

ReportEntry withLimitedTexts(const ReportEntry& entry, int longest, const StoreText& store) {
    const struct {
        QString ReportEntry::*text;
        const char* name;
    } texts[] = {
        {&ReportEntry::message, "message"},
        {&ReportEntry::detail, "detail"},
        {&ReportEntry::extra, "comment"},
        {&ReportEntry::explanation, "explanation"},
    };
    ReportEntry limited = entry;
    for (const auto& row : texts) {
        const QString& text = entry.*row.text;
        if (text.size() > longest)
            limited.*row.text = limitedText(
                text, longest, store ? store(text, QString::fromLatin1(row.name)) : QString());
    }
    return limited;
}

}  // namespace Tamrix
