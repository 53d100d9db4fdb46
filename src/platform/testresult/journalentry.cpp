#include "platform/testresult/journalentry.h"

#include <QStringList>
#include <concepts>
#include <type_traits>

#include "platform/testresult/testresult.h"

namespace Tamrix::Journal {

namespace {

/// A parameter that is an `Event`, constant or not.
template <typename Type, typename Event>
concept Is = std::same_as<std::remove_const_t<Type>, Event>;

/// A line for each parameter: begin, end and type, with blanks between them.
QString parameterText(const std::vector<StepParameterRange>& parameters) {
    QStringList lines;
    for (const StepParameterRange& each : parameters)
        lines += QStringLiteral("%1 %2 %3")
                     .arg(QString::number(each.begin), QString::number(each.end), each.type);
    return lines.join(QLatin1Char('\n'));
}

/// Lines of another form are passed over.
std::vector<StepParameterRange> parametersOf(const QString& text) {
    std::vector<StepParameterRange> parameters;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        const int afterBegin = line.indexOf(QLatin1Char(' '));
        const int afterEnd = line.indexOf(QLatin1Char(' '), afterBegin + 1);
        if (afterBegin < 0 || afterEnd < 0)
            continue;
        bool hasBegin = false;
        bool hasEnd = false;
        const int begin = line.leftRef(afterBegin).toInt(&hasBegin);
        const int end = line.midRef(afterBegin + 1, afterEnd - afterBegin - 1).toInt(&hasEnd);
        if (hasBegin && hasEnd && begin >= 0 && end >= begin)
            parameters.push_back({begin, end, line.mid(afterEnd + 1)});
    }
    return parameters;
}

/// Copies what an event holds to the fields of its line.
struct ToFields {
    template <typename Value>
    void operator()(Value& field, const Value& value) const {
        field = value;
    }
    /// One of two texts stands for a flag or a choice.
    template <typename Value>
    void operator()(QString& field, const Value& value, const char* text, const char* otherwise,
                    const Value& textMeans) const {
        field = QString::fromLatin1(value == textMeans ? text : otherwise);
    }
    void operator()(std::optional<int>& field, int value) const { field = value; }
    void operator()(CallStack& field, const LineInfo& position) const { field = {position}; }
    void operator()(QString& field, const std::vector<StepParameterRange>& parameters) const {
        field = parameterText(parameters);
    }
    void constant(std::optional<int>& field, int value) const { field = value; }
    /// The field stays at its own default for the number's.
    void number(int& field, int value, int usual) const { field = value == usual ? -1 : value; }
};

/// Copies the fields of a line to the event.
struct FromFields {
    template <typename Value>
    void operator()(const Value& field, Value& value) const {
        value = field;
    }
    template <typename Value>
    void operator()(const QString& field, Value& value, const char* text, const char* /*otherwise*/,
                    const Value& textMeans) const {
        if (field == QLatin1String(text))
            value = textMeans;
    }
    void operator()(const std::optional<int>& field, int& value) const {
        value = field.value_or(0);
    }
    void operator()(const CallStack& field, LineInfo& position) const {
        position = field.empty() ? LineInfo() : field.front();
    }
    void operator()(const QString& field, std::vector<StepParameterRange>& parameters) const {
        parameters = parametersOf(field);
    }
    void constant(const std::optional<int>& /*field*/, int /*value*/) const {}
    void number(int field, int& value, int usual) const { value = field < 0 ? usual : field; }
};

// The rows: for each event the fields of its line, for both directions.

void copyFields(const auto& copy, auto& fields, Is<SuiteStarted> auto& suite) {
    copy(fields.message, suite.name);
    copy(fields.path, suite.folder);
}

void copyFields(const auto& copy, auto& fields, Is<SuiteEnded> auto& suite) {
    copy(fields.extra, suite.isInterrupted, "interrupted", "finished", true);
}

void copyFields(const auto& copy, auto& fields, Is<CaseStarted> auto& testCase) {
    copy(fields.message, testCase.name);
    copy(fields.path, testCase.script);
    copy.number(fields.value, testCase.attempt, 1);
}

void copyFields(const auto& copy, auto& fields, Is<CaseEnded> auto& testCase) {
    copy(fields.extra, testCase.isInterrupted, "interrupted", "finished", true);
}

void copyFields(const auto& copy, auto& fields, Is<SectionStarted> auto& section) {
    copy.constant(fields.type, TestResult::SectionStart);
    copy(fields.message, section.title);
    copy(fields.detail, section.description);
    copy(fields.callStack, section.callStack);
    copy(fields.extra, section.kind);
    copy(fields.value, section.index);
}

void copyFields(const auto& copy, auto& fields, Is<SectionEnded> auto& section) {
    copy.constant(fields.type, TestResult::SectionEnd);
    copy(fields.message, section.title);
    copy(fields.detail, section.description);
    copy(fields.callStack, section.callStack);
    copy(fields.extra, section.kind);
}

void copyFields(const auto& copy, auto& fields, Is<ResultAdded> auto& result) {
    copy(fields.type, result.type);
    copy(fields.message, result.message);
    copy(fields.detail, result.detail);
    copy(fields.callStack, result.callStack);
    copy(fields.extra, result.type == TestResult::Skipped ? result.skipped : result.comment);
    copy(fields.value, result.value);
    copy(fields.explanation, result.explanation);
    copy(fields.isEcho, result.isEcho);
}

void copyFields(const auto& copy, auto& fields, Is<FileAttached> auto& file) {
    copy(fields.type, file.type);
    copy(fields.message, file.message);
    copy(fields.callStack, file.callStack);
    copy(fields.extra, file.belongsToResult, "result", "", true);
    copy(fields.path, file.path);
}

void copyFields(const auto& copy, auto& fields, Is<VideoStarted> auto& video) {
    copy(fields.message, video.message);
    copy(fields.callStack, video.callStack);
    copy(fields.path, video.path);
}

void copyFields(const auto& copy, auto& fields, Is<VideoEnded> auto& video) {
    copy(fields.message, video.message);
    copy(fields.callStack, video.callStack);
    copy(fields.extra, video.isDiscarded, "discarded", "", true);
    copy(fields.path, video.path);
}

void copyFields(const auto& copy, auto& fields, Is<OutputWritten> auto& output) {
    copy(fields.message, output.text);
    copy(fields.extra, output.stream, "stderr", "stdout", OutputStream::StandardError);
}

void copyFields(const auto& copy, auto& fields, Is<ActionEnded> auto& action) {
    copy(fields.message, action.function);
    copy(fields.detail, action.arguments);
    copy(fields.callStack, action.position);
    copy(fields.extra, action.hasFailed, "failed", "", true);
    copy(fields.value, action.milliseconds);
}

void copyFields(const auto& copy, auto& fields, Is<EnvironmentFact> auto& fact) {
    copy(fields.message, fact.name);
    copy(fields.detail, fact.fact);
}

void copyFields(const auto& copy, auto& fields, Is<ItemDescribed> auto& item) {
    copy(fields.message, item.keyword);
    copy(fields.detail, item.argument);
    copy(fields.extra, item.tags);
}

void copyFields(const auto& copy, auto& fields, Is<StepMatched> auto& match) {
    copy(fields.message, match.definition);
    copy(fields.callStack, match.position);
    copy(fields.extra, match.parameters);
}

/// The name of each event's kind, in the order of ReportEvent.
constexpr const char* kindNames[] = {
    "suiteStart", "suiteEnd", "caseStart",   "caseEnd",    "sectionStart",
    "sectionEnd", "result",   "attachment",  "videoStart", "videoEnd",
    "output",     "action",   "environment", "item",       "match",
};
static_assert(std::size(kindNames) == std::variant_size_v<ReportEvent>);

/// Makes the event whose kind has this name, without contents. False when none has.
template <std::size_t index = 0>
bool makeEvent(const QString& kind, ReportEvent* event) {
    if constexpr (index == std::variant_size_v<ReportEvent>) {
        return false;
    } else {
        if (kind != QLatin1String(kindNames[index]))
            return makeEvent<index + 1>(kind, event);
        event->emplace<index>();
        return true;
    }
}

}  // namespace

Fields fieldsOf(const ReportEntry& entry) {
    Fields fields;
    fields.kind = QString::fromLatin1(kindNames[entry.event.index()]);
    fields.time = entry.time;
    std::visit([&](const auto& event) { copyFields(ToFields(), fields, event); }, entry.event);
    return fields;
}

QByteArray entryLine(const ReportEntry& entry) {
    return lineOf(fieldsOf(entry));
}

QString parseEntry(const QByteArray& line, ReportEntry* entry, bool* isJson) {
    Fields fields;
    const QString error = parseFields(line, &fields, isJson);
    if (!error.isEmpty())
        return error;
    if (fields.kind.isEmpty())
        return QStringLiteral("the entry has no \"kind\"");
    if (!makeEvent(fields.kind, &entry->event))
        return QStringLiteral("unknown kind \"%1\"").arg(fields.kind);
    if (!fields.type && eventOf<ResultAdded>(*entry))
        return QStringLiteral("the result has no \"type\"");
    entry->time = fields.time;
    std::visit([&](auto& event) { copyFields(FromFields(), std::as_const(fields), event); },
               entry->event);
    return QString();
}

}  // namespace Tamrix::Journal
