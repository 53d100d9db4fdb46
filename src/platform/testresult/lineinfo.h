#pragma once

#include <QString>
#include <vector>

namespace Tamrix {

/// A position in a script: file and line, the line counted from 1.
/// Line 0 concerns the file as a whole, line -1 stands for a file without a line.
class LineInfo {
public:
    /// No position.
    LineInfo() = default;
    LineInfo(const QString& fileName, int line) : m_fileName(fileName), m_line(line) {}

    QString fileName() const { return m_fileName; }
    int lineNumber() const { return m_line; }

    /// Whether the position names a file and a line in it (or the file as a whole).
    bool isValid() const { return !m_fileName.isEmpty() && m_line >= 0; }

    bool operator==(const LineInfo& other) const = default;

private:
    QString m_fileName;
    int m_line = -1;
};

/// Positions from the innermost call outwards.
using CallStack = std::vector<LineInfo>;

}  // namespace Tamrix
