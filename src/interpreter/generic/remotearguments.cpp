#include "interpreter/generic/remotearguments.h"

#include <limits>

#include "interpreter/generic/runneraccess.h"

namespace Tamrix {

RemoteCall::RemoteCall(ScriptContext* context, int leastArguments, int mostArguments,
                       const char* usage)
    : m_context(context) {
    const int count = context->argumentCount();
    if (count < leastArguments || count > mostArguments)
        refuse(QStringLiteral("Incorrect number of arguments, please call as %1.")
                   .arg(QLatin1String(usage)));
}

void RemoteCall::refuse(const QString& error) {
    if (!m_isRefused)
        m_context->setError(error);
    m_isRefused = true;
}

int RemoteCall::handle(const char* error) {
    const SharedPtr<ScriptArgument> argument = m_context->argument(0);
    if (!argument || !argument->isInteger()) {
        refuse(QLatin1String(error));
        return -1;
    }
    // No runner gives a handle beyond this range.
    const long long number = argument->toInt();
    const bool isInRange = number >= 0 && number <= std::numeric_limits<int>::max();
    return isInRange ? static_cast<int>(number) : -1;
}

QString RemoteCall::text(int index, const char* error) {
    const SharedPtr<ScriptArgument> argument = m_context->argument(index);
    if (argument && argument->isString())
        return argument->toString();
    refuse(QLatin1String(error));
    return {};
}

bool RemoteCall::flag(int index) {
    const SharedPtr<ScriptArgument> argument = m_context->argument(index);
    if (!argument)
        return false;
    if (argument->isBool())
        return argument->toBool();
    return QStringLiteral("Tt1").contains(argument->toString().left(1)) &&
           !argument->toString().isEmpty();
}

RunnerInterface* RemoteCall::runner() {
    return m_isRefused ? nullptr : runnerFor("remoteSystem");
}

// Values

QVariant convertScriptArgumentPrimitive(const SharedPtr<ScriptArgument>& argument, QString* error) {
    if (argument && argument->isBool())
        return argument->toBool();
    if (argument && argument->isInteger())
        return qlonglong{argument->toInt()};
    if (argument && argument->isNumber())
        return argument->toDouble();
    if (argument && argument->isString())
        return argument->toString();
    *error = QStringLiteral("Unknown type in parameter");
    return {};
}

QList<QVariant> convertScriptArgumentListOfPrimitives(const SharedPtr<ScriptArgument>& argument,
                                                      QString* error) {
    QList<QVariant> values;
    for (const SharedPtr<ScriptArgument>& entry : argument->toList())
        values.append(convertScriptArgumentPrimitive(entry, error));
    return values;
}

QMap<QString, QVariant> convertScriptArgument1DPrimitiveToMap(
    const SharedPtr<ScriptArgument>& argument, QString* error) {
    QMap<QString, QVariant> values;
    for (const auto& [name, value] : argument->toMap())
        values.insert(name, convertScriptArgumentPrimitive(value, error));
    return values;
}

void executeCommandCheckOptionsMapField(const QString& name, QVariant::Type type,
                                        const QVariant& defaultValue,
                                        QMap<QString, QVariant>* options, QString* error) {
    const auto option = options->constFind(name);
    if (option == options->cend()) {
        options->insert(name, defaultValue);
    } else if (!option->canConvert(type)) {
        *error = QStringLiteral("%1 option has wrong data type %2")
                     .arg(name, QLatin1String(option->typeName()));
    }
}

}  // namespace Tamrix
