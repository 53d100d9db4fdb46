#include "interpreter/language/stepmembers.h"

#include <string>
#include <utility>

#include "interpreter/language/languagecontext.h"
#include "interpreter/language/memberfunction.h"
#include "interpreter/language/stepactions.h"

namespace Tamrix {

namespace {

StepActions& stepsOf(ScriptContext* context) {
    return static_cast<LanguageContext*>(context)->steps();
}

std::string utf8At(ScriptContext* context, int index) {
    return context->argument(index)->toString().toStdString();
}

void addStep(ScriptContext* context) {
    stepsOf(context).addStep(utf8At(context, 1), context->argument(2)->toBool(),
                             context->argument(3));
}

void addHook(ScriptContext* context) {
    const QString name = context->argument(1)->toString();
    if (const HookKind* const hook = hookKind(name))
        stepsOf(context).addHook(*hook, utf8At(context, 2), context->argument(3));
    else
        context->setError(QStringLiteral("There is no hook '%1'").arg(name));
}

void addType(ScriptContext* context) {
    if (!context->argument(2)->isList())
        return context->setError(QStringLiteral("The patterns are no list"));
    std::vector<std::string> patterns;
    for (const SharedPtr<ScriptArgument>& pattern : context->argument(2)->toList())
        patterns.push_back(pattern->toString().toStdString());
    stepsOf(context).registry().addParameterType(utf8At(context, 1), std::move(patterns),
                                                 context->argument(3));
}

/// The value in a list of its own; null when there is none.
void findName(ScriptContext* context) {
    const SharedPtr<ScriptArgument> value =
        stepsOf(context).scopes().find(context->argument(1)->toString());
    context->setResult(value ? context->createList({value}) : context->createNull());
}

void setName(ScriptContext* context) {
    const SharedPtr<ScriptArgument> value = context->argument(2);
    stepsOf(context).scopes().set(context->argument(1)->toString(), value);
    context->setResult(value);
}

void removeName(ScriptContext* context) {
    context->setBoolResult(stepsOf(context).scopes().remove(context->argument(1)->toString()));
}

void allNames(ScriptContext* context) {
    context->setResult(context->createMap(stepsOf(context).scopes().all()));
}

struct Row {
    const char* name;
    ScriptContext::Function function;
    QStringList required;
    QStringList optional;
};

}  // namespace

std::vector<NativeFunction> stepMembers(const ScriptContext& context) {
    // No word of a script is the name of one of these parameters.
    const Row rows[] = {
        {"_addStep",
         memberFunction<addStep, 4>,
         {"_context", "_expression", "_isRegular", "_function"},
         {}},
        {"_addHook", memberFunction<addHook, 4>, {"_context", "_name", "_tags", "_function"}, {}},
        {"_addType", memberFunction<addType, 3>, {"_context", "_name", "_patterns"}, {"_function"}},
        {"_find", memberFunction<findName, 2>, {"_context", "_name"}, {}},
        {"_set", memberFunction<setName, 3>, {"_context", "_name", "_value"}, {}},
        {"_remove", memberFunction<removeName, 2>, {"_context", "_name"}, {}},
        {"_all", memberFunction<allNames, 1>, {"_context"}, {}},
    };
    std::vector<NativeFunction> members;
    members.reserve(std::size(rows));
    for (const Row& row : rows)
        members.emplace_back(
            context,
            NativeSignature{
                row.name, QStringLiteral("StepContext"), row.required, row.optional, {}},
            row.function);
    return members;
}

}  // namespace Tamrix
