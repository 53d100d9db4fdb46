#include "platform/testresult/htmlfiles.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryFile>

#include "base/filewriting.h"

namespace Tamrix {

namespace {

const QLatin1String subfolder("attachments");

constexpr qint64 shownEnd = 64 * 1024;
constexpr qint64 blockSize = 256 * 1024;
constexpr int digestLength = 16;
constexpr int longestName = 80;

/// The name of a copy: digits of the contents, and what is harmless of the file's own name.
QString copyName(const QByteArray& digest, const QString& source) {
    static const QRegularExpression s_unsafe(QStringLiteral("[^A-Za-z0-9._-]+"));
    const QString name = QFileInfo(source).fileName().replace(s_unsafe, QStringLiteral("_"));
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

HtmlFiles::HtmlFiles(const QString& folder) : m_folder(folder) {}

HtmlFiles::Copy HtmlFiles::copy(const QString& source) {
    const auto known = m_copies.constFind(source);
    if (known != m_copies.constEnd())
        return *known;
    const Copy made = makeCopy(source);
    m_copies.insert(source, made);
    return made;
}

HtmlFiles::Copy HtmlFiles::makeCopy(const QString& source) {
    QString problem = sourceProblem(source);
    QFile input(source);
    if (problem.isEmpty() && !input.open(QIODevice::ReadOnly))
        problem = readProblem(source, input.errorString());
    if (!problem.isEmpty() || !m_error.isEmpty())
        return {QString(), problem};

    const QDir directory(QDir(m_folder).filePath(subfolder));
    QTemporaryFile output(directory.filePath(QStringLiteral(".copy-XXXXXX")));
    QString reason;
    const auto fail = [&] {
        m_error =
            QStringLiteral("The attachment '%1' can't be copied into '%2': %3")
                .arg(source, directory.path(), reason.isEmpty() ? output.errorString() : reason);
        return Copy();
    };
    if (!directory.mkpath(QStringLiteral(".")) || !output.open())
        return fail();
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (;;) {
        const QByteArray block = input.read(blockSize);
        if (block.isEmpty())
            break;
        hash.addData(block);
        if (!writeAll(&output, block, &reason))
            return fail();
    }
    if (input.error() != QFileDevice::NoError)
        return {QString(), readProblem(source, input.errorString())};

    const QString name = copyName(hash.result(), source);
    m_usedNames.insert(name);
    const Copy made{subfolder + QLatin1Char('/') + name, QString()};
    // The name tells the contents: a file that has it already is the same.
    if (directory.exists(name))
        return made;
    output.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                          QFileDevice::ReadGroup | QFileDevice::ReadOther);
    output.setAutoRemove(false);
    if (!output.rename(directory.filePath(name))) {
        output.setAutoRemove(true);
        return fail();
    }
    m_newNames.append(name);
    return made;
}

QByteArray HtmlFiles::endOfText(const Copy& copy, qint64* size) const {
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

void HtmlFiles::removeUnused() {
    static const QRegularExpression s_ours(
        QStringLiteral("^[0-9a-f]{%1}-[A-Za-z0-9._-]*$").arg(digestLength));
    QDir directory(QDir(m_folder).filePath(subfolder));
    const QStringList names = directory.entryList(QDir::Files);
    for (const QString& name : names) {
        if (s_ours.match(name).hasMatch() && !m_usedNames.contains(name))
            directory.remove(name);
    }
    // Stays when it is not empty.
    QDir(m_folder).rmdir(subfolder);
}

void HtmlFiles::removeNew() {
    QDir directory(QDir(m_folder).filePath(subfolder));
    for (const QString& name : qAsConst(m_newNames))
        directory.remove(name);
    QDir(m_folder).rmdir(subfolder);
}

}  // namespace Tamrix
