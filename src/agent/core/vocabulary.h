#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include "agent/core/element.h"

namespace Tamrix::Agent {

// The properties that testers know, the same for all toolkits:
//
//     type, name (objectName), text, visible, enabled   as the toolkit tells them
//     x, y, width, height   of the object's class, else relative to the parent's place
//     window, parent (container), buddy                 other objects
//
// and behind these the toolkit's own (checked, currentText, row, column...) and those of the
// object's class.

/// The value of a property, as it travels: objects are Wire::ObjectInfo. `*isKnown` tells whether
/// the element has one of that name.
QVariant propertyValue(const Element& element, const QString& name, bool* isKnown);
/// The names of all properties, those of the vocabulary first.
QStringList allPropertyNames(const Element& element);

/// A property that every element has, and the name of its type.
struct VocabularyWord {
    QString name;
    QString typeName;
};

/// The properties of the vocabulary, without other spellings of the same.
QList<VocabularyWord> vocabulary();

/// The nearest parent that isn't of the toolkit's inner workings; null at the top.
Element containerOf(const Element& element);
/// The object that a property names: window, parent, container, buddy. Null for none and for
/// other properties.
Element relatedElement(const Element& element, const QString& property);

/// A value as it travels: pointers to QObjects become Wire::ObjectInfo, also in lists.
QVariant toWireValue(const QVariant& value);
/// A value as a text to compare with and to show: "true", "12", "1.5"; the numbers of a rectangle;
/// an object's name.
QString valueText(const QVariant& value);
/// The wanted text in the form in which valueText() writes the value: for a bool, "1" and "True"
/// are "true".
QString normalizedWanted(const QVariant& value, const QString& wanted);

}  // namespace Tamrix::Agent
