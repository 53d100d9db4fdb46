#pragma once

#include <QString>
#include <memory>
#include <variant>

#include "base/export.h"
#include "shared/tsvparser/delimitedtext.h"

namespace Tamrix {

class TestDataSet;

/// Reads delimited text line by line. A logical line may hold newlines in its quotes; quotes stay
/// in it until parseRecord(). An empty line and the end of the text are the same to callers: a
/// blank line ends a table.
class TAMRIX_EXPORT TsvParser {
public:
    /// Reads the file, as open() does.
    explicit TsvParser(const QString& path);

    /// Reads another file. When that fails a warning tells why, and everything acts on an empty
    /// file without a name. What is no UTF-8 is told, too.
    void open(const QString& path);
    /// Whether the file could be read.
    bool isOpen() const { return m_text != nullptr; }
    /// The path of the file; empty when it couldn't be read.
    QString name() const { return m_name; }

    /// The next logical line; empty at the end. A line of more than DelimitedText::mostLineBytes
    /// is told by a warning, and everything acts on an empty file from then on.
    QString nextLine();
    /// The same line where it lies in text(), with its separators counted; false at the end. The
    /// separator is one for which isScannable() holds.
    bool nextLine(char separator, TextLine* line);
    /// Whether a separator can be counted while lines are looked for: ASCII, and nothing that ends
    /// or quotes.
    static bool isScannable(char separator);
    /// The number of the last logical line, from 0; -1 before the first.
    int lineNumber() const { return m_lineNumber; }
    /// The text that lines lie in; null when the file couldn't be read.
    const std::shared_ptr<const DelimitedText>& text() const { return m_text; }

    /// The number of separators outside quotes, -1 for an empty line. Meant: unlike elsewhere, a
    /// doubled quote doesn't lead back into the quoted part, so `"a""b,c"` has one comma.
    static int countSeparator(const QString& line, char separator);

    /// Makes the line nextLine() gave last the header of the set, if it was the first, else its
    /// next record; nothing for an empty line. Tells a row of another width on standard error.
    /// (Defined with the sets.)
    void parseRecord(TestDataSet* set, const QString& line, char separator) const;

    /// Begins again with the first line.
    void rewind();

private:
    void giveUp(const QString& error);
    template <typename Unit>
    bool scanLine(char separator, TextLine* line, const Unit* text, std::size_t size);
    std::size_t position() const;

    std::shared_ptr<const DelimitedText> m_text;
    std::variant<std::monostate, LineScanner<char>, LineScanner<char16_t>> m_scanner;
    QString m_name;
    int m_lineNumber = -1;
};

}  // namespace Tamrix
