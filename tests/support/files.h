#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

namespace Tamrix::Test {

/// Writes a file, with the folders that it needs. False when that fails.
inline bool writeFile(const QString& path, const QByteArray& contents = QByteArray()) {
    if (!QDir().mkpath(QFileInfo(path).path()))
        return false;
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size();
}

/// The bytes of a file, empty when it can't be read.
inline QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Makes a folder the working folder until the end of the scope.
class WorkingDirectory {
public:
    explicit WorkingDirectory(const QString& path) : m_before(QDir::currentPath()) {
        QDir::setCurrent(path);
    }
    ~WorkingDirectory() { QDir::setCurrent(m_before); }
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;

private:
    QString m_before;
};

}  // namespace Tamrix::Test
