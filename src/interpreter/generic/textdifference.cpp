#include "interpreter/generic/textdifference.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "comparison/diff.h"
#include "comparison/difftext.h"

namespace Tamrix {

namespace {

/// One line up to this many characters is seen at a glance.
constexpr int shortLine = 60;
/// How many characters are shown around the first difference of long lines.
constexpr int charactersAround = 30;
/// How many equal lines are shown around differing ones.
constexpr int linesAround = 3;
/// What is told ends behind so many lines and characters: the texts themselves stand in the result.
constexpr int mostToldLines = 1000;
constexpr int mostToldCharacters = 200 * 1000;
constexpr int longestToldLine = 2000;
/// Matching takes time in proportion to the lines times the differences.
constexpr std::ptrdiff_t mostMatchedLines = 20000;

int commonBeginning(const QString& first, const QString& second) {
    const int shorter = std::min(first.size(), second.size());
    const auto end = first.begin() + shorter;
    const int length =
        static_cast<int>(std::mismatch(first.begin(), end, second.begin()).first - first.begin());
    // A surrogate pair is one character.
    return length > 0 && first.at(length - 1).isHighSurrogate() ? length - 1 : length;
}

/// The text around a position, with dots where it goes on.
QString excerpt(const QString& text, int position) {
    const int begin = std::max(0, position - charactersAround);
    const int end = std::min(text.size(), position + charactersAround);
    return (begin > 0 ? QStringLiteral("...") : QString()) + text.mid(begin, end - begin) +
           (end < text.size() ? QStringLiteral("...") : QString());
}

QString firstDifference(const QString& first, const QString& second) {
    const int position = commonBeginning(first, second);
    return QStringLiteral("@@ character %1 @@\n-%2\n+%3")
        .arg(QString::number(position + 1), excerpt(first, position), excerpt(second, position));
}

// The unified format

/// A line of a text, and how it is told.
QString toldLine(char mark, const Diff::Line& line) {
    QString text = QString::fromUtf8(line.data(), static_cast<int>(line.size()));
    const bool hasEnd = text.endsWith(QLatin1Char('\n'));
    if (hasEnd)
        text.chop(1);
    if (text.size() > longestToldLine) {
        const int left = text.size() - longestToldLine;
        text.truncate(longestToldLine);
        text += QStringLiteral("[... %1 more characters]").arg(left);
    }
    return QLatin1Char(mark) + text +
           (hasEnd ? QStringLiteral("\n") : QStringLiteral("\n\\ No newline at end of text\n"));
}

/// "12,3": the first line, counted from 1, and their number where it is not 1.
QString rangeText(int begin, int count) {
    // An empty range stands behind the line before it.
    const QString first = QString::number(count == 0 ? begin : begin + 1);
    return count == 1 ? first : first + QLatin1Char(',') + QString::number(count);
}

/// Puts hunks together: differing lines and equal ones near them.
class UnifiedText {
public:
    /// The next line of the texts, as part of a hunk.
    void append(Diff::Operation operation, const Diff::Line& line) {
        static constexpr char marks[] = {'+', '-', ' '};
        m_lines += toldLine(marks[operation], line);
        m_firstCount += operation != Diff::Insert;
        m_secondCount += operation != Diff::Delete;
        ++m_lineCount;
    }

    /// The next line, which both texts have, is part of none.
    void pass() {
        endHunk();
        ++m_first;
        ++m_second;
    }

    bool isFull() const {
        return m_lineCount >= mostToldLines || m_text.size() + m_lines.size() >= mostToldCharacters;
    }

    QString finish(const QString& note = QString()) {
        endHunk();
        if (!note.isEmpty())
            return m_text + note;
        m_text.chop(1);
        return m_text;
    }

private:
    void endHunk() {
        if (m_lines.isEmpty())
            return;
        m_text += QStringLiteral("@@ -%1 +%2 @@\n")
                      .arg(rangeText(m_first, m_firstCount), rangeText(m_second, m_secondCount)) +
                  m_lines;
        m_lines.clear();
        m_first += m_firstCount;
        m_second += m_secondCount;
        m_firstCount = m_secondCount = 0;
    }

