#pragma once

#include <QByteArray>
#include <QHash>
#include <QImage>
#include <QList>
#include <QMap>
#include <QObject>
#include <QStringList>

#include "base/export.h"
#include "shared/uiabstraction/elementgeometry.h"
#include "shared/uiabstraction/standardtype.h"
#include "shared/uiabstraction/uievent.h"

namespace Tamrix::UIAbstraction {

class ElementReader;

/// An element of an application's user interface in terms that hold for every toolkit: what it is,
/// what it shows, where it is, and how often each event touched it. Elements form a tree of their
/// own, apart from QObject's: an element owns its children, a top-level element is its maker's. An
/// element may stand in the list of one parent only.
///
/// A tree belongs to one thread. Signals carry values and may go through queued connections.
class TAMRIX_EXPORT UIElement : public QObject {
    Q_OBJECT

public:
    /// An element without parent, with a fresh unique identifier. What isn't given here is null,
    /// empty or false.
    explicit UIElement(const QString& concreteType = unknownConcreteType(),
                       const StandardType& standardType = StandardType(),
                       const QString& text = QString());
    /// Takes itself out of its parent's list, then deletes its children.
    ~UIElement() override;

    /// "unknown", the concrete type of an element of which no class name is known.
    static QString unknownConcreteType();

    QString id() const { return m_id; }
    /// The toolkit's class name, its shorter form, its namespace and its base classes.
    QString concreteType() const { return m_concreteType; }
    QString simplifiedType() const { return m_simplifiedType; }
    QString nameSpace() const { return m_nameSpace; }
    QStringList superTypes() const { return m_superTypes; }
    StandardType standardType() const { return m_standardType; }
    /// The element itself doesn't count in the tree: its children stand for it.
    bool isTransparentNode() const { return m_transparentNode; }
    /// What is below the element doesn't count.
    bool isSubgraphTransparent() const { return m_subgraphTransparent; }
    /// The element is a top-level window.
    bool isWindowNode() const { return m_windowNode; }
    QString text() const { return m_text; }
    ElementGeometry geometry() const { return m_geometry; }
    QImage image() const { return m_image; }
    bool isImageSet() const { return !m_image.isNull(); }
    QString realName() const { return m_realName; }
    QString symbolicName() const { return m_symbolicName; }
    /// Properties as the toolkit has them, and those that tell the element from others.
    QHash<QString, QString> concreteProperties() const { return m_concreteProperties; }
    QHash<QString, QString> identifyingProperties() const { return m_identifyingProperties; }

    void setNameSpace(const QString& nameSpace) { m_nameSpace = nameSpace; }
    void setSimplifiedType(const QString& type) { m_simplifiedType = type; }
    void setSuperTypes(const QStringList& types) { m_superTypes = types; }
    void setRealName(const QString& name) { m_realName = name; }
    void setSymbolicName(const QString& name) { m_symbolicName = name; }
    void setConcreteProperty(const QString& name, const QString& value);
    void setIdentifyingProperty(const QString& name, const QString& value);

    // Each stores the value and emits its signal, also when nothing changed.
    void setText(const QString& text);
    void setStandardType(const StandardType& type);
    void setGeometry(const ElementGeometry& geometry);
    void setImage(const QImage& image);
    void setWindowNode(bool on);
    void setTransparentNode(bool on);
    void setSubgraphTransparent(bool on);

    // --- Tree ---

    /// Null without a parent.
    QString parentId() const { return m_parent ? m_parent->id() : QString(); }
    UIElement* parentElement() const { return m_parent; }
    bool hasParent() const { return m_parent != nullptr; }
    bool isTopLevelElement() const { return m_parent == nullptr; }
    QList<UIElement*> children() const { return m_children; }

    /// Takes the child over and appends it; a child that is in the list already is left alone. A
    /// child that has a parent keeps that one as its parent.
    void addChild(UIElement* child);
    /// Sets the parent if there is none, and leaves the parent's list alone. The parent must
    /// outlive the element.
    void setParent(UIElement* parent);
    /// Takes the first child out, which is then the caller's; null without children.
    UIElement* takeFirstChild();
    /// The first direct child with the text and, if a type is given, that standard type; else null.
    UIElement* childByText(const QString& text, const StandardType& type = StandardType()) const;
    /// The first of the parent's children, this one included, with the concrete type; else null.
    UIElement* siblingElement(const QString& concreteType) const;
    /// Whether both are of the same types, flags, text and geometry and, with `recursive`, have
    /// children of which the same is true, pair by pair. Identifiers, names, images, properties and
    /// usage play no part.
    bool isSimilarTo(const UIElement* other, bool recursive) const;

