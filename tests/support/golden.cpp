#include "support/golden.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <algorithm>
#include <vector>

namespace Tamrix::Test {

namespace {

constexpr int contextLines = 2;
constexpr int maximumLines = 60;

QString goldenPath(const QString& name) {
    return QStringLiteral(TAMRIX_TEST_SOURCE_DIR "/tests/golden/") + name;
}

testing::AssertionResult writeGolden(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly) ||
        file.write(content) != content.size() || !file.flush())
        return testing::AssertionFailure()
               << "can't write " << path.toStdString() << ": " << file.errorString().toStdString();
    return testing::AssertionSuccess();
}

/// Lengths of the longest common subsequences of the ends of both lists.
std::vector<std::vector<int>> commonLengths(const QStringList& left, const QStringList& right) {
    std::vector<std::vector<int>> lengths(left.size() + 1, std::vector<int>(right.size() + 1, 0));
    for (int i = left.size() - 1; i >= 0; --i) {
        for (int j = right.size() - 1; j >= 0; --j)
            lengths[i][j] = left[i] == right[j] ? lengths[i + 1][j + 1] + 1
                                                : std::max(lengths[i + 1][j], lengths[i][j + 1]);
    }
    return lengths;
}

/// Every line of both texts, marked " ", "-" or "+".
QStringList markedLines(const QStringList& expected, const QStringList& actual) {
    const auto lengths = commonLengths(expected, actual);
    QStringList marked;
    int i = 0;
    int j = 0;
    while (i < expected.size() || j < actual.size()) {
        if (i < expected.size() && j < actual.size() && expected[i] == actual[j]) {
            marked << " " + expected[i++];
            ++j;
        } else if (j == actual.size() ||
                   (i < expected.size() && lengths[i + 1][j] >= lengths[i][j + 1])) {
            marked << "-" + expected[i++];
        } else {
            marked << "+" + actual[j++];
        }
    }
    return marked;
}

}  // namespace

QString lineDifference(const QString& expected, const QString& actual) {
    const QStringList marked = markedLines(expected.split('\n'), actual.split('\n'));

    std::vector<bool> shown(marked.size(), false);
    for (int line = 0; line < marked.size(); ++line) {
        if (marked[line].startsWith(' '))
            continue;
        const int last = std::min(line + contextLines, marked.size() - 1);
        for (int near = std::max(line - contextLines, 0); near <= last; ++near)
            shown[near] = true;
    }

    QStringList difference;
    for (int line = 0; line < marked.size(); ++line) {
        if (!shown[line])
            continue;
        if (difference.size() == maximumLines) {
            difference << "(further lines left out)";
            break;
        }
        if (line > 0 && !shown[line - 1])
            difference << "...";
        difference << marked[line];
    }
    return difference.join('\n');
}

testing::AssertionResult compareWithGolden(const QString& name, const QString& text) {
    const QString path = goldenPath(name);
    if (qEnvironmentVariableIsSet("TAMRIX_UPDATE_GOLDEN"))
        return writeGolden(path, text.toUtf8());

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return testing::AssertionFailure()
               << "no golden file " << path.toStdString() << " (./dev golden makes it) for:\n"
               << text.toStdString();
    const QByteArray expected = file.readAll();
    if (expected == text.toUtf8())
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << "differs from " << path.toStdString() << " (./dev golden renews it):\n"
           << lineDifference(QString::fromUtf8(expected), text).toStdString();
}

Normaliser& Normaliser::path(const QString& path, const QString& name) {
    // Not the beginning of a longer name.
    return pattern(QRegularExpression::escape(path) + "(?![\\w.-])", name);
}

Normaliser& Normaliser::times() {
    return pattern(
        "\\b(\\d{4}-\\d\\d-\\d\\d[T ])?\\d\\d:\\d\\d:\\d\\d([.,]\\d+)?(Z|[+-]\\d\\d:?\\d\\d)?",
        "<TIME>");
}

Normaliser& Normaliser::durations() {
    pattern("\\b\\d+(\\.\\d+)?( ?)(ms|s)\\b", "<DURATION>\\2\\3");
    pattern("\\b(time=\")[\\d.]+\"", "\\1<DURATION>\"");
    return pattern("(\"duration\"\\s*:\\s*)[\\d.e-]+", "\\1<DURATION>");
}

Normaliser& Normaliser::pattern(const QString& expression, const QString& replacement) {
    m_replacements.append({QRegularExpression(expression), replacement});
    return *this;
}

QString Normaliser::operator()(QString text) const {
    for (const auto& [expression, replacement] : m_replacements)
        text.replace(expression, replacement);
    return text;
}

}  // namespace Tamrix::Test