    QString m_text;
    // The hunk that is being made: where it begins, and its lines.
    int m_first = 0;
    int m_second = 0;
    int m_firstCount = 0;
    int m_secondCount = 0;
    QString m_lines;
    int m_lineCount = 0;
};

/// Lines that differ stand together: those of the first text in front of those of the second.
void putDeletesFirst(std::vector<Diff::Run>* runs) {
    const auto isEqual = [](const Diff::Run& run) { return run.operation == Diff::Equal; };
    const auto isDelete = [](const Diff::Run& run) { return run.operation == Diff::Delete; };
    for (auto begin = runs->begin(); begin != runs->end();) {
        const auto end = std::find_if(begin, runs->end(), isEqual);
        std::stable_partition(begin, end, isDelete);
        begin = std::find_if_not(end, runs->end(), isEqual);
    }
}

QString unifiedDifference(const Diff::Lines& first, const Diff::Lines& second) {
    std::vector<Diff::Run> runs = Diff::diff(first, second);
    putDeletesFirst(&runs);
    UnifiedText text;
    for (std::size_t index = 0; index < runs.size(); ++index) {
        const Diff::Run& run = runs[index];
        const Diff::Lines& lines = run.operation == Diff::Insert ? second : first;
        // Equal lines are told behind what differs and in front of it.
        const int behind = index == 0 ? 0 : linesAround;
        const int before = index + 1 == runs.size() ? 0 : linesAround;
        const auto begin = lines.begin() + run.begin;
        for (int line = 0; line < run.count; ++line) {
            if (text.isFull())
                return text.finish(QStringLiteral("(further differences are left out)"));
            if (run.operation == Diff::Equal && line >= behind && line < run.count - before)
                text.pass();
            else
                text.append(run.operation, begin[line]);
        }
    }
    return text.finish();
}

/// The first line that is not the same in both.
QString firstDifferingLine(const Diff::Lines& first, const Diff::Lines& second) {
    const auto [inFirst, inSecond] =
        std::mismatch(first.begin(), first.end(), second.begin(), second.end());
    UnifiedText text;
    for (auto line = first.begin(); line != inFirst; ++line)
        text.pass();
    if (inFirst != first.end())
        text.append(Diff::Delete, *inFirst);
    if (inSecond != second.end())
        text.append(Diff::Insert, *inSecond);
    return text.finish(QStringLiteral("(the first differing line only, of %1 and %2 lines)")
                           .arg(QString::number(first.size()), QString::number(second.size())));
}

/// The lines of the shorter text between those that both begin with and those that both end with.
std::ptrdiff_t linesToMatch(const Diff::Lines& first, const Diff::Lines& second) {
    const auto& [shorter, longer] =
        first.size() < second.size() ? std::tie(first, second) : std::tie(second, first);
    const auto begin = std::mismatch(shorter.begin(), shorter.end(), longer.begin()).first;
    // The reversed range from the last line back to `begin`.
    const auto end =
        std::mismatch(shorter.rbegin(), std::reverse_iterator(begin), longer.rbegin()).first;
    return end.base() - begin;
}

QString linesDifference(const QString& first, const QString& second) {
    const QByteArray firstBytes = first.toUtf8();
    const QByteArray secondBytes = second.toUtf8();
    // What UTF-8 can't hold may be all that differs.
    if (firstBytes == secondBytes)
        return firstDifference(first, second);
    const Diff::Lines firstLines = splitLines(firstBytes);
    const Diff::Lines secondLines = splitLines(secondBytes);
    return linesToMatch(firstLines, secondLines) > mostMatchedLines
               ? firstDifferingLine(firstLines, secondLines)
               : unifiedDifference(firstLines, secondLines);
}

bool hasLines(const QString& text) {
    return text.contains(QLatin1Char('\n'));
}

}  // namespace

QString explainDifference(const QString& first, const QString& second) {
    if (first == second)
        return {};
    if (hasLines(first) || hasLines(second))
        return linesDifference(first, second);
    return std::max(first.size(), second.size()) > shortLine ? firstDifference(first, second)
                                                             : QString();
}

}  // namespace Tamrix
