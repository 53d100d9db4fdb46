#include "interpreter/generic/objectarguments.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/objects/namelookup.h"

namespace Tamrix {

namespace {

constexpr int s_leastInt = std::numeric_limits<int>::min();
constexpr int s_mostInt = std::numeric_limits<int>::max();

}  // namespace

int intOf(const SharedPtr<ScriptArgument>& argument, int missing) {
    if (!argument)
        return missing;
    return static_cast<int>(std::clamp<long long>(argument->toInt(), s_leastInt, s_mostInt));
}

int roundedMilliseconds(double milliseconds) {
    if (std::isnan(milliseconds))
        return 0;
    return static_cast<int>(std::clamp<double>(std::round(milliseconds), s_leastInt, s_mostInt));
}

bool isObjectOrName(const SharedPtr<ScriptArgument>& argument) {
    return argument && (argument->isObject() || isStringOrObjectName(argument));
}

bool readTimeout(ScriptContext* context, const SharedPtr<ScriptArgument>& argument, int* timeout) {
    *timeout = TestSettingsType::s_waitForObjectTimeout;
    if (!argument)
        return true;
    if (!argument->isNumber()) {
        context->setError("Invalid type of timeout value");
        return false;
    }
    *timeout = roundedMilliseconds(argument->toDouble());
    return true;
}

QString optionalText(const SharedPtr<ScriptArgument>& argument) {
    return argument ? argument->toString() : QString();
}

SharedPtr<Object> findObjectOf(ScriptContext* context, const SharedPtr<ScriptArgument>& argument,
                               const QString& function) {
    const QString name = serializeObjectName(argument);
    SharedPtr<Object> object;
    if (argument->isObject())
        object = argument->toObject();
    else if (isStringOrObjectName(argument))
        object = lookUp(name, function, [&] {
                     return outcomeOf(Inspector::self()->findObject(name));
                 }).value_or(nullptr);
    if (!object)
        context->setError("Can't find object named '" + name + "'");
    return object;
}

}  // namespace Tamrix
