#pragma once

#include <gtest/gtest.h>

#include <QString>
#include <QStringList>

namespace Tamrix::Test {

/// A block of a document that was recorded, behind the line
///
///     <!-- Recorded by NAME -->
///
/// Compares with it what was recorded now, or with TAMRIX_UPDATE_GOLDEN in the environment puts it
/// there.
class DocumentBlock {
public:
    /// `document` below docs/.
    DocumentBlock(const QString& document, const QString& name);

    /// Empty when the document has no such block.
    QStringList lines() const { return m_lines; }
    testing::AssertionResult compare(const QString& recorded) const;

private:
    QString m_path;
    QString m_name;
    QString m_before;
    QStringList m_lines;
    QString m_behind;
};

}  // namespace Tamrix::Test
