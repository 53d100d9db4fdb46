#include "comparison/jsoncompare.h"

#include <json/reader.h>
#include <json/writer.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "comparison/difftext.h"
#include "comparison/jsonsyntax.h"

namespace Tamrix {

namespace {

struct TypeName {
    Json::ValueType type;
    const char* name;
};

const TypeName typeNames[] = {
    {Json::nullValue, "null"},
    {Json::intValue, "signed integer number"},
    {Json::uintValue, "unsigned integer number"},
    {Json::realValue, "floating point number"},
    {Json::stringValue, "string"},
    {Json::booleanValue, "boolean"},
    {Json::arrayValue, "array"},
    {Json::objectValue, "object"},
};

const char* typeName(const Json::Value& value) {
    const auto* const found =
        std::find_if(std::begin(typeNames), std::end(typeNames),
                     [&value](const TypeName& each) { return each.type == value.type(); });
    return found == std::end(typeNames) ? nullptr : found->name;
}

QString textOf(const Json::Value& value) {
    return QString::fromStdString(value.asString());
}

bool compareArrays(const Json::Value& a, const Json::Value& b, QString* message) {
    if (a.size() != b.size()) {
        *message = QStringLiteral("Different number of array elements: %1 not equal to %2")
                       .arg(QString::number(a.size()), QString::number(b.size()));
        return false;
    }
    for (Json::ArrayIndex i = 0; i < a.size(); ++i) {
        if (!compareJsonValues(a[i], b[i], message))
            return false;
    }
    return true;
}

bool compareJsonObjectMembers(const Json::Value& first, const Json::Value& second,
                              const Json::Value::Members& names, QString* message) {
    for (const std::string& name : names) {
        if (!second.isMember(name)) {
            *message = QStringLiteral("Name missing: '%1'").arg(QString::fromStdString(name));
            return false;
        }
        if (!compareJsonValues(first[name], second[name], message))
            return false;
    }
    return true;
}

bool compareObjects(const Json::Value& a, const Json::Value& b, QString* message) {
    if (a.size() != b.size()) {
        *message = QStringLiteral("Different number of name-value pairs: %1 not equal to %2")
                       .arg(QString::number(a.size()), QString::number(b.size()));
        return false;
    }
    // All names of one are in the other and their numbers agree, so looking from the other side
    // as well could find nothing, and would take twice the time on every level of nesting.
    return compareJsonObjectMembers(a, b, a.getMemberNames(), message);
}

/// In the reader's layout; empty when there is no problem.
QString textOf(const JsonProblem& problem) {
    return problem.reason.isEmpty() ? QString()
                                    : QStringLiteral("* Line %1, Column %2\n  %3\n")
                                          .arg(QString::number(problem.line),
                                               QString::number(problem.column), problem.reason);
}

QString invalidJson(const QString& problem) {
    return QStringLiteral("Invalid JSON: %1").arg(problem);
}

}  // namespace

QString jsonTypeString(const Json::Value& value) {
    const char* const name = typeName(value);
    return QString::fromLatin1(name ? name : "unknown type");
}

bool readJSON(const QString& text, Json::Value* out, QString* error) {
    const QByteArray bytes = text.toUtf8();
    QString problem;
    try {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
        Json::Reader reader(Json::Features::strictMode());
        // The reader's own words come first; it lets pass some of what is no JSON.
        if (reader.parse(bytes.constBegin(), bytes.constEnd(), *out, true))
            problem = textOf(jsonProblem(bytes));
        else
            problem = QString::fromStdString(reader.getFormattedErrorMessages());
        if (problem.isEmpty())
            return true;
#pragma GCC diagnostic pop
    } catch (const std::exception& exception) {
        // The reader throws when values are nested too deep for it.
        problem = QString::fromUtf8(exception.what());
    }
    *error = invalidJson(problem);
    return false;
}

bool decodeJson(const QByteArray& bytes, QString* text, QString* error) {
    // All mistakes of the encoding would be decoded to one and the same character.
    const QString problem = textOf(jsonEncodingProblem(bytes));
    if (!problem.isEmpty()) {
        *error = invalidJson(problem);
        return false;
    }
    *text = toUtfString(bytes);
    return true;
}

bool compareJson(const QString& expected, const QString& actual, QString* message) {
    Json::Value a;
    Json::Value b;
    return readJSON(expected, &a, message) && readJSON(actual, &b, message) &&
           compareJsonValues(a, b, message);
}

bool compareJsonValues(const Json::Value& a, const Json::Value& b, QString* message) {
    // 1. Types that are known,
    if (!typeName(a) || !typeName(b)) {
        *message = QStringLiteral("Unknown JSON type");
        return false;
    }
    // 2. and the same: 1 is not 1.0.
    if (a.type() != b.type()) {
        *message = QStringLiteral("Type mismatch: '%1' not equal to '%2'")
                       .arg(jsonTypeString(a), jsonTypeString(b));
        return false;
    }
    // 3. Arrays in their order.
    if (a.type() == Json::arrayValue)
        return compareArrays(a, b, message);
    // 4. Objects by name.
    if (a.type() == Json::objectValue)
        return compareObjects(a, b, message);
    // 5. Floating point numbers up to the last place.
    if (a.type() == Json::realValue) {
        const double one = a.asDouble();
        const double other = b.asDouble();
        if (std::fabs(one - other) <=
            std::numeric_limits<double>::epsilon() * std::max(std::fabs(one), std::fabs(other)))
            return true;
        *message = QStringLiteral("Different values: %1 not equal to %2").arg(textOf(a), textOf(b));
        return false;
    }
    // 6. The rest as the library compares it.
    if (a != b) {
        *message =
            QStringLiteral("Different values: '%1' not equal to '%2'").arg(textOf(a), textOf(b));
        return false;
    }
    return true;
}

bool formatJson(const QString& text, QString* out) {
    Json::Value value;
    QString error;
    if (!readJSON(text, &value, &error))
        return false;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    *out = QString::fromStdString(Json::StyledWriter().write(value));
#pragma GCC diagnostic pop
    return true;
}

}  // namespace Tamrix
