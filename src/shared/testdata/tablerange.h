#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/export.h"

class TiXmlNode;

namespace Tamrix {

/// The colour of a cell; all zero means none.
struct CellColor {
    std::uint8_t alpha = 0;
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool operator==(const CellColor&) const = default;
};

/// A rectangle of cells of a table, with text and background colour, that can be told as XML. Where
/// the cells come from is a subclass's. Rows and columns are counted from 0.
class TAMRIX_EXPORT TableRange {
public:
    /// What contentAsXml() tells, combined as bits.
    enum ContentFlag { Text = 1, BackgroundColor = 2 };

    /// The rows from `firstRow` up to the one before `lastRow`, the columns likewise. A negative
    /// number means the whole height or width.
    TableRange(int firstRow, int lastRow, int firstColumn, int lastColumn)
        : m_firstRow(firstRow),
          m_lastRow(lastRow),
          m_firstColumn(firstColumn),
          m_lastColumn(lastColumn) {}
    virtual ~TableRange() = default;

    /// Adds the table below `parent`; nothing for null or without a flag.
    virtual void contentAsXml(TiXmlNode* parent, int flags) const;
    /// The table as an XML document, empty without a flag.
    std::string contentAsXml(int flags) const;

    int rowCount() const;
    int columnCount() const;
    /// Of a cell of the range.
    std::string text(int row, int column) const;
    CellColor backgroundColor(int row, int column) const;

protected:
    // The whole table that this is a range of.
    virtual int sourceRowCount() const = 0;
    virtual int sourceColumnCount() const = 0;
    virtual CellColor sourceBackgroundColor(int row, int column) const = 0;
    virtual std::string sourceText(int row, int column) const = 0;

private:
    void contentAsXmlImpl(TiXmlNode* parent, int flags) const;

    int m_firstRow;
    int m_lastRow;
    int m_firstColumn;
    int m_lastColumn;
};

/// A table that is read from the XML of contentAsXml().
class TAMRIX_EXPORT XmlTableRange : public TableRange {
public:
    XmlTableRange() : TableRange(-1, -1, -1, -1) {}

    /// False, with the reason on standard error and the table as it was, when the text is no such
    /// XML.
    bool loadContentFromXml(const std::string& xml);

protected:
    int sourceRowCount() const override;
    int sourceColumnCount() const override { return m_columnCount; }
    CellColor sourceBackgroundColor(int row, int column) const override;
    std::string sourceText(int row, int column) const override;

private:
    struct Cell {
        std::string text;
        CellColor color;
    };
    const Cell& cell(int row, int column) const;

    std::vector<Cell> m_cells;
    int m_columnCount = 0;
};

}  // namespace Tamrix