    // --- Usage: how often each registered event occurred ---

    QMap<UIEvent, int> usageMap() const { return m_usage; }
    /// Begins to count an event at 0; an event that is counted already goes on.
    void registerEvent(const UIEvent& event);
    bool isEventRegistered(const UIEvent& event) const { return m_usage.contains(event); }
    /// -1 for an event that isn't registered.
    int usage(const UIEvent& event) const { return m_usage.value(event, -1); }
    /// Stores the count, registering the event if need be, with a Qt warning. A new event or a
    /// higher count emits usageIncreased().
    void setUsage(const UIEvent& event, int count);
    /// Counts one more, silently registering the event if need be.
    void addUsage(const UIEvent& event);
    /// addUsage() on each direct child.
    void addUsageForChildElements(const UIEvent& event);
    /// addUsage() on this element and all below it whose own rectangles contain the point. Children
    /// may lie outside of their parent, so all of them are looked at.
    void addUsageForChildAt(const UIEvent& event, const QPoint& point);

    // --- Stream form ---

    /// Writes the element with all below it, in this order: id, standardType, concreteType,
    /// simplifiedType and nameSpace as strings; superTypes as a count and strings; transparentNode,
    /// subgraphTransparent and windowNode as a byte each; text as a string; geometry as a rectangle
    /// and a byte; the image; realName and symbolicName as strings; concreteProperties and
    /// identifyingProperties each as a count and pairs of strings; usage as a count and pairs of
    /// string and number; children as a count and each child in this same form. Counts and numbers
    /// are of 32 bits; all is encoded as QDataStream does it in its version 12.
    void serialize(QDataStream* stream) const;
    /// Reads what serialize() wrote; the result is the caller's, never null. The stream may be
    /// anyone's: where it ends or makes no sense the remaining fields keep their defaults, no
    /// further element is read, and the stream's status tells so. Limits on depth, number and sizes
    /// stand in ElementReader.
    static UIElement* deserialize(QDataStream* stream);

    /// The elements as bytes: a count, then each in its stream form.
    static QByteArray elementsToByteArray(const QList<const UIElement*>& elements);
    /// Reads what elementsToByteArray() wrote. The elements are the caller's. Bytes may be
    /// anyone's, see deserialize(): those elements that could be read are returned, the last of
    /// them perhaps in part.
    static QList<UIElement*> elementsFromByteArray(const QByteArray& bytes);

Q_SIGNALS:
    void childAdded(const Tamrix::UIAbstraction::UIElement* element,
                    const Tamrix::UIAbstraction::UIElement* child);
    void eventRegistered(const Tamrix::UIAbstraction::UIElement* element,
                         const Tamrix::UIAbstraction::UIEvent& event);
    void geometryChanged(const Tamrix::UIAbstraction::UIElement* element,
                         const Tamrix::UIAbstraction::ElementGeometry& geometry);
    void imageChanged(const Tamrix::UIAbstraction::UIElement* element, const QImage& image);
    void standardTypeChanged(const Tamrix::UIAbstraction::UIElement* element,
                             const Tamrix::UIAbstraction::StandardType& standardType);
    void subgraphTransparentChanged(const Tamrix::UIAbstraction::UIElement* element,
                                    bool isSubgraphTransparent);
    void textChanged(const Tamrix::UIAbstraction::UIElement* element, const QString& text);
    void transparentNodeChanged(const Tamrix::UIAbstraction::UIElement* element,
                                bool isTransparentNode);
    void usageIncreased(const Tamrix::UIAbstraction::UIElement* element,
                        const Tamrix::UIAbstraction::UIEvent& event, int usage);
    void windowNodeChanged(const Tamrix::UIAbstraction::UIElement* element, bool isWindowNode);

private:
    void readFields(ElementReader& reader, int depth);

    QString m_id;
    StandardType m_standardType;
    QString m_concreteType;
    QString m_simplifiedType;
    QString m_nameSpace;
    QStringList m_superTypes;
    bool m_transparentNode = false;
    bool m_subgraphTransparent = false;
    bool m_windowNode = false;
    QString m_text;
    ElementGeometry m_geometry;
    QImage m_image;
    QString m_realName;
    QString m_symbolicName;
    QHash<QString, QString> m_concreteProperties;
    QHash<QString, QString> m_identifyingProperties;
    QMap<UIEvent, int> m_usage;
    QList<UIElement*> m_children;
    UIElement* m_parent = nullptr;
};

}  // namespace Tamrix::UIAbstraction

Q_DECLARE_METATYPE(const Tamrix::UIAbstraction::UIElement*)
