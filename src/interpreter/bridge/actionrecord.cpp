#include "interpreter/bridge/actionrecord.h"

#include <QStringList>
#include <algorithm>
#include <exception>
#include <limits>

#include "interpreter/bridge/scriptcontext.h"
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

QString argumentText(const SharedPtr<ScriptArgument>& argument) {
    if (!argument)
        return QStringLiteral("null");
    if (argument->isObject())
        return objectText(argument->toObject());
    if (argument->isString())
        return QLatin1Char('"') + argument->toString() + QLatin1Char('"');
    if (argument->isBool() || argument->isNumber())
        return argument->toString();
    // Any other value may have code of the script behind its text.
    return isStringOrObjectName(argument) ? serializeObjectName(argument) : argument->typeName();
}

}  // namespace

QString actionArguments(const ScriptArgument::List& arguments) {
    QStringList texts;
    for (const SharedPtr<ScriptArgument>& argument : arguments) {
        QString text = argumentText(argument);
        if (text.size() > longestArgument)
            text = text.left(longestArgument) + QStringLiteral("...");
        texts.append(text);
    }
    return texts.join(QLatin1String(", "));
}

ActionRecord::ActionRecord(ScriptContext* context, const char* function)
    : ActionRecord(context, QString::fromLatin1(function)) {
    m_usesContext = true;
    if (!m_isWanted)
        return;
    ScriptArgument::List arguments;
    for (int index = 0; index < context->argumentCount(); ++index)
        arguments.push_back(context->argument(index));
    setArguments(arguments);
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
    return std::uncaught_exceptions() > m_exceptionsBefore ||
           (m_usesContext && m_context->hasError());
}

void ActionRecord::setArguments(const ScriptArgument::List& arguments) {
    if (m_isWanted)
        m_arguments = actionArguments(arguments);
}

}  // namespace Tamrix
