#include "interpreter/objects/globalfunctions.h"

#include <QHash>
#include <algorithm>
#include <optional>

#include "interpreter/bridge/actionrecord.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/objects/functionparameters.h"
#include "interpreter/objects/namelookup.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/objectmap.h"
#include "platform/objectmodel/objectmodel.h"
#include "platform/objectmodel/passwordfields.h"
#include "wire/applicationfunctions.h"

namespace Tamrix {

namespace {

using Kind = ObjectError::Kind;
using Value = SharedPtr<ScriptArgument>;

/// Null when no application can tell it.
const Class* globalClassOf(ObjectModel* model) {
    return model ? model->globalClass().value_or(nullptr) : nullptr;
}

QList<const Method*> methodsOf(ObjectModel* model, const QString& name) {
    const Class* const globalClass = globalClassOf(model);
    return globalClass ? globalClass->methodsByName(name) : QList<const Method*>();
}

/// Parameters and help of a function.
struct Description {
    QString parameters;
    QString help;

    bool isKnown() const { return !help.isEmpty(); }
};

/// The functions that all applications have, by name.
const QHash<QString, Description>& commonFunctions() {
    static const QHash<QString, Description> s_functions = [] {
        QHash<QString, Description> functions;
        for (const Wire::ApplicationFunction& function : Wire::applicationFunctions)
            functions.insert(QLatin1String(function.name), {QLatin1String(function.parameters),
                                                            QLatin1String(function.description)});
        return functions;
    }();
    return s_functions;
}

/// What the application tells of its function, with each of its overloads, else what is known of it
/// before one is connected.
Description describe(const QString& name, const QList<const Method*>& methods) {
    if (!methods.isEmpty() && methods.first()->isDescribed())
        return {methods.first()->parameters(), methods.first()->description()};
    const auto known = commonFunctions().constFind(name);
    return known == commonFunctions().constEnd() ? Description() : *known;
}

/// Of functions that nobody describes, the first argument is an object unless a method of the name
/// takes a text there.
bool seemsToTakeObject(const QList<const Method*>& methods) {
    return std::none_of(methods.begin(), methods.end(), [](const Method* method) {
        return method->signature().argumentCount() > 0 &&
               method->signature().argument(0).typeName() == QLatin1String("QString");
    });
}

/// The arguments in the order of the function.
ObjectResult<ScriptArgument::List> inOrder(ScriptContext& context, const QString& name,
                                           const Description& description,
                                           CallArguments arguments) {
    // The application knows the forms of its functions by itself.
    if (FunctionParameters::areOrdered(arguments))
        return std::move(arguments.positional);
    if (description.isKnown())
        return FunctionParameters(description.parameters).ordered(context, name, arguments);
    if (const ObjectResult<void> plain = refuseNamed(name, arguments); !plain)
        return tl::unexpected(plain.error());
    return std::move(arguments.positional);
}

/// Calls a function whose first argument is an object's name.
ObjectResult<Value> callWithName(ScriptContext& context, RunnerInterface& runner,
                                 const QString& function, const ScriptArgument::List& values) {
    const ObjectResult<ObjectList> others = objectsOfArguments(function, values, 1);
    if (!others)
        return tl::unexpected(others.error());
    const QString name = serializeObjectName(values.front());
    const Outcome<Outcome<SharedPtr<Object>>> result = lookUp(name, function, [&] {
        return runner.callWithName(name, function, *others,
                                   TestSettingsType::s_waitForObjectTimeout);
    });
    if (result)
        return scriptValue(context, *result);
    Inspector::self()->keep(result.error());
    return objectError(Kind::NotFound, result.error().text);
}

ObjectResult<Value> call(ScriptContext& context, const QString& name, CallArguments arguments) {
    // 1. The function is looked up in the current application.
    ObjectModel* const model = Inspector::self()->model();
    const QList<const Method*> methods = methodsOf(model, name);
    const Description description = describe(name, methods);
    // 2. The arguments are brought into its order.
    ObjectResult<ScriptArgument::List> values =
        inOrder(context, name, description, std::move(arguments));
    if (!values)
        return tl::unexpected(values.error());
    if (!model)
        return objectError(Kind::Failed, Inspector::noApplicationText);
    if (methods.isEmpty())
        return objectError(Kind::Failed, "The application has no function '" + name + "'");
    // 3. The application is called, which chooses among several methods of the name. The object of
    //    a name it finds itself.
    const bool takesObject = description.isKnown()
                                 ? FunctionParameters::startWithObject(description.parameters)
                                 : seemsToTakeObject(methods);
    RunnerInterface* const runner = Interpreter::currentRunner();
    if (takesObject && runner && !values->empty() && isStringOrObjectName(values->front()))
        return callWithName(context, *runner, name, *values);
    const ObjectResult<ObjectList> objects = objectsOfArguments(name, *values);
    if (!objects)
        return tl::unexpected(objects.error());
    return scriptValue(context, methods.first()->invoke(nullptr, *objects));
}

bool entersText(const QString& function) {
    return function == QLatin1String("fill") || function == QLatin1String("typeText");
}

/// Whether a function that enters text has a field that hides it. Where the field is not found any
/// more, nobody knows.
bool isForPasswords(const CallArguments& arguments) {
    SharedPtr<ScriptArgument> target;
    if (!arguments.positional.empty())
        target = arguments.positional.front();
    for (const auto& [name, argument] : arguments.named) {
        if (name == QLatin1String("object"))
            target = argument;
    }
    if (!target)
        return false;
    if (target->isObject())
        return isForPasswords(target->toObject());
    ObjectModel* const model = Inspector::self()->model();
    if (!model || !isStringOrObjectName(target))
        return false;
    const Outcome<ObjectName> name = ObjectMap::self()->resolve(serializeObjectName(target));
    return name && isForPasswords(model->findObject(*name).value_or(nullptr));
}

}  // namespace

QStringList globalFunctionNames(ObjectModel* model) {
    QStringList names;
    for (const Wire::ApplicationFunction& function : Wire::applicationFunctions)
        names.append(QLatin1String(function.name));
    const Class* const globalClass = globalClassOf(model);
    for (int index = 0; globalClass && index < globalClass->numMethods(); ++index)
        names.append(globalClass->method(index)->name());
    names.removeDuplicates();
    return names;
}

QString globalFunctionHelp(const QString& name) {
    const Description description = describe(name, methodsOf(Inspector::self()->model(), name));
    return description.isKnown()
               ? QStringLiteral("%1(%2)\n\n%3").arg(name, description.parameters, description.help)
               : QStringLiteral("A function of the application");
}

ObjectResult<Value> callGlobalFunction(ScriptContext& context, const QString& name,
                                       CallArguments arguments) {
    return askApplication([&] { return name; },
                          [&] {
                              ActionRecord record(&context, name);
                              record.setArguments(arguments.positional, arguments.named);
                              std::optional<CallArguments> given;
                              if (record.isWanted() && entersText(name))
                                  given = arguments;
                              ObjectResult<Value> result =
                                  call(context, name, std::move(arguments));
                              if (given && isForPasswords(*given))
                                  record.setArgumentsWithoutTexts(given->positional, given->named);
                              if (!result)
                                  record.setFailed();
                              return result;
                          });
}

}  // namespace Tamrix
