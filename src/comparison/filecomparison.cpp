#include "comparison/filecomparison.h"

#include <QFile>
#include <QFileInfo>

#include "comparison/difftext.h"
#include "comparison/jsoncompare.h"
#include "comparison/xmlcompare.h"

namespace Tamrix {

namespace {

/// A diff of two files, with a mark for every line, must fit in one text as well.
constexpr qint64 largestFile = qint64(200) << 20;

/// Reads the whole file. False with a reason in `*error`.
bool readFile(const QString& path, QIODevice::OpenMode mode, QByteArray* bytes, QString* error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | mode)) {
        *error = file.errorString();
        return false;
    }
    if (file.size() > largestFile) {
        *error = QStringLiteral("it is larger than %1 MiB").arg(largestFile >> 20);
        return false;
    }
    *bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        *error = file.errorString();
        return false;
    }
    return true;
}

/// The same for JSON and XML, which say it in the same words.
bool readForComparison(const QString& path, QIODevice::OpenMode mode, QByteArray* bytes,
                       FileComparison* comparison) {
    QString error;
    if (readFile(path, mode, bytes, &error))
        return true;
    comparison->error = QStringLiteral("File '%1' can not be read: %2").arg(path, error);
    return false;
}

QByteArray formattedForDiff(const QString& text) {
    QString formatted;
    return formatJson(text, &formatted) ? listifyQString(formatted) : QByteArray();
}

}  // namespace

FileComparison compareTextFiles(const QString& expected, const QString& actual,
                                bool strictLineEndings) {
    FileComparison comparison;
    QByteArray texts[2];
    QString error;
    // Not in the device's own text mode, which would go over the file line by line.
    if (!readFile(expected, {}, &texts[0], &error)) {
        comparison.error =
            QStringLiteral("Expected file '%1' can not be read: '%2'").arg(expected, error);
        return comparison;
    }
    if (!readFile(actual, {}, &texts[1], &error)) {
        comparison.error =
            QStringLiteral("Actual file '%1' can not be read: '%2'").arg(actual, error);
        return comparison;
    }
    if (!strictLineEndings) {
        for (QByteArray& text : texts)
            text = withoutCarriageReturns(text);
    }

    QByteArray diff;
    bool differ = false;
    createDiff(splitLines(texts[0]), splitLines(texts[1]), diff, differ);
    comparison.equal = !differ;
    comparison.message = QStringLiteral("Plain Text Comparison");
    comparison.detail = QStringLiteral("'%1' and '%2' are %3.%4")
                            .arg(QFileInfo(expected).fileName(), QFileInfo(actual).fileName(),
                                 differ ? QStringLiteral("different") : QStringLiteral("equal"),
                                 differ ? diffForDetail(diff) : QString());
    return comparison;
}

FileComparison compareJsonFiles(const QString& expected, const QString& actual) {
    FileComparison comparison;
    QByteArray bytes[2];
    if (!readForComparison(expected, QIODevice::Text, &bytes[0], &comparison) ||
        !readForComparison(actual, QIODevice::Text, &bytes[1], &comparison))
        return comparison;
    const QString texts[2] = {toUtfString(bytes[0]), toUtfString(bytes[1])};

    QString difference;
    comparison.equal = compareJson(texts[0], texts[1], &difference);
    comparison.message = QStringLiteral("JSON Comparison");
    if (comparison.equal) {
        comparison.detail = QStringLiteral("Files are equal");
        return comparison;
    }
    const QByteArray formatted[2] = {formattedForDiff(texts[0]), formattedForDiff(texts[1])};
    QByteArray diff;
    bool differ = false;
    createDiff(splitLines(formatted[0]), splitLines(formatted[1]), diff, differ);
    comparison.detail = QStringLiteral("Files differ: %1 %2").arg(difference, diffForDetail(diff));
    return comparison;
}

FileComparison compareXmlFiles(const QString& expected, const QString& actual,
                               const XmlCompareOptions& options) {
    FileComparison comparison;
    QByteArray bytes[2];
    if (!readForComparison(expected, {}, &bytes[0], &comparison) ||
        !readForComparison(actual, {}, &bytes[1], &comparison))
        return comparison;
    XmlCompareError error;
    comparison.equal = compareXml({bytes[0], bytes[1]}, {}, options, &error);
    comparison.message = QStringLiteral("XML Comparison");
    comparison.detail = comparison.equal ? QStringLiteral("Files are equal")
                                         : QStringLiteral("Files differ: %1").arg(error.message);
    return comparison;
}

}  // namespace Tamrix
