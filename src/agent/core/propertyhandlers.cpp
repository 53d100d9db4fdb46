#include "agent/core/propertyhandlers.h"

#include <QByteArray>
#include <QDataStream>
#include <QMetaProperty>

#include "agent/core/classinfo.h"
#include "agent/core/globalfunctions.h"
#include "agent/core/methodcall.h"
#include "agent/core/qtversion.h"
#include "agent/core/session.h"
#include "agent/core/toolkit.h"
#include "agent/core/valueconversion.h"
#include "agent/core/vocabulary.h"
#include "wire/value.h"

namespace Tamrix::Agent {

namespace {

void failUnknown(const Element& element, const QString& name, const ResponderPtr& responder) {
    responder->fail(
        FailureKind::Refused,
        QStringLiteral("%1 has no property '%2'").arg(Session::self()->describe(element), name));
}

/// Whether a value is of no kind that travels, and would arrive as an invalid one. A null pointer
/// and what has no value are invalid on purpose.
bool isOfNoKind(const QVariant& value) {
    const int type = value.userType();
    if (!value.isValid() || type == QMetaType::Void || type == QMetaType::Nullptr ||
        value.canConvert<QString>())
        return false;
    const auto bytesOf = [](const QVariant& each) {
        QByteArray bytes;
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        Wire::writeValue(stream, each);
        return bytes;
    };
    return bytesOf(value) == bytesOf(QVariant());
}

void readProperty(const Wire::PropertyAccess& request, const ResponderPtr& responder) {
    const Element element = Session::self()->findOrFail(request.handle, responder);
    if (element.isNull())
        return;
    bool isKnown = false;
    Wire::Value value;
    value.value = propertyValue(element, request.name, &isKnown);
    if (!isKnown)
        failUnknown(element, request.name, responder);
    else if (isOfNoKind(value.value))
        responder->fail(FailureKind::Refused,
                        QStringLiteral("the property '%1' of %2 is of type %3, whose values can't "
                                       "be passed on")
                            .arg(request.name, Session::self()->describe(element),
                                 QString::fromLatin1(value.value.typeName())));
    else
        responder->replyBody(value);
}

void readProperties(const Wire::ObjectHandle& request, const ResponderPtr& responder) {
    const Element element = Session::self()->findOrFail(request.handle, responder);
    if (element.isNull())
        return;
    QVariantMap map;
    for (const QString& name : allPropertyNames(element)) {
        bool isKnown = false;
        const QVariant value = propertyValue(element, name, &isKnown);
        if (isKnown)
            map.insert(name, value);
    }
    Wire::Value value;
    value.value = map;
    responder->replyBody(value);
}

/// The property of the object's class behind a name: other words of testers stand for some.
QMetaProperty classProperty(const QObject* object, const QString& name) {
    const QMetaObject* const metaObject = object->metaObject();
    const QString own = name == QLatin1String("name") ? QStringLiteral("objectName") : name;
    const int index = metaObject->indexOfProperty(own.toUtf8().constData());
    if (index >= 0)
        return metaObject->property(index);
    // The text of a text editor, the title of a box: what a person would set.
    if (name == QLatin1String("text")) {
        for (const char* each : {"plainText", "title", "windowTitle"}) {
            const QMetaProperty user = metaObject->userProperty();
            if (user.isValid() && user.userType() != QMetaType::Bool)
                return user;
            const int other = metaObject->indexOfProperty(each);
            if (other >= 0)
                return metaObject->property(other);
        }
    }
    return {};
}

void writeProperty(const Wire::PropertyAccess& request, const ResponderPtr& responder) {
    const Element element = Session::self()->findOrFail(request.handle, responder);
    if (element.isNull())
        return;
    bool isKnown = false;
    propertyValue(element, request.name, &isKnown);
    const QMetaProperty property =
        element.isItem() ? QMetaProperty() : classProperty(element.object, request.name);
    const QByteArray name = request.name.toUtf8();
    if (!property.isValid() && !element.isItem() &&
        element.object->dynamicPropertyNames().contains(name)) {
        element.object->setProperty(name.constData(), request.value);
        responder->reply();
        return;
    }
    if (!isKnown && !property.isValid()) {
        failUnknown(element, request.name, responder);
        return;
    }
    const QString what = QStringLiteral("the property '%1' of %2")
                             .arg(request.name, Session::self()->describe(element));
    if (!property.isValid() || !property.isWritable()) {
        responder->fail(FailureKind::Refused, QStringLiteral("%1 can't be written").arg(what));
        return;
    }
    QVariant converted;
    const Fit fit = convertValue(request.value, property.userType(), property.typeName(),
                                 element.object->metaObject(), &converted);
    if (fit == Fit::None) {
        responder->fail(
            FailureKind::BadArgument,
            QStringLiteral("%1 is of type %2 and can't be %3")
                .arg(what, QString::fromUtf8(property.typeName()), describeValue(request.value)));
        return;
    }
    if (QByteArray(property.typeName()).endsWith('*')) {
        void* pointer = converted.value<void*>();
        converted = variantOfType(property.userType(), &pointer);
    }
    if (property.write(element.object, converted))
        responder->reply();
    else
        responder->fail(FailureKind::Failed,
                        QStringLiteral("%1 refused %2").arg(what, describeValue(request.value)));
}

void describe(const Wire::Text& request, const ResponderPtr& responder) {
    responder->replyBody(describeClass(request.text));
}

void invoke(const Wire::Invoke& request, const ResponderPtr& responder) {
    if (request.handle == 0) {
        callGlobalFunction(request, responder);
        return;
    }
    const Element element = Session::self()->findOrFail(request.handle, responder);
    if (!element.isNull())
        callMethod(element, request, responder);
}

void tellEnvironment(const Wire::Text& request, const ResponderPtr& responder) {
    Wire::Text value;
    const QByteArray name = request.text.toLocal8Bit();
    if (qEnvironmentVariableIsSet(name.constData()))
        value.text = QString::fromLocal8Bit(qgetenv(name.constData()));
    responder->replyBody(value);
}

}  // namespace

void registerPropertyHandlers(Session* session) {
    session->setBodyHandler<Wire::PropertyAccess>(Wire::MessageType::ReadProperty, readProperty);
    session->setBodyHandler<Wire::ObjectHandle>(Wire::MessageType::ReadProperties, readProperties);
    session->setBodyHandler<Wire::PropertyAccess>(Wire::MessageType::WriteProperty, writeProperty);
    session->setBodyHandler<Wire::Text>(Wire::MessageType::DescribeClass, describe);
    session->setBodyHandler<Wire::Invoke>(Wire::MessageType::Invoke, invoke);
    session->setBodyHandler<Wire::Text>(Wire::MessageType::EnvironmentVariable, tellEnvironment);
}

}  // namespace Tamrix::Agent
