#include "runner/mcp/tools/arguments.h"

#include <algorithm>

#include "runner/mcp/protocol/json.h"

namespace Tamrix::Mcp {

namespace {

bool isTexts(const Json::Value& value) {
    return value.isArray() && !value.empty() &&
           std::all_of(value.begin(), value.end(),
                       [](const Json::Value& each) { return each.isString(); });
}

bool isProperties(const Json::Value& value) {
    return value.isObject() && std::all_of(value.begin(), value.end(), [](const Json::Value& each) {
               return each.isString() || each.isBool() || each.isNumeric();
           });
}

/// Null when the value is of the type, else what it is to be.
const char* whatIsWanted(ParameterType type, const Json::Value& value) {
    switch (type) {
        case ParameterType::Text:
            return value.isString() ? nullptr : "a text";
        case ParameterType::Integer:
            return value.isInt() ? nullptr : "a whole number";
        case ParameterType::Number:
            return value.isNumeric() ? nullptr : "a number";
        case ParameterType::Flag:
            return value.isBool() ? nullptr : "true or false";
        case ParameterType::Path:
            return value.isString() || isTexts(value) ? nullptr : "a text or a list of texts";
        case ParameterType::Properties:
            return isProperties(value) ? nullptr : "an object of texts, numbers, true and false";
    }
    return nullptr;
}

const Parameter* findParameter(const Tool& tool, const QString& name) {
    const auto found =
        std::find_if(tool.parameters.begin(), tool.parameters.end(),
                     [&](const Parameter& each) { return name == QLatin1String(each.name); });
    return found == tool.parameters.end() ? nullptr : &*found;
}

tl::unexpected<Failure> wrong(const Tool& tool, const QString& text) {
    return fail(FailureKind::BadArgument,
                QStringLiteral("%1: %2").arg(QLatin1String(tool.name), text));
}

const char* valueNameOf(ParameterType type) {
    switch (type) {
        case ParameterType::Integer:
        case ParameterType::Number:
            return "N";
        case ParameterType::Flag:
            return "true|false";
        default:
            return "TEXT";
    }
}

/// A word as a value: of a number, a truth or a list as JSON has it, else a text.
Json::Value valueOfWord(ParameterType type, const QString& word) {
    if (type != ParameterType::Text) {
        const Outcome<Json::Value> value = parseJson(word.toUtf8());
        if (value && !value->isObject() && !value->isNull() &&
            !(type == ParameterType::Path && value->isNumeric()))
            return *value;
    }
    return jsonText(word);
}

}  // namespace

Outcome<Arguments> Arguments::read(const Tool& tool, const Json::Value& values) {
    if (!values.isNull() && !values.isObject())
        return wrong(tool, QStringLiteral("the arguments are no object"));
    Json::Value taken(Json::objectValue);
    for (const std::string& name : values.getMemberNames()) {
        const QString shown = QString::fromStdString(name);
        const Parameter* const parameter = findParameter(tool, shown);
        if (!parameter)
            return wrong(
                tool,
                QStringLiteral("there is no '%1'; it is called as %2").arg(shown, usageOf(tool)));
        const Json::Value& value = values[name];
        if (value.isNull())
            continue;
        if (const char* const wanted = whatIsWanted(parameter->type, value))
            return wrong(tool,
                         QStringLiteral("'%1' is to be %2").arg(shown, QLatin1String(wanted)));
        taken[name] = value;
    }
    for (const Parameter& parameter : tool.parameters) {
        if (parameter.need == Parameter::Required && !taken.isMember(parameter.name))
            return wrong(tool,
                         QStringLiteral("'%1' is missing").arg(QLatin1String(parameter.name)));
    }
    return Arguments(taken);
}

QString Arguments::text(const char* name) const {
    return has(name) ? textOf(m_values[name]) : QString();
}

std::optional<int> Arguments::integer(const char* name) const {
    return has(name) ? std::optional<int>(m_values[name].asInt()) : std::nullopt;
}

std::optional<double> Arguments::number(const char* name) const {
    return has(name) ? std::optional<double>(m_values[name].asDouble()) : std::nullopt;
}

bool Arguments::flag(const char* name, bool otherwise) const {
    return has(name) ? m_values[name].asBool() : otherwise;
}

QStringList Arguments::path(const char* name) const {
    const Json::Value& value = m_values[name];
    if (!value.isArray())
        return has(name) ? QStringList(textOf(value)) : QStringList();
    QStringList steps;
    for (const Json::Value& step : value)
        steps.append(textOf(step));
    return steps;
}

QString usageOf(const Tool& tool) {
    QString usage = QLatin1String(tool.name);
    for (const Parameter& parameter : tool.parameters) {
        const QString name = QLatin1String(parameter.name);
        if (parameter.need == Parameter::Required)
            usage += QLatin1Char(' ') + name.toUpper();
        else if (parameter.type == ParameterType::Properties)
            usage += QStringLiteral(" [PROPERTY=VALUE...]");
        else
            usage +=
                QStringLiteral(" [%1=%2]").arg(name, QLatin1String(valueNameOf(parameter.type)));
    }
    return usage;
}

Outcome<Json::Value> argumentsOfWords(const Tool& tool, const QStringList& words) {
    const auto isProperties = [](const Parameter& parameter) {
        return parameter.type == ParameterType::Properties;
    };
    const auto properties =
        std::find_if(tool.parameters.begin(), tool.parameters.end(), isProperties);
    auto nextRequired = tool.parameters.begin();
    const auto skipOptional = [&] {
        nextRequired = std::find_if(
            nextRequired, tool.parameters.end(),
            [](const Parameter& parameter) { return parameter.need == Parameter::Required; });
    };
    Json::Value values(Json::objectValue);
    for (const QString& word : words) {
        // 1. What is required comes first.
        skipOptional();
        if (nextRequired != tool.parameters.end()) {
            values[nextRequired->name] = valueOfWord(nextRequired->type, word);
            ++nextRequired;
            continue;
        }
        // 2. The rest has names.
        const int sign = word.indexOf(QLatin1Char('='));
        const QString name = word.left(std::max(sign, 0));
        const QString value = word.mid(sign + 1);
        const Parameter* const parameter = findParameter(tool, name);
        if (parameter && !isProperties(*parameter))
            values[parameter->name] = valueOfWord(parameter->type, value);
        else if (!name.isEmpty() && properties != tool.parameters.end())
            values[properties->name][name.toStdString()] =
                valueOfWord(ParameterType::Properties, value);
        else
            return wrong(tool, QStringLiteral("'%1' is not understood; it is called as %2")
                                   .arg(word, usageOf(tool)));
    }
    return values;
}

}  // namespace Tamrix::Mcp
