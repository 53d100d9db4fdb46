#include "platform/testresult/journalformat.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>

namespace Tamrix::Journal {

namespace {

using Kind = ReportEntry::Kind;

struct KindName {
    Kind kind;
    const char* name;
};

constexpr KindName kindNames[] = {
    {Kind::SuiteStart, "suiteStart"},
    {Kind::SuiteEnd, "suiteEnd"},
    {Kind::CaseStart, "caseStart"},
    {Kind::CaseEnd, "caseEnd"},
    {Kind::SectionStart, "sectionStart"},
    {Kind::SectionEnd, "sectionEnd"},
    {Kind::Result, "result"},
    {Kind::Attachment, "attachment"},
    {Kind::VideoStart, "videoStart"},
    {Kind::VideoEnd, "videoEnd"},
    {Kind::Output, "output"},
    {Kind::Action, "action"},
    {Kind::Environment, "environment"},
};

const char* kindName(Kind kind) {
    for (const KindName& row : kindNames) {
        if (row.kind == kind)
            return row.name;
    }
    return "";
}

/// Appends the code point as UTF-8.
void appendUtf8(QByteArray& line, uint c) {
    if (c < 0x80) {
        line += char(c);
    } else if (c < 0x800) {
        line += char(0xc0 | (c >> 6));
        line += char(0x80 | (c & 0x3f));
    } else if (c < 0x10000) {
        line += char(0xe0 | (c >> 12));
        line += char(0x80 | ((c >> 6) & 0x3f));
        line += char(0x80 | (c & 0x3f));
    } else {
        line += char(0xf0 | (c >> 18));
        line += char(0x80 | ((c >> 12) & 0x3f));
        line += char(0x80 | ((c >> 6) & 0x3f));
        line += char(0x80 | (c & 0x3f));
    }
}

void appendEscape(QByteArray& line, uint c) {
    static const char s_digits[] = "0123456789abcdef";
    line += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4)
        line += s_digits[(c >> shift) & 0xf];
}

/// Appends a JSON string. Written here and not by QJsonDocument, which sorts the keys of an object
/// and takes several times as long.
void appendString(QByteArray& line, const QString& text) {
    line += '"';
    const ushort* unit = text.utf16();
    const ushort* const end = unit + text.size();
    for (; unit != end; ++unit) {
        const ushort c = *unit;
        if (c == '"' || c == '\\') {
            line += '\\';
            line += char(c);
        } else if (c == '\n') {
            line += "\\n";
        } else if (c == '\t') {
            line += "\\t";
        } else if (c < 0x20 || c == 0x7f || c == 0x2028 || c == 0x2029 || c == 0xfeff) {
            // The last three end a line or vanish in some readers when they stand as they are.
            appendEscape(line, c);
        } else if (QChar::isHighSurrogate(c) && unit + 1 != end && QChar::isLowSurrogate(unit[1])) {
            appendUtf8(line, QChar::surrogateToUcs4(c, unit[1]));
            ++unit;
        } else {
            appendUtf8(line, QChar::isSurrogate(c) ? uint(QChar::ReplacementCharacter) : uint(c));
        }
    }
    line += '"';
}

/// Appends `,"key":"text"`, nothing for an empty text.
void appendText(QByteArray& line, const char* key, const QString& text) {
    if (text.isEmpty())
        return;
    line += ",\"";
    line += key;
    line += "\":";
    appendString(line, text);
}

void appendNumber(QByteArray& line, const char* key, int number) {
    line += ",\"";
    line += key;
    line += "\":";
    line += QByteArray::number(number);
}

/// The offset of a local time, in seconds. The C library looks at the time zone's file for each
/// conversion, which can take longer than all the rest of an entry; offsets change on quarters of
/// an hour only.
int offsetFromUtc(const QDateTime& time) {
    using Clock = std::chrono::steady_clock;
    static qint64 s_quarter = -1;
    static Clock::time_point s_asked;
    static int s_offset = 0;
    if (time.timeSpec() != Qt::LocalTime)
        return time.offsetFromUtc();
    const qint64 quarter =
        time.date().toJulianDay() * 96 + time.time().msecsSinceStartOfDay() / (15 * 60 * 1000);
    const Clock::time_point now = Clock::now();
    // The minute tells the hour that the end of summer time repeats from the hour before.
    if (quarter != s_quarter || now - s_asked > std::chrono::minutes(1)) {
        s_quarter = quarter;
        s_asked = now;
        s_offset = time.offsetFromUtc();
    }
    return s_offset;
}

/// Appends `,"key":"2024-05-01T12:00:00.123+02:00"`. QDateTime::toString() says the same in ten
/// times the time.
void appendTime(QByteArray& line, const char* key, const QDateTime& time) {
    int year = 0;
    int month = 0;
    int day = 0;
    time.date().getDate(&year, &month, &day);
    if (!time.isValid() || year < 1 || year > 9999)
        return;
    const QTime clock = time.time();
    const int offset = offsetFromUtc(time);
    const int offsetMinutes = std::abs(offset) / 60;
    char buffer[64];
    std::snprintf(buffer, sizeof buffer,
                  ",\"%s\":\"%04d-%02d-%02dT%02d:%02d:%02d.%03d%c%02d:%02d\"", key, year, month,
                  day, clock.hour(), clock.minute(), clock.second(), clock.msec(),
                  offset < 0 ? '-' : '+', offsetMinutes / 60, offsetMinutes % 60);
    line += buffer;
}

void appendCallStack(QByteArray& line, const CallStack& callStack) {
    bool isOpen = false;
    for (const LineInfo& position : callStack) {
        if (position.fileName().isEmpty())
            continue;
        line += isOpen ? "," : ",\"callStack\":[";
        isOpen = true;
        line += "{\"file\":";
        appendString(line, position.fileName());
        appendNumber(line, "line", position.lineNumber());
        line += '}';
    }
    if (isOpen)
        line += ']';
}

/// Reads the fields of an object; keeps the first error.
class FieldReader {
public:
    explicit FieldReader(const QJsonObject& object) : m_object(object) {}

