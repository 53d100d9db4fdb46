#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace Tamrix::Test {

/// A suite on disk that a test fills; it goes with the object.
class SuiteFolder {
public:
    /// Writes a file and the folders that it needs.
    void write(const QString& name, const QByteArray& text = {}) const {
        const QString file = path(name);
        ASSERT_TRUE(QDir().mkpath(QFileInfo(file).path()));
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly)) << qPrintable(out.errorString());
        ASSERT_EQ(out.write(text), text.size());
    }

    QString path() const { return m_directory.path(); }
    QString path(const QString& name) const { return m_directory.filePath(name); }

private:
    QTemporaryDir m_directory;
};

}  // namespace Tamrix::Test
