// A table that is told as XML.

#include "shared/testdata/tablerange.h"

#include <string>

#include "fuzz/fuzztarget.h"

using Tamrix::XmlTableRange;

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    XmlTableRange table;
    if (!table.loadContentFromXml(std::string(reinterpret_cast<const char*>(data), size)))
        return 0;
    constexpr int all = XmlTableRange::Text | XmlTableRange::BackgroundColor;
    XmlTableRange again;
    fuzzRequire(again.loadContentFromXml(table.contentAsXml(all)), "what was read can be written");
    fuzzRequire(again.rowCount() == table.rowCount() && again.columnCount() == table.columnCount(),
                "a table keeps its size");
    for (int row = 0; row < table.rowCount(); ++row) {
        for (int column = 0; column < table.columnCount(); ++column) {
            fuzzRequire(again.text(row, column) == table.text(row, column), "a text stays");
            fuzzRequire(again.backgroundColor(row, column) == table.backgroundColor(row, column),
                        "a colour stays");
        }
    }
    return 0;
}
