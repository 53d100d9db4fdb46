#include "shared/uiabstraction/xmlexporter.h"

#include <QBuffer>
#include <QSaveFile>
#include <QXmlStreamWriter>
#include <utility>

#include "base/textescape.h"
#include "shared/uiabstraction/uielement.h"

namespace Tamrix::UIAbstraction {

namespace {

void writeAttribute(QXmlStreamWriter& writer, const char* name, const QString& value) {
    writer.writeAttribute(QLatin1String(name), escapedForXml(value));
}

void writeAttributeIfSet(QXmlStreamWriter& writer, const char* name, const QString& value) {
    if (!value.isNull())
        writeAttribute(writer, name, value);
}

void writeFlag(QXmlStreamWriter& writer, const char* name, bool value) {
    writeAttribute(writer, name, value ? QStringLiteral("1") : QStringLiteral("0"));
}

void writeText(QXmlStreamWriter& writer, const char* name, const QString& text) {
    writer.writeTextElement(QLatin1String(name), escapedForXml(text));
}

void writeTextIfSet(QXmlStreamWriter& writer, const char* name, const QString& text) {
    if (!text.isNull())
        writeText(writer, name, text);
}

void writeNumber(QXmlStreamWriter& writer, const char* name, int number) {
    writeText(writer, name, QString::number(number));
}

void start(QXmlStreamWriter& writer, const char* name) {
    writer.writeStartElement(QLatin1String(name));
}

void writeImage(QXmlStreamWriter& writer, const QImage& image) {
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    start(writer, "image");
    writeAttribute(writer, "type", QStringLiteral("PNG"));
    writer.writeCharacters(QString::fromLatin1(png.toBase64()));
    writer.writeEndElement();
}

void writeSuperClass(QXmlStreamWriter& writer, const QStringList& superTypes) {
    start(writer, "superclass");
    for (const QString& type : superTypes)
        writeText(writer, "class", type);
    writer.writeEndElement();
}

void writeAbstractProperties(QXmlStreamWriter& writer, const UIElement& element) {
    start(writer, "abstractProperties");

    start(writer, "visual");
    // By the window flag, whatever the element's place in the tree: this is meant.
    writeFlag(writer, "isTopLevel", element.isWindowNode());
    writer.writeEndElement();

    const QRect rect = element.geometry().rect();
    if (!rect.isNull() && rect.isValid()) {
        start(writer, "geometry");
        writeFlag(writer, "isRelative", element.geometry().isRelative());
        writeNumber(writer, "x", rect.x());
        writeNumber(writer, "y", rect.y());
        writeNumber(writer, "height", rect.height());
        writeNumber(writer, "width", rect.width());
        writer.writeEndElement();
    }
    writeTextIfSet(writer, "text", element.text());

    writer.writeEndElement();
}

void writeCoverage(QXmlStreamWriter& writer, const QMap<UIEvent, int>& usage) {
    if (usage.isEmpty())
        return;
    start(writer, "coveragedata");
    for (auto it = usage.begin(); it != usage.end(); ++it) {
        start(writer, "coverage");
        writeAttribute(writer, "name", it.key().name());
        writer.writeCharacters(QString::number(it.value()));
        writer.writeEndElement();
    }
    writer.writeEndElement();
}

/// In the order of the names, so that equal elements give equal documents.
void writeProperties(QXmlStreamWriter& writer, const char* name,
                     const QHash<QString, QString>& properties) {
    if (properties.isEmpty())
        return;
    start(writer, name);
    QStringList keys = properties.keys();
    keys.sort();
    for (const QString& key : std::as_const(keys)) {
        start(writer, "property");
        writeAttribute(writer, "name", key);
        const QString value = properties.value(key);
        if (!value.isEmpty())
            writeText(writer, "string", value);
        writer.writeEndElement();
    }
    writer.writeEndElement();
}

}  // namespace

XmlExporter::XmlExporter(const QByteArray& elements) : m_ownsElements(true) {
    const QList<UIElement*> made = UIElement::elementsFromByteArray(elements);
    m_elements.reserve(made.size());
    for (const UIElement* element : made)
        m_elements.append(element);
}

XmlExporter::XmlExporter(const QList<const UIElement*>& elements) : m_elements(elements) {}

XmlExporter::~XmlExporter() {
    if (m_ownsElements)
        qDeleteAll(m_elements);
}

bool XmlExporter::toXml(QIODevice* device) {
    if (!device->isOpen()) {
        m_errorMessage = QStringLiteral("Device is not open!");
        return false;
    }
    if (!device->isWritable()) {
        m_errorMessage = QStringLiteral("Device is not writable!");
        return false;
    }
    QXmlStreamWriter writer(device);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(2);
    writer.writeStartDocument(QStringLiteral("1.0"));
    toXmlFragment(&writer);
    writer.writeEndDocument();
    if (writer.hasError()) {
        m_errorMessage = QStringLiteral("Failed to write: %1").arg(device->errorString());
        return false;
    }
    return true;
}

bool XmlExporter::toXml(const QString& fileName) {
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly)) {
        m_errorMessage =
            QStringLiteral("Failed to open file '%1': %2").arg(fileName, file.errorString());
        return false;
    }
    if (!toXml(&file) || !file.commit()) {
        m_errorMessage =
            QStringLiteral("Failed to write file '%1': %2").arg(fileName, file.errorString());
        return false;
    }
    return true;
}

void XmlExporter::toXmlFragment(QXmlStreamWriter* writer) const {
    start(*writer, "ui");
    writeAttribute(*writer, "version", QStringLiteral("1.0"));
    start(*writer, "execution");
    if (!m_elements.isEmpty()) {
        start(*writer, "state");
        for (const UIElement* element : m_elements)
            toXmlStream(element, writer);
        writer->writeEndElement();
    }
    writer->writeEndElement();
    writer->writeEndElement();
}

void XmlExporter::toXmlStream(const UIElement* element, QXmlStreamWriter* writer) const {
    const QList<UIElement*> children = element->children();
    if (m_skipTransparentNodes && element->isTransparentNode()) {
        for (const UIElement* child : children)
            toXmlStream(child, writer);
        return;
    }

    // 1. The element itself.
    start(*writer, "element");
    writeAttribute(*writer, "id", element->id());
    if (element->standardType().isKnown())
        writeAttribute(*writer, "type", element->standardType().toString());
    writeAttribute(*writer, "class", element->concreteType());
    writeAttributeIfSet(*writer, "simplifiedType", element->simplifiedType());
    writeAttributeIfSet(*writer, "namespace", element->nameSpace());
    // 2., 3. Its names.
    writeTextIfSet(*writer, "realname", element->realName());
    writeTextIfSet(*writer, "symbolicname", element->symbolicName());
    // 4. Its picture.
    if (m_includeImages && element->isImageSet())
        writeImage(*writer, element->image());
    // 5., 6. What is there for every element.
    writeSuperClass(*writer, element->superTypes());
    writeAbstractProperties(*writer, *element);
    // 7. How often events touched it.
    writeCoverage(*writer, element->usageMap());
    // 8., 9. Its properties.
    writeProperties(*writer, "properties", element->concreteProperties());
    writeProperties(*writer, "identifyingProperties", element->identifyingProperties());
    // 10. What is below it.
    if (!children.isEmpty() && !element->isSubgraphTransparent()) {
        start(*writer, "children");
        for (const UIElement* child : children)
            toXmlStream(child, writer);
        writer->writeEndElement();
    }
    // 11. Its end.
    writer->writeEndElement();
}

}  // namespace Tamrix::UIAbstraction
