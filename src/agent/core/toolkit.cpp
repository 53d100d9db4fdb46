#include "agent/core/toolkit.h"

#include <QMetaProperty>

#include "agent/core/classnames.h"
#include "agent/core/session.h"

namespace Tamrix::Agent {

Toolkit::~Toolkit() = default;

Element Toolkit::element(QObject* object) const {
    Element element;
    if (object) {
        element.toolkit = this;
        element.object = object;
    }
    return element;
}

Element Toolkit::buddy(const Element& /*element*/) const {
    return {};
}

Element Toolkit::labelledField(const Element& /*element*/) const {
    return {};
}

bool Toolkit::isAlive(const Element& /*element*/) const {
    return true;
}

QString Toolkit::typeName(const Element& element) const {
    return typeNameOf(element.object->metaObject());
}

QStringList Toolkit::superTypes(const Element& element) const {
    return superTypesOf(element.object->metaObject());
}

QString Toolkit::name(const Element& element) const {
    return element.isItem() ? QString() : element.object->objectName();
}

Toolkit::Hint Toolkit::hint(const Element& /*element*/) const {
    return {};
}

QString Toolkit::hiddenReason(const Element& /*element*/) const {
    return {};
}

bool Toolkit::showsOfHidden(const QString& /*typeName*/) const {
    return false;
}

bool Toolkit::isTextLasting(const Element& /*element*/) const {
    return true;
}

bool Toolkit::isInternal(const Element& /*element*/) const {
    return false;
}

bool Toolkit::isPlain(const Element& /*element*/) const {
    return false;
}

QVariant Toolkit::property(const Element& element, const QString& name, bool* isKnown) const {
    *isKnown = false;
    if (element.isItem())
        return {};
    const QByteArray bytes = name.toUtf8();
    *isKnown = element.object->metaObject()->indexOfProperty(bytes.constData()) >= 0 ||
               element.object->dynamicPropertyNames().contains(bytes);
    return *isKnown ? element.object->property(bytes.constData()) : QVariant();
}

QStringList Toolkit::propertyNames(const Element& element) const {
    QStringList names;
    if (element.isItem())
        return names;
    const QMetaObject* const metaObject = element.object->metaObject();
    for (int index = 0; index < metaObject->propertyCount(); ++index) {
        const QString name = QString::fromUtf8(metaObject->property(index).name());
        if (metaObject->property(index).isReadable() && !names.contains(name))
            names.append(name);
    }
    for (const QByteArray& name : element.object->dynamicPropertyNames())
        names.append(QString::fromUtf8(name));
    return names;
}

bool Toolkit::receivesThrough(const Element& element, const Element& hit,
                              Qt::MouseButton /*button*/) const {
    // The element or something in it.
    for (Element each = hit; !each.isNull(); each = each.toolkit->parent(each)) {
        if (each == element)
            return true;
    }
    return false;
}

Element Toolkit::openListOver(const Element& /*element*/) const {
    return {};
}

bool Toolkit::scrollIntoView(const Element& /*element*/) const {
    return false;
}

bool Toolkit::isItemType(const QString& /*typeName*/) const {
    return false;
}

Element Toolkit::item(const Element& view, const ItemPath& /*path*/, int /*row*/, int /*column*/,
                      QString* reason) const {
    *reason = QStringLiteral("%1 has no items").arg(Session::self()->describe(view));
    return {};
}

}  // namespace Tamrix::Agent
