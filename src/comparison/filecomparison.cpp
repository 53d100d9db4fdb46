#include "comparison/filecomparison.h"

#include <QFile>
#include <QFileInfo>
#include <stdexcept>
#include <utility>

#include "comparison/difftext.h"
#include "comparison/jsoncompare.h"
#include "comparison/xmlcompare.h"

namespace Tamrix {

namespace {

/// A diff of two files must fit in one text.
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

/// One file of a comparison of JSON.
struct JsonFile {
    QString path;
    QString text;
    /// Why it can't be decoded.
    QString problem;
};

QString problemOf(const JsonFile& file) {
    QString problem = file.problem;
    Json::Value value;
    if (problem.isEmpty())
        readJSON(file.text, &value, &problem);
    return problem;
}

/// Nothing for a file that is no JSON, which is noted.
QByteArray formattedForDiff(const JsonFile& file, QStringList* invalidFiles) {
    QString formatted;
    if (file.problem.isEmpty() && formatJson(file.text, &formatted))
        return listifyQString(formatted);
    invalidFiles->append(QStringLiteral("'%1': %2").arg(file.path, problemOf(file).simplified()));
    return {};
}

/// Appends the differences to the detail; false with an error when they don't fit in a text.
bool appendDiff(const QByteArray& expected, const QByteArray& actual, QByteArray* detail,
                bool* differ, FileComparison* comparison) {
    try {
        createDiff(splitLines(expected), splitLines(actual), *detail, *differ);
        return true;
    } catch (const std::length_error& error) {
        *comparison = {};
        comparison->error = QString::fromLatin1(error.what());
        return false;
    }
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

    const auto names = [&](const char* outcome) {
        return QStringLiteral("'%1' and '%2' are %3.")
            .arg(QFileInfo(expected).fileName(), QFileInfo(actual).fileName(),
                 QLatin1String(outcome));
    };
    QByteArray detail = names("different").toUtf8() + diffHeading;
    bool differ = false;
    if (!appendDiff(texts[0], texts[1], &detail, &differ, &comparison))
        return comparison;
    comparison.equal = !differ;
    comparison.message = QStringLiteral("Plain Text Comparison");
    comparison.detail = differ ? decodedDetail(std::move(detail)) : names("equal");
    return comparison;
}

FileComparison compareJsonFiles(const QString& expected, const QString& actual) {
    FileComparison comparison;
    QByteArray bytes[2];
    if (!readForComparison(expected, QIODevice::Text, &bytes[0], &comparison) ||
        !readForComparison(actual, QIODevice::Text, &bytes[1], &comparison))
        return comparison;
    JsonFile files[2] = {{expected, {}, {}}, {actual, {}, {}}};
    QString difference;
    for (int side : {0, 1}) {
        if (!decodeJson(bytes[side], &files[side].text, &files[side].problem) &&
            difference.isEmpty())
            difference = files[side].problem;
    }

    comparison.equal =
        difference.isEmpty() && compareJson(files[0].text, files[1].text, &difference);
    comparison.message = QStringLiteral("JSON Comparison");
    if (comparison.equal) {
        comparison.detail = QStringLiteral("Files are equal");
        return comparison;
    }
    const QByteArray formatted[2] = {formattedForDiff(files[0], &comparison.invalidFiles),
                                     formattedForDiff(files[1], &comparison.invalidFiles)};
    QByteArray detail = QStringLiteral("Files differ: %1 ").arg(difference).toUtf8() + diffHeading;
    bool differ = false;
    if (!appendDiff(formatted[0], formatted[1], &detail, &differ, &comparison))
        return comparison;
    comparison.detail = decodedDetail(std::move(detail));
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
