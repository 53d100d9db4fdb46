#include "agent/core/globalfunctions.h"

#include "agent/functions/functiontable.h"

namespace Tamrix::Agent {

namespace {

struct Function {
    const char* name;
    /// For people, after a wrong call.
    const char* usage;
    const char* returnType;
    /// The arguments of each overload, apart by "|".
    const char* overloads;
    void (*run)(Call& call);
};

constexpr char mouseOverloads[] =
    "Object|Object,int|Object,int,int|Object,int,int,int|Object,int,int,int,int|"
    "Object,QString|Object,QString,QString|Object,int,QString|Object,int,int,QString|"
    "Object,int,int,int,QString|Object,int,int,QString,QString";

constexpr Function functions[] = {
    {"click", "click(object[, x, y][, button][, modifiers])", "void", mouseOverloads, click},
    {"doubleClick", "doubleClick(object[, x, y][, button][, modifiers])", "void", mouseOverloads,
     doubleClick},
    {"drag", "drag(object, x, y, dx, dy[, button][, modifiers])", "void",
     "Object,int,int,int,int|Object,int,int,int,int,int|Object,int,int,int,int,int,int|"
     "Object,int,int,int,int,QString|Object,int,int,int,int,QString,QString",
     drag},
    {"hover", "hover(object[, x, y])", "void", "Object|Object,int,int", hover},
    {"fill", "fill(object, text)", "void", "Object,QString", fill},
    {"typeText", "typeText(object, text)", "void", "Object,QString", typeText},
    {"press", "press(object, keys)", "void", "Object,QString", press},
    {"selectItem", "selectItem(object, text)", "void", "Object,QString|Object,QVariantList",
     selectItem},
    {"check", "check(object)", "void", "Object", check},
    {"uncheck", "uncheck(object)", "void", "Object", uncheck},
    {"closeWindow", "closeWindow(object)", "void", "Object", closeWindow},
    {"clipboardText", "clipboardText()", "QString", "", clipboardText},
    {"testDataPut", "testDataPut(file, encodedBytes)", "QString", "QString,QString", testDataPut},
    {"testDataGet", "testDataGet(file)", "QString", "QString", testDataGet},
    {"testDataExists", "testDataExists(file)", "bool", "QString", testDataExists},
    {"testDataRemove", "testDataRemove(file)", "bool", "QString", testDataRemove},
};

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
            Call running(call, responder);
            function.run(running);
        } catch (const CallError& error) {
            QString text = error.text();
            if (error.kind() == FailureKind::BadArgument)
                text = QStringLiteral("%1: %2; usage: %3")
                           .arg(call.method, text, QLatin1String(function.usage));
            responder->fail(error.kind(), text);
            responder->finish();
        }
        return;
    }
    responder->fail(FailureKind::Refused,
                    QStringLiteral("there is no global function '%1'").arg(call.method));
    responder->finish();
}

}  // namespace Tamrix::Agent
