#include "platform/testresult/longtext.h"

#include <algorithm>
#include <vector>

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

/// A text of an event that may be long, and the name under which it is stored.
struct EventText {
    QString* text;
    const char* name;
};
using EventTexts = std::vector<EventText>;

EventTexts textsOf(ResultAdded& result) {
    return {{&result.message, "message"},
            {&result.detail, "detail"},
            {&result.comment, "comment"},
            {&result.explanation, "explanation"}};
}

EventTexts textsOf(SectionStarted& section) {
    return {{&section.title, "message"}, {&section.description, "detail"}};
}

EventTexts textsOf(FileAttached& file) {
    return {{&file.message, "message"}};
}

EventTexts textsOf(VideoStarted& video) {
    return {{&video.message, "message"}};
}

EventTexts textsOf(VideoEnded& video) {
    return {{&video.message, "message"}};
}

EventTexts textsOf(OutputWritten& output) {
    return {{&output.text, "message"}};
}

EventTexts textsOf(ActionEnded& action) {
    return {{&action.function, "message"}, {&action.arguments, "detail"}};
}

/// The others have names and paths only.
template <typename Event>
EventTexts textsOf(Event&) {
    return {};
}

void limit(const EventTexts& texts, int longest, const StoreText& store) {
    for (const EventText& row : texts) {
        if (row.text->size() > longest) {
            const QString place =
                store ? store(*row.text, QString::fromLatin1(row.name)) : QString();
            *row.text = limitedText(*row.text, longest, place);
        }
    }
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

ResultAdded withLimitedTexts(const ResultAdded& result, int longest, const StoreText& store) {
    ResultAdded limited = result;
    limit(textsOf(limited), longest, store);
    return limited;
}

ReportEvent withLimitedTexts(const ReportEvent& event, int longest, const StoreText& store) {
    ReportEvent limited = event;
    std::visit([&](auto& typed) { limit(textsOf(typed), longest, store); }, limited);
    return limited;
}

qint64 textSize(ReportEvent event) {
    qint64 size = 0;
    for (const EventText& row : std::visit([](auto& typed) { return textsOf(typed); }, event))
        size += row.text->size();
    return size;
}

}  // namespace Tamrix
