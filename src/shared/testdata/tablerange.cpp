#include "shared/testdata/tablerange.h"

#include <tinyxml.h>

#include <cstdio>

namespace Tamrix {

namespace {

TiXmlNode* addElement(TiXmlNode* parent, const char* name) {
    return parent->LinkEndChild(new TiXmlElement(name));
}

void addTextElement(TiXmlNode* parent, const char* name, const std::string& text) {
    addElement(parent, name)->LinkEndChild(new TiXmlText(text.c_str()));
}

}  // namespace

int TableRange::rowCount() const {
    return m_firstRow >= 0 && m_lastRow >= 0 ? m_lastRow - m_firstRow : sourceRowCount();
}

int TableRange::columnCount() const {
    return m_firstColumn >= 0 && m_lastColumn >= 0 ? m_lastColumn - m_firstColumn
                                                   : sourceColumnCount();
}

std::string TableRange::text(int row, int column) const {
    return sourceText(m_firstRow >= 0 ? row + m_firstRow : row,
                      m_firstColumn >= 0 ? column + m_firstColumn : column);
}

CellColor TableRange::backgroundColor(int row, int column) const {
    return sourceBackgroundColor(m_firstRow >= 0 ? row + m_firstRow : row,
                                 m_firstColumn >= 0 ? column + m_firstColumn : column);
}

void TableRange::contentAsXml(TiXmlNode* parent, int flags) const {
    contentAsXmlImpl(parent, flags);
}

void TableRange::contentAsXmlImpl(TiXmlNode* parent, int flags) const {
    if (!parent || flags == 0)
        return;
    // 1. The table and what it tells.
    TiXmlElement* const table = addElement(parent, "table")->ToElement();
    if ((flags & Text) != 0)
        table->SetAttribute("hasText", "1");
    if ((flags & BackgroundColor) != 0)
        table->SetAttribute("hasBackgroundColor", "1");
    // 2. Its rows and cells,
    for (int row = 0; row < rowCount(); ++row) {
        TiXmlNode* const rowElement = addElement(table, "row");
        for (int column = 0; column < columnCount(); ++column) {
            TiXmlNode* const cell = addElement(rowElement, "cell");
            // 3. their text,
            if ((flags & Text) != 0)
                addTextElement(cell, "text", text(row, column));
            // 4. and their colour, if they have one.
            const CellColor color =
                (flags & BackgroundColor) != 0 ? backgroundColor(row, column) : CellColor();
            if (color != CellColor()) {
                char digits[10];
                std::snprintf(digits, sizeof digits, "#%02X%02X%02X%02X", color.alpha, color.red,
                              color.green, color.blue);
                addTextElement(cell, "backgroundColor", digits);
            }
        }
    }
}

std::string TableRange::contentAsXml(int flags) const {
    if (flags == 0)
        return {};
    TiXmlDocument document;
    document.LinkEndChild(new TiXmlDeclaration("1.0", "utf-8", ""));
    contentAsXml(&document, flags);
    TiXmlPrinter printer;
    printer.SetIndent("    ");
    document.Accept(&printer);
    return printer.Str();
}

}  // namespace Tamrix
