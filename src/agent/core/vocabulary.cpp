#include "agent/core/vocabulary.h"

#include <QRect>

#include "agent/core/session.h"
#include "agent/core/toolkit.h"
#include "wire/value.h"

namespace Tamrix::Agent {

namespace {

/// What is read without asking the object's class.
enum class Word { Type, Name, Text, Visible, Enabled, Window, Container, Buddy };

struct WordEntry {
    const char* name;
    Word word;
    /// Whether it is another spelling of an entry beside it.
    bool isAlias;
    const char* typeName;
};

constexpr WordEntry words[] = {{"type", Word::Type, false, "QString"},
                               {"name", Word::Name, true, "QString"},
                               {"objectName", Word::Name, false, "QString"},
                               {"text", Word::Text, false, "QString"},
                               {"visible", Word::Visible, false, "bool"},
                               {"enabled", Word::Enabled, false, "bool"},
                               {"window", Word::Window, false, "QObject*"},
                               {"parent", Word::Container, false, "QObject*"},
                               {"container", Word::Container, true, "QObject*"},
                               {"buddy", Word::Buddy, false, "QObject*"}};

const WordEntry* findWord(const QString& name) {
    for (const WordEntry& entry : words) {
        if (name == QLatin1String(entry.name))
            return &entry;
    }
    return nullptr;
}

constexpr const char* placeNames[] = {"x", "y", "width", "height"};

QVariant placeValue(const Element& element, const QString& name, bool* isKnown) {
    const QRect bounds = element.toolkit->globalBounds(element);
    *isKnown = bounds.isValid();
    if (!*isKnown)
        return {};
    if (name == QLatin1String("width"))
        return bounds.width();
    if (name == QLatin1String("height"))
        return bounds.height();
    const Element container = containerOf(element);
    const QPoint origin =
        container.isNull() ? QPoint() : container.toolkit->globalBounds(container).topLeft();
    return name == QLatin1String("x") ? bounds.x() - origin.x() : bounds.y() - origin.y();
}

bool isPlaceName(const QString& name) {
    for (const char* each : placeNames) {
        if (name == QLatin1String(each))
            return true;
    }
    return false;
}

}  // namespace

Element containerOf(const Element& element) {
    Element parent = element.toolkit->parent(element);
    while (!parent.isNull() && parent.toolkit->isInternal(parent))
        parent = parent.toolkit->parent(parent);
    return parent;
}

Element relatedElement(const Element& element, const QString& property) {
    const WordEntry* const entry = findWord(property);
    if (!entry)
        return {};
    switch (entry->word) {
        case Word::Window:
            return element.toolkit->window(element);
        case Word::Container:
            return containerOf(element);
        case Word::Buddy:
            return element.toolkit->related(element, Toolkit::Relation::Label);
        default:
            return {};
    }
}

QVariant propertyValue(const Element& element, const QString& name, bool* isKnown) {
    *isKnown = true;
    const Toolkit* const toolkit = element.toolkit;
    if (const WordEntry* const entry = findWord(name)) {
        switch (entry->word) {
            case Word::Type:
                return toolkit->typeName(element);
            case Word::Name:
                return toolkit->name(element);
            case Word::Text:
                return toolkit->text(element);
            case Word::Visible:
                return toolkit->isVisible(element);
            case Word::Enabled:
                return toolkit->isEnabled(element);
            case Word::Window:
            case Word::Container:
            case Word::Buddy: {
                const Element related = relatedElement(element, name);
                return related.isNull() ? QVariant()
                                        : QVariant::fromValue(Session::self()->info(related));
            }
        }
    }
    const QVariant value = toolkit->property(element, name, isKnown);
    if (*isKnown)
        return toWireValue(value);
    return isPlaceName(name) ? placeValue(element, name, isKnown) : QVariant();
}

QList<VocabularyWord> vocabulary() {
    QList<VocabularyWord> list;
    for (const WordEntry& entry : words) {
        if (!entry.isAlias)
            list.append({QString::fromLatin1(entry.name), QString::fromLatin1(entry.typeName)});
    }
    for (const char* each : placeNames)
        list.append({QString::fromLatin1(each), QStringLiteral("int")});
    return list;
}

QStringList allPropertyNames(const Element& element) {
    QStringList names;
    for (const VocabularyWord& word : vocabulary())
        names.append(word.name);
    for (const QString& name : element.toolkit->propertyNames(element)) {
        if (!names.contains(name))
            names.append(name);
    }
    return names;
}

QVariant toWireValue(const QVariant& value) {
    const int type = value.userType();
    if (QMetaType(type).flags() & QMetaType::PointerToQObject) {
        QObject* const object = value.value<QObject*>();
        return object ? QVariant::fromValue(Session::self()->info(Session::self()->element(object)))
                      : QVariant();
    }
    if (type == QMetaType::QVariantList || type == qMetaTypeId<QObjectList>()) {
        QVariantList list;
        for (const QVariant& each : value.toList())
            list.append(toWireValue(each));
        return list;
    }
    if (QMetaType(type).flags() & QMetaType::IsEnumeration)
        return value.toInt();
    return value;
}

QString valueText(const QVariant& value) {
    if (value.userType() == qMetaTypeId<Wire::ObjectInfo>())
        return value.value<Wire::ObjectInfo>().objectName;
    if (value.userType() == QMetaType::QStringList)
        return value.toStringList().join(QLatin1String(", "));
    const QString numbers = Wire::geometryText(value);
    return numbers.isNull() ? value.toString() : numbers;
}

QString normalizedWanted(const QVariant& value, const QString& wanted) {
    if (value.userType() != QMetaType::Bool)
        return wanted;
    if (wanted == QLatin1String("1") || wanted.compare("true", Qt::CaseInsensitive) == 0)
        return QStringLiteral("true");
    if (wanted == QLatin1String("0") || wanted.compare("false", Qt::CaseInsensitive) == 0)
        return QStringLiteral("false");
    return wanted;
}

}  // namespace Tamrix::Agent