    QString text(const char* key) {
        const QJsonValue value = find(key);
        if (!value.isUndefined() && !value.isString())
            fail(key, "a text");
        return value.toString();
    }

    int number(const char* key, int defaultValue) {
        const QJsonValue value = find(key);
        if (value.isUndefined())
            return defaultValue;
        const double number = value.toDouble();
        if (!value.isDouble() || number != std::floor(number) ||
            std::abs(number) > std::numeric_limits<int>::max()) {
            fail(key, "an integer");
            return defaultValue;
        }
        return int(number);
    }

    bool flag(const char* key) {
        const QJsonValue value = find(key);
        if (!value.isUndefined() && !value.isBool())
            fail(key, "true or false");
        return value.toBool();
    }

    QDateTime time(const char* key) {
        const QString value = text(key);
        const QDateTime result = QDateTime::fromString(value, Qt::ISODateWithMs);
        if (!value.isEmpty() && !result.isValid())
            fail(key, "a time");
        return result;
    }

    CallStack callStack(const char* key) {
        const QJsonValue value = find(key);
        if (!value.isUndefined() && !value.isArray())
            fail(key, "a list");
        const QJsonArray positions = value.toArray();
        CallStack result;
        for (const QJsonValue& element : positions) {
            if (!element.isObject())
                fail(key, "a list of positions");
            FieldReader position(element.toObject());
            const QString file = position.text("file");
            result.emplace_back(file, position.number("line", -1));
            if (m_error.isEmpty())
                m_error = position.m_error;
        }
        return result;
    }

    bool has(const char* key) const { return m_object.contains(QLatin1String(key)); }

    void fail(const char* key, const char* wanted) {
        if (m_error.isEmpty()) {
            m_error =
                QStringLiteral("\"%1\" is not %2").arg(QLatin1String(key), QLatin1String(wanted));
        }
    }

    QString errorText() const { return m_error; }

private:
    QJsonValue find(const char* key) const { return m_object.value(QLatin1String(key)); }

    QJsonObject m_object;
    QString m_error;
};

QString readKind(const QString& name, Kind* kind) {
    for (const KindName& row : kindNames) {
        if (name == QLatin1String(row.name)) {
            *kind = row.kind;
            return QString();
        }
    }
    return name.isEmpty() ? QStringLiteral("the entry has no \"kind\"")
                          : QStringLiteral("unknown kind \"%1\"").arg(name);
}

}  // namespace

const char* const beginning = "{\"format\":\"tamrix-journal\",\"version\":";

QByteArray headerLine(const QDateTime& created) {
    QByteArray line = beginning + QByteArray::number(version);
    appendText(line, "producer", QStringLiteral("Tamrix " TAMRIX_VERSION));
    appendTime(line, "created", created);
    line += "}\n";
    return line;
}

QByteArray entryLine(const ReportEntry& entry) {
    QByteArray line;
    line.reserve(256 + entry.message.size() + entry.detail.size());
    line += "{\"kind\":\"";
    line += kindName(entry.kind);
    line += '"';
    appendTime(line, "time", entry.time);
    if (entry.type != 0 || entry.kind == Kind::Result)
        appendNumber(line, "type", entry.type);
    appendText(line, "message", entry.message);
    appendText(line, "detail", entry.detail);
    appendCallStack(line, entry.callStack);
    appendText(line, "extra", entry.extra);
    if (entry.value != -1)
        appendNumber(line, "value", entry.value);
    appendText(line, "path", entry.path);
    appendText(line, "explanation", entry.explanation);
    if (entry.echo)
        line += ",\"echo\":true";
    line += "}\n";
    return line;
}

QString checkHeader(const QByteArray& line, bool* isJson) {
    const QJsonDocument document = QJsonDocument::fromJson(line);
    *isJson = document.isObject();
    FieldReader fields(document.object());
    if (fields.text("format") != QLatin1String("tamrix-journal"))
        return QStringLiteral("this is not a journal");
    const int found = fields.number("version", -1);
    if (fields.errorText().isEmpty() && found != version) {
        return QStringLiteral("the journal has version %1, this program reads version %2")
            .arg(QString::number(found), QString::number(version));
    }
    return fields.errorText();
}

QString parseEntry(const QByteArray& line, ReportEntry* entry, bool* isJson) {
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(line, &parseError);
    *isJson = document.isObject();
    if (!*isJson) {
        return parseError.error == QJsonParseError::NoError
                   ? QStringLiteral("the line is not a JSON object")
                   : parseError.errorString();
    }
    // Fields that this program does not know are passed over: later ones of the same version.
    FieldReader fields(document.object());
    *entry = ReportEntry();
    const QString kind = fields.text("kind");
    entry->time = fields.time("time");
    entry->type = fields.number("type", 0);
    entry->message = fields.text("message");
    entry->detail = fields.text("detail");
    entry->callStack = fields.callStack("callStack");
    entry->extra = fields.text("extra");
    entry->value = fields.number("value", -1);
    entry->path = fields.text("path");
    entry->explanation = fields.text("explanation");
    entry->echo = fields.flag("echo");
    if (!fields.errorText().isEmpty())
        return fields.errorText();
    const QString kindError = readKind(kind, &entry->kind);
    if (kindError.isEmpty() && entry->kind == Kind::Result && !fields.has("type"))
        return QStringLiteral("the result has no \"type\"");
    return kindError;
}

}  // namespace Tamrix::Journal
