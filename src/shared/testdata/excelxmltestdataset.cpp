#include "shared/testdata/excelxmltestdataset.h"

#include <minizip/unzip.h>
#include <tinyxml.h>

#include <QFile>
#include <QVector>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "base/keptwhitespace.h"
#include "base/textescape.h"
#include "shared/testdata/excelarchive.h"
#include "shared/testdata/excelsheetchoice.h"
#include "shared/testdata/excelxmlpart.h"

namespace Tamrix {

namespace {

class Archive {
public:
    explicit Archive(const QString& path)
        : m_handle(unzOpen(QFile::encodeName(path).constData())) {}
    ~Archive() {
        if (m_handle)
            unzClose(m_handle);
    }
    Archive(const Archive&) = delete;
    Archive& operator=(const Archive&) = delete;

    bool isOpen() const { return m_handle != nullptr; }
    ExcelXmlPart part(const std::string& name) {
        return ExcelXmlPart(extractFromZipArchive(m_handle, name.c_str()));
    }

private:
    unzFile m_handle;
};

void tell(const char* what, const QString& detail) {
    std::fprintf(stderr, "tamrixrunner: %s%s\n", what,
                 escapedForTerminal(detail).toLocal8Bit().constData());
}

/// All empty texts are one and the same.
QString textOf(const TiXmlElement* element) {
    const char* const text = element ? element->GetText() : nullptr;
    return text && *text ? QString::fromUtf8(text) : QString(QLatin1String(""));
}

std::string tooMany(const char* what) {
    return "there are more than " + std::to_string(ExcelXmlTestDataSet::maxValues) + ' ' + what;
}

/// The column, from 1, that the capital letters at the start of a cell's name give; 0 when there
/// are none. Throws std::runtime_error when there is no such column.
unsigned columnOf(const char* name) {
    unsigned column = 0;
    for (const char* letter = name; *letter >= 'A' && *letter <= 'Z'; ++letter) {
        column = column * 26 + static_cast<unsigned>(*letter - 'A') + 1;
        if (column > ExcelXmlTestDataSet::maxColumns)
            throw std::runtime_error(std::string(name) + " lies beyond the last column");
    }
    return column;
}

class Reader {
public:
    Reader(TestDataSet* set, const QString& path, const QString& sheet)
        : m_set(set), m_path(path), m_sheet(sheet) {}

    void read() {
        // 1. Open the archive.
        Archive archive(m_path);
        if (!archive.isOpen())
            return fail(".xlsx file is corrupt: ", m_path + " can't be opened as an archive");
        // 2. The shared strings.
        try {
            readSharedStrings(archive);
        } catch (const std::runtime_error& error) {
            if (std::strcmp(error.what(), notInArchive) != 0)
                fail("testData Shared Strings: ", QString::fromUtf8(error.what()));
        }
        // 3. The workbook.
        ExcelSheetChoice choice;
        try {
            choice = chooseExcelSheet(archive.part("xl/workbook.xml"), m_sheet);
        } catch (const std::runtime_error& error) {
            return fail(".xlsx file is corrupt: ", QString::fromUtf8(error.what()).trimmed());
        }
        if (choice.part.isEmpty())
            return fail("sheet not found: ", m_sheet);
        checkRelationship(archive, choice);
        // 4. The sheet.
        try {
            readSheet(archive.part(choice.part.toStdString()));
        } catch (const std::runtime_error& error) {
            QString problem = QString::fromUtf8(error.what()).trimmed();
            if (std::strcmp(error.what(), notInArchive) == 0)
                problem +=
                    QStringLiteral(" (%1, the part of sheet '%2')").arg(choice.part, choice.name);
            fail("testData Sheet: ", problem);
        }
    }

private:
    /// Tells it, and that the table is not all that the file has.
    void fail(const char* what, const QString& detail) {
        m_set->setIncomplete();
        tell(what, detail);
    }

    /// The part is chosen by the sheet's number whatever the relationships say, which is meant; but
    /// nobody shall wonder about another sheet's table.
    void checkRelationship(Archive& archive, const ExcelSheetChoice& choice) const {
        if (choice.relationship.isEmpty())
            return;
        QString related;
        try {
            related =
                relatedExcelPart(archive.part("xl/_rels/workbook.xml.rels"), choice.relationship);
        } catch (const std::runtime_error&) {
            // Nothing is read by them, so it doesn't matter that they are missing or damaged.
        }
        if (!related.isEmpty() && related != choice.part)
            tell("testData Sheet: ",
                 QStringLiteral("sheet '%1' is read from %2, but the workbook's relationships "
                                "name %3 for it")
                     .arg(choice.name, choice.part, related));
    }

