#include "platform/testresult/reportfiles.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryFile>
#include <QUrl>

#include "base/filewriting.h"

namespace Tamrix {

namespace {

constexpr qint64 shownEnd = 64 * 1024;
constexpr qint64 blockSize = 256 * 1024;
constexpr int digestLength = 16;
constexpr int longestName = 80;

/// The name of a copy: digits of the contents, and what is harmless of the file's own name.
QString copyName(const QByteArray& digest, const QString& ownName) {
    static const QRegularExpression s_unsafe(QStringLiteral("[^A-Za-z0-9._-]+"));
    const QString name = QString(ownName).replace(s_unsafe, QStringLiteral("_"));
    // The end of a long name holds the suffix.
    return QString::fromLatin1(digest.toHex().left(digestLength)) + QLatin1Char('-') +
           name.right(longestName);
}

QString readProblem(const QString& source, const QString& reason) {
    return QStringLiteral("The file '%1' could not be taken along: %2").arg(source, reason);
}

/// Why a file can't be copied; empty when it can.
QString sourceProblem(const QString& source) {
    const QFileInfo info(source);
    if (source.isEmpty())
        return QStringLiteral("No file is named.");
    if (source.contains(QChar(0)) || !info.exists())
        return QStringLiteral("The file '%1' is missing.").arg(source);
    // A pipe could keep the report waiting for ever.
    if (!info.isFile())
        return readProblem(source, QStringLiteral("it is no regular file"));
    return QString();
}

}  // namespace

ReportFiles::ReportFiles(const QString& folder, const QString& subfolder)
    : m_folder(folder), m_subfolder(subfolder) {}

QDir ReportFiles::directory() const {
    return QDir(QDir(m_folder).filePath(m_subfolder));
}

void ReportFiles::fail(const QString& what, const QString& reason) {
    m_error =
        QStringLiteral("%1 can't be written to '%2': %3").arg(what, directory().path(), reason);
}

ReportFiles::Copy ReportFiles::copy(const QString& source) {
    const auto known = m_copies.constFind(source);
    if (known != m_copies.constEnd())
        return *known;
    const Copy made = makeCopy(source);
    m_copies.insert(source, made);
    return made;
}

ReportFiles::Copy ReportFiles::makeCopy(const QString& source) {
    QString problem = sourceProblem(source);
    QFile input(source);
    if (problem.isEmpty() && !input.open(QIODevice::ReadOnly))
        problem = readProblem(source, input.errorString());
    if (!problem.isEmpty() || !m_error.isEmpty())
        return {QString(), problem};

    const QString what = QStringLiteral("The attachment '%1'").arg(source);
    QTemporaryFile output;
    if (!open(output, what))
        return {};
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (;;) {
        const QByteArray block = input.read(blockSize);
        if (block.isEmpty())
            break;
        hash.addData(block);
        QString reason;
        if (!writeAll(&output, block, &reason)) {
            fail(what, reason);
            return {};
        }
    }
    if (input.error() != QFileDevice::NoError)
        return {QString(), readProblem(source, input.errorString())};
    return keep(output, copyName(hash.result(), QFileInfo(source).fileName()), what);
}

ReportFiles::Copy ReportFiles::store(const QString& text, const QString& name) {
    const QString what = QStringLiteral("The text '%1'").arg(name);
    QTemporaryFile output;
    if (!m_error.isEmpty() || !open(output, what))
        return {};
    const QByteArray bytes = text.toUtf8();
    QString reason;
    if (!writeAll(&output, bytes, &reason)) {
        fail(what, reason);
        return {};
    }
    const QByteArray digest = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
    return keep(output, copyName(digest, name), what);
}

bool ReportFiles::open(QTemporaryFile& file, const QString& what) {
    file.setFileTemplate(directory().filePath(QStringLiteral(".copy-XXXXXX")));
    if (directory().mkpath(QStringLiteral(".")) && file.open())
        return true;
    fail(what, file.errorString());
    return false;
}

ReportFiles::Copy ReportFiles::keep(QTemporaryFile& file, const QString& name,
                                    const QString& what) {
    m_usedNames.insert(name);
    const Copy made{m_subfolder + QLatin1Char('/') + name, QString()};
    // The name tells the contents: a file that has it already is the same.
    if (directory().exists(name))
        return made;
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup |
                        QFileDevice::ReadOther);
    file.setAutoRemove(false);
    if (!file.rename(directory().filePath(name))) {
        file.setAutoRemove(true);
        fail(what, file.errorString());
        return {};
    }
    m_newNames.append(name);
    return made;
}

QByteArray ReportFiles::endOfText(const Copy& copy, qint64* size) const {
    QFile file(QDir(m_folder).filePath(copy.path));
    *size = 0;
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    *size = file.size();
    if (*size <= shownEnd)
        return file.readAll();
    file.seek(*size - shownEnd);
    const QByteArray text = file.readAll();
    // Not from the middle of a line, or of a character.
    return text.mid(text.indexOf('\n') + 1);
}

QByteArray ReportFiles::text(const Copy& copy, qint64 mostBytes) const {
    QFile file(QDir(m_folder).filePath(copy.path));
    if (!file.open(QIODevice::ReadOnly) || file.size() > mostBytes)
        return {};
    return file.readAll();
}

QString ReportFiles::urlOf(const QString& path) const {
    return QString::fromLatin1(QUrl::toPercentEncoding(QDir(m_folder).relativeFilePath(path), "/"));
}

void ReportFiles::removeUnused() {
    static const QRegularExpression s_ours(
        QStringLiteral("^[0-9a-f]{%1}-[A-Za-z0-9._-]*$").arg(digestLength));
    const QStringList names = directory().entryList(QDir::Files);
    for (const QString& name : names) {
        if (s_ours.match(name).hasMatch() && !m_usedNames.contains(name))
            directory().remove(name);
    }
    // Stays when it is not empty.
    QDir(m_folder).rmdir(m_subfolder);
}

void ReportFiles::removeNew() {
    for (const QString& name : qAsConst(m_newNames))
        directory().remove(name);
    QDir(m_folder).rmdir(m_subfolder);
}

}  // namespace Tamrix
