#include "interpreter/bridge/actionrecord.h"

#include <QStringList>
#include <algorithm>
#include <exception>
#include <limits>

#include "interpreter/bridge/scriptcontext.h"
#include "platform/objectmodel/valueobject.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

namespace {

/// Of longer texts the beginning tells enough.
constexpr int longestArgument = 300;

QString objectText(const SharedPtr<Object>& object) {
    if (!object)
        return QStringLiteral("null");
    if (!object->foundAs().isEmpty())
        return object->foundAs();
    const QString name = object->objectName();
    return name.isEmpty() ? object->className()
                          : QStringLiteral("%1 '%2'").arg(object->className(), name);
}

QString argumentText(const SharedPtr<ScriptArgument>& argument, int depth = 0);

QString listText(const SharedPtr<ScriptArgument>& list, int depth) {
    if (depth >= maximalValueDepth)
        return QStringLiteral("[...]");
    QString text(QLatin1Char('['));
    for (const SharedPtr<ScriptArgument>& element : list->toList()) {
        if (text.size() > 1)
            text += QLatin1String(", ");
        if (text.size() > longestArgument)
            break;
        text += argumentText(element, depth + 1);
    }
    return text + QLatin1Char(']');
}

/// As the script wrote the value. `depth`: in how many lists it stands.
QString argumentText(const SharedPtr<ScriptArgument>& argument, int depth) {
    if (argument->isObject())
        return objectText(argument->toObject());
    if (argument->isString())
        return QLatin1Char('"') + argument->toString() + QLatin1Char('"');
    if (argument->isBool() || argument->isNumber() || argument->isNull())
        return argument->toString();
    if (isStringOrObjectName(argument))
        return serializeObjectName(argument);
    if (argument->isList())
        return listText(argument, depth);
    // What is no value for an application may have code of the script behind its text.
    return argument->toVariant() ? argument->toString() : argument->typeName();
}

QString shortened(const QString& text) {
    return text.size() > longestArgument ? text.left(longestArgument) + QStringLiteral("...")
                                         : text;
}

}  // namespace

QString actionArguments(const ScriptArgument::List& positional, const NamedArguments& named) {
    QStringList texts;
    for (const SharedPtr<ScriptArgument>& argument : positional)
        texts.append(shortened(argumentText(argument)));
    for (const auto& [name, argument] : named)
        texts.append(name + QLatin1Char('=') + shortened(argumentText(argument)));
    return texts.join(QLatin1String(", "));
}

QString actionArgumentsWithoutTexts(const ScriptArgument::List& positional,
                                    const NamedArguments& named) {
    const auto textOf = [](const SharedPtr<ScriptArgument>& argument, bool isObject) {
        return isObject || !argument->isString() ? shortened(argumentText(argument))
                                                 : QStringLiteral("******");
    };
    QStringList texts;
    for (const SharedPtr<ScriptArgument>& argument : positional)
        texts.append(textOf(argument, texts.isEmpty()));
    for (const auto& [name, argument] : named)
        texts.append(name + QLatin1Char('=') + textOf(argument, name == QLatin1String("object")));
    return texts.join(QLatin1String(", "));
}

ActionRecord::ActionRecord(ScriptContext* context, const char* function)
    : ActionRecord(context, QString::fromLatin1(function)) {
    m_usesContext = true;
    if (!m_isWanted)
        return;
    const ScriptContext::FunctionDescription description =
        ScriptContext::functionDescription(m_function);
    const QStringList names = description.requiredParameters + description.optionalParameters;
    ScriptArgument::List positional;
    NamedArguments named;
    for (int index = 0; index < context->argumentCount(); ++index) {
        const SharedPtr<ScriptArgument> argument = context->argument(index);
        // What stands behind one that was left out is told by the name of its parameter.
        const bool isBehindGap = static_cast<int>(positional.size()) < index;
        if (argument && isBehindGap)
            named.emplace_back(names.value(index), argument);
        else if (argument)
            positional.push_back(argument);
    }
    setArguments(positional, named);
}

ActionRecord::ActionRecord(ScriptContext* context, const QString& function)
    : m_context(context),
      m_isWanted(context->testResult() && context->testResult()->recordsActions()),
      m_usesContext(false) {
    if (!m_isWanted)
        return;
    m_function = function;
    m_exceptionsBefore = std::uncaught_exceptions();
    // Now: behind an exception of the language nothing can be asked of it.
    m_position = context->lineInfoForResult();
    m_timer.start();
}

ActionRecord::~ActionRecord() {
    if (!m_isWanted)
        return;
    const qint64 elapsed = std::min<qint64>(m_timer.elapsed(), std::numeric_limits<int>::max());
    m_context->testResult()->addAction(m_function, m_arguments, static_cast<int>(elapsed),
                                       hasFailed(), m_position);
}

bool ActionRecord::hasFailed() const {
    return m_hasFailed || std::uncaught_exceptions() > m_exceptionsBefore ||
           (m_usesContext && m_context->hasError());
}

void ActionRecord::setArguments(const ScriptArgument::List& positional,
                                const NamedArguments& named) {
    if (m_isWanted)
        m_arguments = actionArguments(positional, named);
}

void ActionRecord::setArgumentsWithoutTexts(const ScriptArgument::List& positional,
                                            const NamedArguments& named) {
    if (m_isWanted)
        m_arguments = actionArgumentsWithoutTexts(positional, named);
}

}  // namespace Tamrix
