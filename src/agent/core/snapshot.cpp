#include "agent/core/snapshot.h"

#include <QDataStream>
#include <QIODevice>
#include <QImage>
#include <QPair>

#include "agent/core/nameindex.h"
#include "agent/core/session.h"
#include "agent/core/toolkit.h"
#include "agent/core/vocabulary.h"
#include "agent/core/walk.h"

namespace Tamrix::Agent {

namespace {

using Pair = QPair<QString, QString>;

/// What a snapshot tells of each element beside its place in the tree.
struct SnapshotContent {
    /// Of the outermost elements, in which the others are seen.
    enum class Pictures { Left, Taken };
    enum class Properties { State, All };
    Pictures pictures = Pictures::Left;
    Properties properties = Properties::State;
};

/// Writes elements straight into the stream, in the order that UIElement::serialize() documents:
/// making the elements first takes several times as long.
class SnapshotWriter {
public:
    SnapshotWriter(QDataStream* stream, SnapshotContent content)
        : m_stream(*stream), m_content(content) {}

    void writeAll(const QVector<Element>& elements) { writeLevel(elements, m_content.pictures); }

private:
    using Pictures = SnapshotContent::Pictures;

    void writeLevel(const QVector<Element>& elements, Pictures pictures) {
        m_stream << static_cast<qint32>(elements.size());
        for (const Element& element : elements)
            write(element, pictures);
    }

    void write(const Element& element, Pictures pictures) {
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
        const bool hasPicture = pictures == Pictures::Taken && toolkit->isVisible(element);
        m_stream << (hasPicture ? toolkit->grab(element) : QImage());
        m_stream << m_names.realName(element) << QString();  // no symbolic name
        writeProperties(element);
        writeIdentifying(element, type, text);
        m_stream << 0;  // usage
        QVector<Element> children;
        appendShownChildren(element, false, &children);
        writeLevel(children, Pictures::Left);
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

    /// Pairs of texts in the form of a hash.
    void writePairs(const QVector<Pair>& pairs) {
        m_stream << static_cast<quint32>(pairs.size());
        for (const Pair& pair : pairs)
            m_stream << pair.first << pair.second;
    }

    void writeProperties(const Element& element) {
        QVector<Pair> pairs;
        if (m_content.properties == SnapshotContent::Properties::State) {
            pairs.append({m_visible, boolText(element.toolkit->isVisible(element))});
            pairs.append({m_enabled, boolText(element.toolkit->isEnabled(element))});
            writePairs(pairs);
            return;
        }
        for (const QString& name : allPropertyNames(element)) {
            bool isKnown = false;
            const QVariant value = propertyValue(element, name, &isKnown);
            if (isKnown)
                pairs.append({name, valueText(value)});
        }
        writePairs(pairs);
    }

    void writeIdentifying(const Element& element, const QString& type, const QString& text) {
        QVector<Pair> pairs{{m_type, type}};
        const QString name = element.toolkit->name(element);
        if (!name.isEmpty())
            pairs.append({m_name, name});
        if (!text.isEmpty() && element.toolkit->isTextLasting(element))
            pairs.append({m_text, text});
        writePairs(pairs);
    }

    const QString& boolText(bool value) const { return value ? m_true : m_false; }

    QDataStream& m_stream;
    SnapshotContent m_content;
    const QString m_type = QStringLiteral("type");
    const QString m_name = QStringLiteral("name");
    const QString m_text = QStringLiteral("text");
    const QString m_visible = QStringLiteral("visible");
    const QString m_enabled = QStringLiteral("enabled");
    const QString m_true = QStringLiteral("true");
    const QString m_false = QStringLiteral("false");
    int m_count = 0;
    NameIndex m_names;
    QHash<const QMetaObject*, QStringList> m_superTypes;
};

}  // namespace

QByteArray takeSnapshot(const Element& element, bool withImages) {
    QByteArray bytes;
    // Growing by small steps would move it many times.
    constexpr int usualSize = 1024 * 1024;
    bytes.reserve(usualSize);
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
    SnapshotContent content;
    if (withImages)
        content.pictures = SnapshotContent::Pictures::Taken;
    if (!element.isNull())
        content.properties = SnapshotContent::Properties::All;
    SnapshotWriter(&stream, content).writeAll(elements);
    return bytes;
}

}  // namespace Tamrix::Agent
