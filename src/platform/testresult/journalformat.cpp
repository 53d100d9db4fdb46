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

}  // namespace

const char* const beginning = "{\"format\":\"tamrix-journal\",\"version\":";

QByteArray headerLine(const QDateTime& created) {
    QByteArray line = beginning + QByteArray::number(version);
    appendText(line, "producer", QStringLiteral("Tamrix " TAMRIX_VERSION));
    appendTime(line, "created", created);
    line += "}\n";
    return line;
}

QByteArray lineOf(const Fields& fields) {
    QByteArray line;
    line.reserve(256 + fields.message.size() + fields.detail.size());
    line += "{\"kind\":";
    appendString(line, fields.kind);
    appendTime(line, "time", fields.time);
    if (fields.type)
        appendNumber(line, "type", *fields.type);
    appendText(line, "message", fields.message);
    appendText(line, "detail", fields.detail);
    appendCallStack(line, fields.callStack);
    appendText(line, "extra", fields.extra);
    if (fields.value != -1)
        appendNumber(line, "value", fields.value);
    appendText(line, "path", fields.path);
    appendText(line, "explanation", fields.explanation);
    if (fields.isEcho)
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

QString parseFields(const QByteArray& line, Fields* fields, bool* isJson) {
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(line, &parseError);
    *isJson = document.isObject();
    if (!*isJson) {
        return parseError.error == QJsonParseError::NoError
                   ? QStringLiteral("the line is not a JSON object")
                   : parseError.errorString();
    }
    // Fields that this program does not know are passed over: later ones of the same version.
    FieldReader reader(document.object());
    fields->kind = reader.text("kind");
    fields->time = reader.time("time");
    if (reader.has("type"))
        fields->type = reader.number("type", 0);
    fields->message = reader.text("message");
    fields->detail = reader.text("detail");
    fields->callStack = reader.callStack("callStack");
    fields->extra = reader.text("extra");
    fields->value = reader.number("value", -1);
    fields->path = reader.text("path");
    fields->explanation = reader.text("explanation");
    fields->isEcho = reader.flag("echo");
    return reader.errorText();
}

}  // namespace Tamrix::Journal
