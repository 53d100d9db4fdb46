#include "agent/core/snapshot.h"

#include <QDataStream>
#include <QImage>

#include "agent/core/nameindex.h"
#include "agent/core/session.h"
#include "agent/core/toolkit.h"
#include "agent/core/vocabulary.h"
#include "agent/core/walk.h"

namespace Tamrix::Agent {

namespace {

using Properties = QHash<QString, QString>;

/// Writes elements straight into the stream, in the order that UIElement::serialize() documents:
/// making the elements first takes several times as long.
class SnapshotWriter {
public:
    SnapshotWriter(QDataStream* stream, bool withImages, bool withAllProperties)
        : m_stream(*stream), m_withImages(withImages), m_withAllProperties(withAllProperties) {}

    void writeAll(const QVector<Element>& elements) {
        m_stream << elements.size();
        for (const Element& element : elements)
            write(element);
    }

private:
    void write(const Element& element) {
        const Toolkit* const toolkit = element.toolkit;
        const QString type = toolkit->typeName(element);
        const QString text = toolkit->text(element);
        const bool isWindow = toolkit->parent(element).isNull();
        m_stream << QString::number(++m_count);
        m_stream << QString();                       // standard type: unknown
        m_stream << type << QString() << QString();  // simplified type, namespace
        m_stream << superTypes(element);
        m_stream << toolkit->isInternal(element) << false << isWindow;
        m_stream << text;
        m_stream << toolkit->globalBounds(element) << false;
        m_stream << (m_withImages && toolkit->isVisible(element) ? toolkit->grab(element)
                                                                 : QImage());
        m_stream << m_names.realName(element) << QString();  // no symbolic name
        m_stream << properties(element);
        m_stream << identifying(element, type, text);
        m_stream << 0;  // usage
        QVector<Element> children;
        appendShownChildren(element, false, &children);
        writeAll(children);
    }

    QStringList superTypes(const Element& element) {
        if (element.isItem())
            return element.toolkit->superTypes(element);
        auto known = m_superTypes.find(element.object->metaObject());
        if (known == m_superTypes.end())
            known = m_superTypes.insert(element.object->metaObject(),
                                        element.toolkit->superTypes(element));
        return *known;
    }

    Properties properties(const Element& element) const {
        Properties map;
        if (!m_withAllProperties) {
            map.insert(QStringLiteral("visible"), valueText(element.toolkit->isVisible(element)));
            map.insert(QStringLiteral("enabled"), valueText(element.toolkit->isEnabled(element)));
            return map;
        }
        for (const QString& name : allPropertyNames(element)) {
            bool isKnown = false;
            const QVariant value = propertyValue(element, name, &isKnown);
            if (isKnown)
                map.insert(name, valueText(value));
        }
        return map;
    }

    static Properties identifying(const Element& element, const QString& type,
                                  const QString& text) {
        Properties map;
        map.insert(QStringLiteral("type"), type);
        const QString name = element.toolkit->name(element);
        if (!name.isEmpty())
            map.insert(QStringLiteral("name"), name);
        if (!text.isEmpty() && element.toolkit->isTextLasting(element))
            map.insert(QStringLiteral("text"), text);
        return map;
    }

    QDataStream& m_stream;
    bool m_withImages;
    bool m_withAllProperties;
    int m_count = 0;
    NameIndex m_names;
    QHash<const QMetaObject*, QStringList> m_superTypes;
};

}  // namespace

QByteArray takeSnapshot(const Element& element, bool withImages) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_4_6);  // version 12
    QVector<Element> elements;
    if (!element.isNull()) {
        elements.append(element);
    } else {
        for (const Element& each : Session::self()->topLevels()) {
            if (!each.toolkit->isPlain(each) && !each.toolkit->isInternal(each))
                elements.append(each);
        }
    }
    SnapshotWriter(&stream, withImages, !element.isNull()).writeAll(elements);
    return bytes;
}

}  // namespace Tamrix::Agent
