#include <tinyxml.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iostream>

#include "base/keptwhitespace.h"
#include "base/tinyxmlguard.h"
#include "shared/testdata/tablerange.h"

namespace Tamrix {

namespace {

std::string textOf(TiXmlElement* cell, const char* name) {
    TiXmlElement* const element = cell->FirstChildElement(name);
    const char* const text = element ? element->GetText() : nullptr;
    return text ? text : "";
}

/// "#AARRGGBB", or "#RRGGBB" without transparency; anything else is no colour.
CellColor colorOf(const std::string& text) {
    const std::string digits = text.starts_with('#') ? text.substr(1) : std::string();
    const bool isHex = std::all_of(digits.begin(), digits.end(),
                                   [](unsigned char c) { return std::isxdigit(c) != 0; });
    if (!isHex || (digits.size() != 6 && digits.size() != 8))
        return {};
    const unsigned long value = std::stoul(digits, nullptr, 16);
    const auto byte = [value](int place) { return static_cast<std::uint8_t>(value >> 8 * place); };
    return {digits.size() == 6 ? std::uint8_t{255} : byte(3), byte(2), byte(1), byte(0)};
}

bool fail(const std::string& text) {
    std::cerr << text << '\n';
    return false;
}

bool failAt(int row, int column, const std::string& description) {
    return fail("XML Parse Error at " + std::to_string(row) + "," + std::to_string(column) + ":" +
                description);
}

}  // namespace

bool XmlTableRange::loadContentFromXml(const std::string& xml) {
    // 1. With the white space that texts have,
    const KeptWhiteSpace kept;
    // 2. the document is parsed,
    const QByteArray bytes = QByteArray::fromStdString(xml);
    const TinyXmlCheck check = checkForTinyXml(bytes);
    if (!check.problem.isEmpty())
        return failAt(check.row, 1, check.problem.toStdString());
    TiXmlDocument document;
    document.Parse(withBlankTexts(bytes, check).constData(), nullptr, TIXML_ENCODING_UTF8);
    if (document.Error())
        return failAt(document.ErrorRow(), document.ErrorCol(), document.ErrorDesc());
    // 3. in which the first row tells the number of columns.
    TiXmlElement* const table = document.FirstChildElement("table");
    if (!table)
        return fail("Missing table element in XML input");
    std::vector<Cell> cells;
    int columnCount = -1;
    for (TiXmlElement* row = table->FirstChildElement("row"); row;
         row = row->NextSiblingElement("row")) {
        int column = 0;
        for (TiXmlElement* cell = row->FirstChildElement("cell"); cell;
             cell = cell->NextSiblingElement("cell")) {
            // 4. and 5. Text and colour of each cell.
            cells.push_back({textOf(cell, "text"), colorOf(textOf(cell, "backgroundColor"))});
            ++column;
        }
        if (columnCount >= 0 && column != columnCount)
            return fail("Malformed table XML, number of columns differ between rows");
        columnCount = column;
    }
    m_cells = std::move(cells);
    m_columnCount = std::max(columnCount, 0);
    return true;
}

int XmlTableRange::sourceRowCount() const {
    return m_columnCount > 0 ? static_cast<int>(m_cells.size()) / m_columnCount : 0;
}

const XmlTableRange::Cell& XmlTableRange::cell(int row, int column) const {
    static const Cell nothing;
    const bool isThere =
        row >= 0 && row < sourceRowCount() && column >= 0 && column < m_columnCount;
    return isThere
               ? m_cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_columnCount) +
                         static_cast<std::size_t>(column)]
               : nothing;
}

CellColor XmlTableRange::sourceBackgroundColor(int row, int column) const {
    return cell(row, column).color;
}

std::string XmlTableRange::sourceText(int row, int column) const {
    return cell(row, column).text;
}

}  // namespace Tamrix
