// Elements from a stream, written again as a stream and as XML.

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"
#include "shared/uiabstraction/uielement.h"
#include "shared/uiabstraction/xmlexporter.h"

using Tamrix::UIAbstraction::UIElement;
using Tamrix::UIAbstraction::XmlExporter;

namespace {

bool isWellFormed(const QByteArray& xml) {
    QXmlStreamReader reader(xml);
    while (!reader.atEnd())
        reader.readNext();
    return !reader.hasError();
}

void requireSame(const QList<const UIElement*>& one, const QList<const UIElement*>& other) {
    fuzzRequire(one.size() == other.size(), "what was read can be written and read again");
    for (int i = 0; i < one.size(); ++i)
        fuzzRequire(one.at(i)->isSimilarTo(other.at(i), true), "a tree stays as it was");
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Tamrix::Fuzz::silenceQt();
    XmlExporter exporter(QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size)));
    const XmlExporter again(UIElement::elementsToByteArray(exporter.elements()));
    requireSame(exporter.elements(), again.elements());

    for (const bool skip : {true, false}) {
        exporter.setSkipTransparentNodes(skip);
        // Without line breaks: the indents of deep trees would take most of the time.
        QByteArray xml;
        QXmlStreamWriter writer(&xml);
        exporter.toXmlFragment(&writer);
        fuzzRequire(!writer.hasError(), "every tree can be written as XML");
        fuzzRequire(isWellFormed(xml), "the XML is well-formed");
    }
    return 0;
}
