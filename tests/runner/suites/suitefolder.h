#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "support/files.h"

namespace Tamrix::Test {

/// A suite on disk that a test fills; it goes with the object.
class SuiteFolder {
public:
    /// Writes a file and the folders that it needs.
    void write(const QString& name, const QByteArray& text = {}) const {
        ASSERT_TRUE(writeFile(path(name), text)) << qPrintable(name);
    }

    QString path() const { return m_directory.path(); }
    QString path(const QString& name) const { return m_directory.filePath(name); }

private:
    QTemporaryDir m_directory;
};

}  // namespace Tamrix::Test
