#pragma once

#include <gtest/gtest.h>

#include <QList>
#include <QRegularExpression>
#include <QString>
#include <utility>

namespace Tamrix::Test {

/// Compares the text with the file `name` below tests/golden/. A mismatch, or a file that is
/// missing, is a failure that shows the lines that differ. With TAMRIX_UPDATE_GOLDEN set in the
/// environment the file is written instead, and only a failure to write fails.
///
///     EXPECT_TRUE(compareWithGolden("runner/console.txt", normalised(output)));
testing::AssertionResult compareWithGolden(const QString& name, const QString& text);

/// The lines that differ between two texts, with "-" before expected and "+" before actual ones,
/// and a few equal lines around them. A long difference is cut, which the last line then says.
QString lineDifference(const QString& expected, const QString& actual);

/// Replaces what differs from run to run and from machine to machine by names, so that an output
/// can be compared. The replacements are made in the order in which they were added.
class Normaliser {
public:
    /// `path` and what stands below it becomes `name`, for example "<SUITE>". The deeper of two
    /// paths is to be added first.
    Normaliser& path(const QString& path, const QString& name);
    /// Dates with times of day as ISO 8601 has them, and times of day alone, become "<TIME>".
    Normaliser& times();
    /// Durations become "<DURATION>": numbers before "ms" and "s", numbers in attributes
    /// time="...", and the value of "duration" in JSON.
    Normaliser& durations();
    /// Anything else; `replacement` may name groups of the expression as \1, \2.
    Normaliser& pattern(const QString& expression, const QString& replacement);

    QString operator()(QString text) const;

private:
    QList<std::pair<QRegularExpression, QString>> m_replacements;
};

}  // namespace Tamrix::Test
