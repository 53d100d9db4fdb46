#include "agent/core/globalfunctions.h"

#include <iterator>
#include <string_view>

#include "agent/functions/functiontable.h"
#include "agent/input/windowsystem.h"
#include "wire/applicationfunctions.h"

namespace Tamrix::Agent {

namespace {

/// What runs a function of Wire::applicationFunctions, which tells its parameters and its help.
struct Function {
    const char* name;
    const char* returnType;
    /// The arguments of each overload, apart by "|".
    const char* overloads;
    void (*run)(Call& call);
    WindowSystem::Use uses = WindowSystem::Use::None;
};

using Use = WindowSystem::Use;

constexpr char mouseOverloads[] =
    "Object|Object,int|Object,int,int|Object,int,int,int|Object,int,int,int,int|"
    "Object,QString|Object,QString,QString|Object,int,QString|Object,int,int,QString|"
    "Object,int,int,int,QString|Object,int,int,QString,QString";

constexpr Function functions[] = {
    {"click", "void", mouseOverloads, click, Use::Mouse},
    {"doubleClick", "void", mouseOverloads, doubleClick, Use::Mouse},
    {"drag", "void",
     "Object,int,int,int,int|Object,int,int,int,int,int|Object,int,int,int,int,int,int|"
     "Object,int,int,int,int,QString|Object,int,int,int,int,QString,QString",
     drag, Use::Mouse},
    {"hover", "void", "Object|Object,int,int", hover, Use::Mouse},
    {"fill", "void", "Object,QString", fill, Use::Keys},
    {"typeText", "void", "Object,QString", typeText, Use::Keys},
    {"press", "void", "Object,QString", press, Use::Keys},
    {"selectItem", "void", "Object,QString|Object,QVariantList", selectItem, Use::Mouse},
    {"check", "void", "Object", check, Use::Mouse},
    {"uncheck", "void", "Object", uncheck, Use::Mouse},
    {"closeWindow", "void", "Object", closeWindow, Use::Closing},
    {"clipboardText", "QString", "", clipboardText},
    {"testDataPut", "QString", "QString,QString", testDataPut},
    {"testDataGet", "QString", "QString", testDataGet},
    {"testDataExists", "bool", "QString", testDataExists},
    {"testDataRemove", "bool", "QString", testDataRemove},
};

/// Both tables name the same functions in the same order.
constexpr bool areTablesEqual() {
    if (std::size(functions) != std::size(Wire::applicationFunctions))
        return false;
    for (std::size_t index = 0; index < std::size(functions); ++index) {
        if (std::string_view(functions[index].name) != Wire::applicationFunctions[index].name)
            return false;
    }
    return true;
}
static_assert(areTablesEqual());

const Wire::ApplicationFunction& descriptionOf(const Function& function) {
    return Wire::applicationFunctions[&function - std::begin(functions)];
}

}  // namespace

QList<Wire::MethodInfo> globalFunctions() {
    QList<Wire::MethodInfo> methods;
    for (const Function& function : functions) {
        const QStringList overloads = QString::fromLatin1(function.overloads).split(u'|');
        for (const QString& overload : overloads) {
            Wire::MethodInfo method;
            method.name = QString::fromLatin1(function.name);
            method.returnType = QString::fromLatin1(function.returnType);
            method.argumentTypes = overload.split(u',', Qt::SkipEmptyParts);
            method.parameters = QString::fromLatin1(descriptionOf(function).parameters);
            method.description = QString::fromLatin1(descriptionOf(function).description);
            methods.append(method);
        }
    }
    return methods;
}

void callGlobalFunction(const Wire::Invoke& call, const ResponderPtr& responder) {
    for (const Function& function : functions) {
        if (call.method != QLatin1String(function.name))
            continue;
        try {
            const QString obstacle = WindowSystem::self().obstacle(function.uses);
            if (!obstacle.isEmpty())
                throw CallError(FailureKind::Refused, obstacle);
            Call running(call, responder);
            function.run(running);
        } catch (const CallError& error) {
            const Failure failure =
                Wire::withUsage(error.failure(), call.method, descriptionOf(function).parameters);
            responder->fail(failure.kind, failure.text);
            responder->finish();
        }
        return;
    }
    responder->fail(FailureKind::Refused,
                    QStringLiteral("there is no global function '%1'").arg(call.method));
    responder->finish();
}

}  // namespace Tamrix::Agent
