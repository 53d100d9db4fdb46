#pragma once

#include <QByteArray>
#include <QString>
#include <QXmlStreamWriter>

namespace Tamrix {

/// Writes the XML of a report. Texts may hold any character: what XML can't hold is escaped.
class ReportXml {
public:
    /// Begins the document. `target` must live longer.
    explicit ReportXml(QByteArray* target);

    void startElement(const char* name);
    /// Of the element that was started last, before its contents.
    void addAttribute(const char* name, const QString& value);
    void addAttribute(const char* name, int value);
    void addText(const QString& text);
    void endElement();
    /// An element that holds a text; none for an empty text.
    void addTextElement(const char* name, const QString& text);
    void endDocument();

private:
    QXmlStreamWriter m_writer;
};

}  // namespace Tamrix
