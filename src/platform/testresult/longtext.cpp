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

/// The part of a text that is left out.
struct Cut {
    int begin;
    int end;
};

Cut cutCharacters(const QString& text, int most) {
    const int begin = endOfBeginning(text, most / 2);
    return {begin, std::max(begin, beginOfEnd(text, text.size() - most / 2))};
}

int lineCount(const QString& text) {
    return text.count(QLatin1Char('\n')) + (text.endsWith(QLatin1Char('\n')) ? 0 : 1);
}

/// Leaves that many lines of a text that has more.
Cut cutLines(const QString& text, int most) {
    int begin = 0;
    for (int line = 0; line < most - most / 2; ++line)
        begin = text.indexOf(QLatin1Char('\n'), begin) + 1;
    // In front of the line feed that ends the last line, if there is one.
    int end = text.endsWith(QLatin1Char('\n')) ? text.size() - 1 : text.size();
    for (int line = 0; line < most / 2; ++line)
        end = text.lastIndexOf(QLatin1Char('\n'), end - 1);
    return {begin, end + 1};
}

bool exceeds(const QString& text, TextLimit limit) {
    return text.size() > limit.characters || lineCount(text) > limit.lines;
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

EventTexts textsOf(ItemDescribed& item) {
    return {{&item.argument, "argument"}};
}

/// The others have names and paths only.
template <typename Event>
EventTexts textsOf(Event&) {
    return {};
}

void limitTexts(const EventTexts& texts, TextLimit limit, const StoreText& store) {
    for (const EventText& row : texts) {
        if (exceeds(*row.text, limit)) {
            const QString place =
                store ? store(*row.text, QString::fromLatin1(row.name)) : QString();
            *row.text = limitedText(*row.text, limit, place);
        }
    }
}

}  // namespace

QString limitedText(const QString& text, TextLimit limit, const QString& place) {
    if (!exceeds(text, limit))
        return text;
    const bool hasManyLines = lineCount(text) > limit.lines;
    Cut cut = hasManyLines ? cutLines(text, limit.lines) : cutCharacters(text, limit.characters);
    // Few lines may be long, too.
    if (hasManyLines && text.size() - (cut.end - cut.begin) > limit.characters) {
        const Cut characters = cutCharacters(text, limit.characters);
        cut = {std::min(cut.begin, characters.begin), std::max(cut.end, characters.end)};
    }
    const QString left = text.mid(cut.begin, cut.end - cut.begin);
    QString note = hasManyLines ? QStringLiteral("[... %1 lines left out").arg(lineCount(left))
                                : QStringLiteral("[... %1 characters left out").arg(left.size());
    if (!place.isEmpty())
        note += QStringLiteral("; the whole text: ") + place;
    const QString beginning = text.left(cut.begin);
    return beginning + (beginning.endsWith(QLatin1Char('\n')) ? QString() : QStringLiteral("\n")) +
           note + QStringLiteral("]\n") + text.mid(cut.end);
}

ResultAdded withLimitedTexts(const ResultAdded& result, TextLimit limit, const StoreText& store) {
    ResultAdded limited = result;
    limitTexts(textsOf(limited), limit, store);
    return limited;
}

ReportEvent withLimitedTexts(const ReportEvent& event, TextLimit limit, const StoreText& store) {
    ReportEvent limited = event;
    std::visit([&](auto& typed) { limitTexts(textsOf(typed), limit, store); }, limited);
    return limited;
}

void changeTexts(ReportEvent* event, const std::function<void(QString* text)>& change) {
    for (const EventText& row : std::visit([](auto& typed) { return textsOf(typed); }, *event))
        change(row.text);
    // A report shows what a section began with.
    if (auto* const section = std::get_if<SectionEnded>(event)) {
        change(&section->title);
        change(&section->description);
    }
}

qint64 textSize(ReportEvent event) {
    qint64 size = 0;
    for (const EventText& row : std::visit([](auto& typed) { return textsOf(typed); }, event))
        size += row.text->size();
    return size;
}

}  // namespace Tamrix
