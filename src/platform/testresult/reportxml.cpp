#include "platform/testresult/reportxml.h"

#include "base/textescape.h"

namespace Tamrix {

ReportXml::ReportXml(QByteArray* target) : m_writer(target) {
    m_writer.setAutoFormatting(true);
    m_writer.setAutoFormattingIndent(2);
    m_writer.writeStartDocument();
}

void ReportXml::startElement(const char* name) {
    m_writer.writeStartElement(QLatin1String(name));
}

void ReportXml::addAttribute(const char* name, const QString& value) {
    m_writer.writeAttribute(QLatin1String(name), escapedForXml(value));
}

void ReportXml::addAttribute(const char* name, int value) {
    addAttribute(name, QString::number(value));
}

void ReportXml::addText(const QString& text) {
    m_writer.writeCharacters(escapedForXml(text));
}

void ReportXml::endElement() {
    m_writer.writeEndElement();
}

void ReportXml::addTextElement(const char* name, const QString& text) {
    if (!text.isEmpty())
        m_writer.writeTextElement(QLatin1String(name), escapedForXml(text));
}

void ReportXml::endDocument() {
    m_writer.writeEndDocument();
}

}  // namespace Tamrix
