#include <QDeadlineTimer>
#include <algorithm>

#include "runner/mcp/protocol/json.h"
#include "runner/mcp/tools/acting.h"

namespace Tamrix::Mcp {

namespace {

constexpr double defaultSeconds = 5;
constexpr double longestSeconds = 600;
constexpr int lookInterval = 50;

/// What is expected, as the application compares it and as a script says it.
struct Expected {
    ObjectName properties;
    QList<std::pair<QString, ActionValue>> inScript;
};

/// The value as a text, as a property's is compared.
QString comparedText(const Json::Value& value) {
    if (value.isBool())
        return value.asBool() ? QStringLiteral("true") : QStringLiteral("false");
    if (value.isInt64())
        return QString::number(value.asInt64());
    if (value.isDouble())
        return QString::number(value.asDouble(), 'g', 17);
    return textOf(value);
}

ActionValue scriptValueOf(const Json::Value& value) {
    if (value.isBool())
        return value.asBool();
    if (value.isInt64())
        return qint64(value.asInt64());
    if (value.isDouble())
        return value.asDouble();
    return textOf(value);
}

Expected expectedOf(const Json::Value& properties) {
    Expected expected;
    for (const std::string& member : properties.getMemberNames()) {
        const Json::Value& value = properties[member];
        QString name = QString::fromStdString(member);
        expected.inScript.append({name, scriptValueOf(value)});
        // A sign behind the name tells how it is compared, as in names.
        int modifier = PropertyValue::Plain;
        if (name.endsWith(QLatin1Char('*')))
            modifier = PropertyValue::Wildcard;
        else if (name.endsWith(QLatin1Char('~')))
            modifier = PropertyValue::Pattern;
        if (modifier != PropertyValue::Plain)
            name.chop(1);
        expected.properties.setProperty(name, PropertyValue(comparedText(value), modifier, false));
    }
    return expected;
}

/// Whether a password stands within a value. One that is a value is kept out of the script.
bool holdsPartOfPassword(Session& session, const Expected& expected) {
    const Recording& recording = session.recording();
    return std::any_of(
        expected.inScript.begin(), expected.inScript.end(), [&](const auto& property) {
            const auto* const text = std::get_if<QString>(&property.second);
            return text && recording.holdsPassword(*text) && !recording.isPassword(*text);
        });
}

/// Looks until the object is as expected.
Outcome<> waitFor(Session& session, const Meant& meant, const Expected& expected, double seconds) {
    Access& access = meant.application->access();
    access.hurry(Session::readyTimeout);
    Target target =
        meant.object ? Target::ofObject(meant.object) : Target::ofName(ObjectName(meant.name));
    target.wantNearMisses = true;
    const QDeadlineTimer deadline(static_cast<qint64>(seconds * 1000));
    while (true) {
        const Outcome<TargetAnswer> answer = expected.properties.isValid()
                                                 ? access.expect(target, expected.properties, -1)
                                                 : access.lookUp(target, -1);
        if (answer && answer->object && (answer->isReady || !expected.properties.isValid()))
            return {};
        if (!answer && answer.error().kind != FailureKind::NotFound)
            return fail(answer.error());
        if (deadline.hasExpired()) {
            const QString text = answer ? missFailure(*answer).value().text : answer.error().text;
            return fail(FailureKind::TimedOut,
                        QStringLiteral("within %1 s: %2").arg(QString::number(seconds), text));
        }
        if (!session.wait(lookInterval))
            return fail(FailureKind::Failed, QStringLiteral("the wait was given up"));
    }
}

Outcome<ToolAnswer> wait(Session& session, const Arguments& arguments) {
    const double seconds = arguments.number("timeout").value_or(defaultSeconds);
    if (!(seconds >= 0 && seconds <= longestSeconds))
        return fail(FailureKind::BadArgument,
                    QStringLiteral("wait: 'timeout' is from 0 to %1 seconds").arg(longestSeconds));
    const Outcome<Meant> meant = session.meant(arguments.text("target"));
    if (!meant)
        return fail(meant.error());
    for (const std::string& name : arguments.value("properties").getMemberNames()) {
        if (name.empty() || name == "*" || name == "~")
            return fail(FailureKind::BadArgument, QStringLiteral("wait: a property has no name"));
    }
    const Expected expected = expectedOf(arguments.value("properties"));
    const QString fault =
        expected.properties.isValid() ? nameFault(expected.properties) : QString();
    if (!fault.isEmpty())
        return fail(FailureKind::BadArgument, QStringLiteral("wait: %1").arg(fault));
    if (holdsPartOfPassword(session, expected))
        return fail(FailureKind::Refused,
                    QStringLiteral("wait: a value would bring a password into the script: expect "
                                   "less of the text, with a wildcard"));
    if (const Outcome<> found = waitFor(session, *meant, expected, seconds); !found)
        return fail(found.error());
    // A wait for mere existence is one for an object.
    const ScriptAction action =
        expected.inScript.isEmpty()
            ? ScriptAction(FunctionAction{QStringLiteral("waitForObject"), meant->name, {}, {}})
            : ScriptAction(ExpectAction{meant->name, expected.inScript});
    const Outcome<QString> line = session.noteAction(action);
    if (!line)
        return fail(line.error());
    const Outcome<QString> changes = session.changes();
    if (!changes)
        return fail(changes.error());
    return ToolAnswer{*line + QLatin1Char('\n') + *changes};
}

}  // namespace

Tool waitTool() {
    return {"wait",
            "Waits until the target is there and has the properties; in the script it is a verdict",
            {targetParameter,
             {"properties", ParameterType::Properties, Parameter::Optional,
              "{\"text\": \"A\"}; \"text*\" wildcard, \"text~\" regex"},
             {"timeout", ParameterType::Number, Parameter::Optional, "seconds"}},
            wait};
}

}  // namespace Tamrix::Mcp