    void readSharedStrings(Archive& archive) {
        archive.part("xl/sharedStrings.xml")
            .forEach({"sst", "si"}, [this](const TiXmlElement& item) {
                QString text;
                const auto addTexts = [&text](const TiXmlElement& parent) {
                    for (const TiXmlElement* part = parent.FirstChildElement("t"); part;
                         part = part->NextSiblingElement("t"))
                        text += textOf(part);
                };
                addTexts(item);
                for (const TiXmlElement* run = item.FirstChildElement("r"); run;
                     run = run->NextSiblingElement("r"))
                    addTexts(*run);
                if (m_strings.size() == std::size_t(ExcelXmlTestDataSet::maxValues))
                    throw std::runtime_error(tooMany("shared strings"));
                m_strings.push_back(text);
            });
    }

    void readSheet(const ExcelXmlPart& sheet) {
        // 5. The width: the column of the second of the two cells that give the dimension.
        sheet.forEach({"worksheet", "dimension"}, [this](const TiXmlElement& dimension) {
            const char* const range = dimension.Attribute("ref");
            const char* const colon = range ? std::strchr(range, ':') : nullptr;
            // A single cell has no second one.
            m_width = colon ? columnOf(colon + 1) : 1;
            m_emptyRow.clear();
            fillEmptyCells(m_emptyRow, m_width);
        });
        // 6. The rows.
        sheet.forEach({"worksheet", "sheetData", "row"},
                      [this](const TiXmlElement& row) { readRow(row); });
    }

    void readRow(const TiXmlElement& row) {
        const char* const name = row.Attribute("r");
        bool isNumber = false;
        const unsigned number = QByteArray(name).toUInt(&isNumber);
        const unsigned last = isNumber ? number : m_nextRow;
        if (last > ExcelXmlTestDataSet::maxRows)
            throw std::runtime_error("row " + std::to_string(last) + " lies beyond the last row");
        while (isNumber && m_nextRow < number)
            addRow(m_emptyRow);

        // 7. The cells.
        QVector<QString> values;
        values.reserve(static_cast<int>(m_width));
        for (const TiXmlElement* cell = row.FirstChildElement("c"); cell;
             cell = cell->NextSiblingElement("c")) {
            const char* const place = cell->Attribute("r");
            const unsigned column = place ? columnOf(place) : 0;
            if (column > 0)
                fillEmptyCells(values, column - 1);
            values.append(valueOf(*cell));
        }
        fillEmptyCells(values, m_width);
        m_valueCount += values.size();
        if (m_valueCount > ExcelXmlTestDataSet::maxValues)
            throw std::runtime_error(tooMany("values"));
        // 8. The first row is the header.
        addRow(values);
    }

    /// Which value a cell has is told by the first letter of its type alone, so that "str", the
    /// text of a formula, is taken for a shared string too.
    QString valueOf(const TiXmlElement& cell) {
        const char* const type = cell.Attribute("t");
        if (type && *type == 's') {
            // Wide enough for any number: what is too large becomes the largest one.
            unsigned long long index = 0;
            const QByteArray text = textOf(cell.FirstChildElement()).toUtf8();
            if (std::sscanf(text.constData(), "%llu ", &index) == 1)
                return sharedString(index, text);
        }
        const TiXmlElement* const value = cell.FirstChildElement("v");
        // A text inside of its cell counts as no value, which is meant; but nobody shall wonder.
        if (!value && cell.FirstChildElement("is") && !std::exchange(m_hasToldOfInlineTexts, true))
            tell("testData Sheet: ", QLatin1String("cells of the type inlineStr are read as empty, "
                                                   "the first one is ") +
                                         QString::fromUtf8(cell.Attribute("r")));
        return textOf(value);
    }

    QString sharedString(unsigned long long index, const QByteArray& text) {
        if (index < m_strings.size())
            return m_strings[index];
        if (!std::exchange(m_hasToldOfStrings, true))
            fail("testData Sheet: ", QLatin1String("no shared string ") + QString::fromUtf8(text));
        return QString(QLatin1String(""));
    }

    static void fillEmptyCells(QVector<QString>& values, unsigned width) {
        const QString empty(QLatin1String(""));
        while (static_cast<unsigned>(values.size()) < width)
            values.append(empty);
    }

    void addRow(const QVector<QString>& values) {
        ++m_nextRow;
        const int index = m_set->header() ? m_set->count() : -1;
        auto row = std::make_unique<TestDataRecord>(m_set, index, values);
        if (index < 0)
            m_set->setHeader(row.release());
        else
            m_set->addRecord(row.release());
    }

    TestDataSet* m_set;
    QString m_path;
    QString m_sheet;
    std::vector<QString> m_strings;
    bool m_hasToldOfStrings = false;
    bool m_hasToldOfInlineTexts = false;
    unsigned m_width = 0;
    unsigned m_nextRow = 1;
    qint64 m_valueCount = 0;
    /// Shared by all rows that the file leaves out.
    QVector<QString> m_emptyRow;
};

}  // namespace

ExcelXmlTestDataSet::ExcelXmlTestDataSet(const QString& path, const QString& sheet)
    : TestDataSet(path, ',', true) {
    const KeptWhiteSpace kept;
    try {
        Reader(this, path, sheet).read();
    } catch (const std::bad_alloc&) {
        setIncomplete();
        tell("testData Sheet: ", QLatin1String("not enough memory"));
    }
}

}  // namespace Tamrix
