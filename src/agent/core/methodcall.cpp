#include "agent/core/methodcall.h"

#include <QMetaMethod>
#include <QTimer>
#include <array>

#include "agent/core/classinfo.h"
#include "agent/core/qtversion.h"
#include "agent/core/toolkit.h"
#include "agent/core/valueconversion.h"
#include "agent/core/vocabulary.h"

namespace Tamrix::Agent {

namespace {

/// As many as QMetaMethod::invoke() takes.
constexpr int mostArguments = 10;

/// How long a method may sit in an event loop of its own before it is answered, in milliseconds.
constexpr int patience = 250;

/// A method with the arguments converted for it.
struct Choice {
    QMetaMethod method;
    QVariantList arguments;
    /// Worst and summed fit of the arguments; less is better.
    int unfitness = -1;

    bool isFound() const { return unfitness >= 0; }
};

Choice prepare(QObject* object, const QMetaMethod& method, const QVariantList& arguments,
               QString* error) {
    Choice choice;
    choice.method = method;
    const QList<QByteArray> types = method.parameterTypes();
    int unfitness = 0;
    for (int index = 0; index < arguments.size(); ++index) {
        QVariant converted;
        const Fit fit = convertValue(arguments[index], parameterType(object, method, index),
                                     types[index], object->metaObject(), &converted);
        if (fit == Fit::None) {
            *error = QStringLiteral("argument %1 of %2 can't be %3")
                         .arg(QString::number(index + 1), methodText(method),
                              describeValue(arguments[index]));
            return choice;
        }
        unfitness += static_cast<int>(fit);
        choice.arguments.append(converted);
    }
    choice.unfitness = unfitness;
    return choice;
}

/// The method to call.
Outcome<Choice> choose(const Element& element, const Wire::Invoke& call) {
    const QMetaObject* const metaObject = element.object->metaObject();
    const QByteArray name = call.method.toUtf8();
    Choice best;
    QString error;
    QStringList others;
    // Methods of derived classes first.
    for (int index = metaObject->methodCount() - 1; index >= 0; --index) {
        const QMetaMethod method = metaObject->method(index);
        if (method.name() != name || !isCallable(method))
            continue;
        if (method.parameterCount() != call.arguments.size()) {
            others.prepend(methodText(method));
            continue;
        }
        const Choice choice = prepare(element.object, method, call.arguments, &error);
        if (choice.isFound() && (!best.isFound() || choice.unfitness < best.unfitness))
            best = choice;
    }
    if (best.isFound())
        return best;
    if (!error.isEmpty())
        return fail(FailureKind::BadArgument, error);
    if (others.isEmpty())
        return fail(FailureKind::Refused,
                    QStringLiteral("%1 has no method '%2'")
                        .arg(Session::self()->describe(element), call.method));
    return fail(FailureKind::BadArgument,
                QStringLiteral("there is no %1 with %2 arguments, but %3")
                    .arg(call.method, QString::number(call.arguments.size()),
                         others.join(QLatin1String(", "))));
}

/// Calls; the result is invalid for a method without one, or with one that can't be handed over.
QVariant invoke(QObject* object, Choice* choice) {
    const QList<QByteArray> types = choice->method.parameterTypes();
    std::array<QGenericArgument, mostArguments> arguments;
    for (int index = 0; index < choice->arguments.size(); ++index) {
        QVariant& argument = choice->arguments[index];
        const bool isVariant = types[index] == "QVariant";
        arguments[static_cast<size_t>(index)] = QGenericArgument(
            types[index].constData(),
            isVariant ? static_cast<const void*>(&argument) : argument.constData());
    }
    const int type = choice->method.returnType();
    QVariant result;
    QGenericReturnArgument returned;
    if (type == QMetaType::QVariant) {
        returned = QGenericReturnArgument("QVariant", &result);
    } else if (type != QMetaType::Void && type != QMetaType::UnknownType) {
        result = variantOfType(type, nullptr);
        returned = QGenericReturnArgument(choice->method.typeName(), result.data());
    }
    choice->method.invoke(object, Qt::DirectConnection, returned, arguments[0], arguments[1],
                          arguments[2], arguments[3], arguments[4], arguments[5], arguments[6],
                          arguments[7], arguments[8], arguments[9]);
    return result;
}

}  // namespace

void callMethod(const Element& element, const Wire::Invoke& call, const ResponderPtr& responder) {
    if (element.isItem()) {
        responder->fail(FailureKind::Refused, QStringLiteral("%1 is an item and has no methods")
                                                  .arg(Session::self()->describe(element)));
        return;
    }
    if (call.arguments.size() > mostArguments) {
        responder->fail(FailureKind::BadArgument,
                        QStringLiteral("%1 arguments are too many").arg(call.arguments.size()));
        return;
    }
    Outcome<Choice> choice = choose(element, call);
    if (!choice) {
        responder->fail(choice.error().kind, choice.error().text);
        return;
    }
    QTimer watch;
    watch.setSingleShot(true);
    QObject::connect(&watch, &QTimer::timeout, [responder] {
        responder->replyBody(Wire::Value());
        responder->finish();
    });
    watch.start(patience);
    Wire::Value value;
    value.value = toWireValue(invoke(element.object, &*choice));
    responder->replyBody(value);
}

}  // namespace Tamrix::Agent
