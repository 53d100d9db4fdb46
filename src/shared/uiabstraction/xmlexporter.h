#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include "base/export.h"

QT_BEGIN_NAMESPACE
class QIODevice;
class QXmlStreamWriter;
QT_END_NAMESPACE

namespace Tamrix::UIAbstraction {

class UIElement;

/// Writes elements with all below them as an XML document, with the counts of their events: the
/// file that a coverage viewer reads. What XML can't hold stands as a readable escape in texts.
class TAMRIX_EXPORT XmlExporter {
public:
    /// Makes the elements from their stream form (see UIElement::elementsFromByteArray()) and
    /// deletes them at its own end.
    explicit XmlExporter(const QByteArray& elements);
    /// The elements stay the caller's and must outlive the exporter.
    explicit XmlExporter(const QList<const UIElement*>& elements);
    ~XmlExporter();
    XmlExporter(const XmlExporter&) = delete;
    XmlExporter& operator=(const XmlExporter&) = delete;

    /// The top-level elements.
    QList<const UIElement*> elements() const { return m_elements; }

    /// Whether images are written; on by default.
    void setIncludeImages(bool on) { m_includeImages = on; }
    bool includeImages() const { return m_includeImages; }
    /// Whether the children of a transparent node stand in its place; on by default.
    void setSkipTransparentNodes(bool on) { m_skipTransparentNodes = on; }
    bool skipTransparentNodes() const { return m_skipTransparentNodes; }

    /// Writes the document to a device that is open for writing. On failure false, errorMessage()
    /// then tells why.
    bool toXml(QIODevice* device);
    /// Writes the document to a file, which is replaced only when all could be written. On failure
    /// false, errorMessage() then tells why.
    bool toXml(const QString& fileName);
    /// Writes the root element of the document and all in it.
    void toXmlFragment(QXmlStreamWriter* writer) const;
    /// Writes one element with all below it.
    void toXmlStream(const UIElement* element, QXmlStreamWriter* writer) const;

    /// The text of the latest failure, null before the first.
    QString errorMessage() const { return m_errorMessage; }

private:
    QList<const UIElement*> m_elements;
    bool m_ownsElements = false;
    QString m_errorMessage;
    bool m_includeImages = true;
    bool m_skipTransparentNodes = true;
};

}  // namespace Tamrix::UIAbstraction
