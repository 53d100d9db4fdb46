#include "runner/commands/findimage.h"

#include <json/json.h>

#include <QBuffer>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <QSaveFile>
#include <algorithm>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>

#include "base/filewriting.h"
#include "base/nativebytes.h"
#include "base/textescape.h"
#include "runner/commands/commandline.h"
#include "runner/commands/commands.h"
#include "runner/processes/terminal.h"
#include "vision/correlation.h"
#include "vision/imagelookup.h"
#include "vision/parallel.h"

namespace Tamrix {

namespace {

using Vision::ImageLookupImplementation;
using Vision::ImageLookupOptions;
using Vision::SearchRegion;

struct Picture {
    QString file;
    QImage image;
};

/// A place that was found. The score, and which needle it is most like, are known after a tolerant
/// search only.
struct Occurrence {
    QRect rectangle;
    double score = 0;
    QString needle;
};

struct Findings {
    /// The settings under which the occurrences are found, as far as they are no defaults.
    ImageLookupOptions options;
    QList<Occurrence> occurrences;
};

/// Throws a std::runtime_error whose text may hold names of files.
[[noreturn]] void fail(const QString& text) {
    throw std::runtime_error(toNativeBytes(text).toStdString());
}

/// Throws a std::runtime_error that names the file.
Picture loadPicture(const QString& file) {
    QImageReader reader(file);
    reader.setDecideFormatFromContent(true);
    const QImage image = reader.read();
    if (image.isNull()) {
        fail(QStringLiteral("the picture '%1' can't be read: %2").arg(file, reader.errorString()));
    }
    return {file, Vision::searchable(image)};
}

/// The whole picture unless a region was given, which must not lie outside of it altogether.
SearchRegion regionToSearch(const CommandLine& line, const Picture& haystack) {
    const QRect whole = haystack.image.rect();
    if (line.searchRegion.isEmpty())
        return SearchRegion(whole);
    const QList<QRect>& rectangles = line.searchRegion.rectangles();
    if (std::none_of(rectangles.begin(), rectangles.end(),
                     [&](const QRect& each) { return each.intersects(whole); })) {
        fail(QStringLiteral("the region %1 lies outside '%2', which has %3x%4 pixels")
                 .arg(line.searchRegion.description(), haystack.file,
                      QString::number(whole.width()), QString::number(whole.height())));
    }
    return line.searchRegion;
}

/// The score of a needle, at the size of the rectangle; nothing when it can't have that size.
std::optional<double> scoreOf(const QImage& haystack, const QImage& needle,
                              const QRect& rectangle) {
    // Resized as a search does it.
    const QImage resized = needle.width() == rectangle.width()
                               ? needle
                               : needle.scaledToWidth(rectangle.width(), Qt::SmoothTransformation);
    if (resized.size() != rectangle.size())
        return std::nullopt;
    return Vision::correlationScore(haystack, resized, rectangle.topLeft());
}

/// The occurrence with its score, that of the needle which is most like it.
Occurrence scored(const QImage& haystack, const QList<Picture>& needles, const QRect& rectangle) {
    Occurrence occurrence = {rectangle, -1, {}};
    for (const Picture& needle : needles) {
        const std::optional<double> score = scoreOf(haystack, needle.image, rectangle);
        if (score && *score > occurrence.score) {
            occurrence.score = *score;
            occurrence.needle = needle.file;
        }
    }
    return occurrence;
}

Findings search(const CommandLine& line, const Picture& haystack, const QList<Picture>& needles) {
    QList<QImage> images;
    for (const Picture& needle : needles)
        images.append(needle.image);
    const std::unique_ptr<ImageLookupImplementation> engine(ImageLookupImplementation::get());
    const std::unique_ptr<ImageLookupImplementation::Cache> cache(engine->newCache(images, true));
    const SearchRegion region = regionToSearch(line, haystack);

    Findings findings;
    findings.options = line.searchOptions;
    QList<QRect> rectangles;
    if (line.wantsBest) {
        const auto best = engine->bestOccurrences(haystack.image, region, cache.get(), {},
                                                  line.searchOptions, line.occurrenceLimit, {});
        findings.options = ImageLookupOptions::overlay(best.first, line.searchOptions);
        rectangles = best.second;
    } else {
        rectangles = engine->allOccurrences(haystack.image, region, cache.get(), line.searchOptions,
                                            line.occurrenceLimit);
    }
    for (const QRect& rectangle : qAsConst(rectangles)) {
        findings.occurrences.append(findings.options.getTolerant()
                                        ? scored(haystack.image, needles, rectangle)
                                        : Occurrence{rectangle, 0, {}});
    }
    return findings;
}

QByteArray textOf(const Findings& findings, const CommandLine& line) {
    if (findings.occurrences.isEmpty())
        return "Not found\n";
    QString text;
    if (line.wantsBest) {
        text = findings.options.isNull() ? QStringLiteral("Found without any options\n")
                                         : QStringLiteral("Found with --options \"%1\"\n")
                                               .arg(findings.options.description());
    }
    for (const Occurrence& occurrence : findings.occurrences) {
        text += SearchRegion(occurrence.rectangle).description();
        if (findings.options.getTolerant())
            text += QStringLiteral("  score %1").arg(Vision::unparseDouble(occurrence.score));
        if (line.needles.size() > 1 && !occurrence.needle.isEmpty())
            text += QStringLiteral("  ") + escapedForTerminal(occurrence.needle);
        text += QLatin1Char('\n');
    }
    return text.toLocal8Bit();
}

QByteArray jsonOf(const Findings& findings) {
    Json::Value value(Json::objectValue);
    value["options"] = findings.options.toJson();
    Json::Value& occurrences = value["occurrences"] = Json::Value(Json::arrayValue);
    for (const Occurrence& occurrence : findings.occurrences) {
        Json::Value entry = Vision::rectToJson(occurrence.rectangle);
        if (findings.options.getTolerant())
            entry["score"] = occurrence.score;
        if (!occurrence.needle.isEmpty())
            entry["needle"] = occurrence.needle.toStdString();
        occurrences.append(entry);
    }
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "    ";
    builder["precision"] = 9;
    builder["emitUTF8"] = true;
    return QByteArray::fromStdString(Json::writeString(builder, value)) + '\n';
}

/// Throws a std::runtime_error that names the file.
void storeAnnotated(const QString& file, const QImage& haystack, const Findings& findings) {
    QImage image = haystack.convertToFormat(QImage::Format_RGB32);
    QPainter painter(&image);
    for (const Occurrence& occurrence : findings.occurrences) {
        // Around the pixels, so that they can be seen: red within white stands out everywhere.
        const QRect frame = occurrence.rectangle.adjusted(-2, -2, 1, 1);
        painter.setPen(Qt::white);
        painter.drawRect(frame.adjusted(-1, -1, 1, 1));
        painter.setPen(Qt::red);
        painter.drawRect(frame);
        painter.drawRect(frame.adjusted(1, 1, -1, -1));
    }
    painter.end();

    const auto failWithReason = [&](const QString& reason) {
        fail(QStringLiteral("the picture '%1' can't be written: %2").arg(file, reason));
    };
    QSaveFile output(file);
    if (!output.open(QIODevice::WriteOnly))
        failWithReason(output.errorString());
    const QString suffix = QFileInfo(file).suffix();
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    QImageWriter writer(&bytes, suffix.isEmpty() ? "png" : suffix.toLatin1().toLower());
    if (!writer.write(image))
        failWithReason(writer.errorString());
    QString reason;
    if (!writeAll(&output, bytes.data(), &reason))
        failWithReason(reason);
    if (!output.commit())
        failWithReason(output.errorString());
}

/// What stands in front of the text of a failed search: the needle that it is about, if known.
QString culprit(const Vision::BadImage& exception, const QList<Picture>& needles) {
    for (const Picture& needle : needles) {
        if (needles.size() == 1 || needle.image == exception.image())
            return QStringLiteral("'%1': ").arg(needle.file);
    }
    return {};
}

}  // namespace

int findImage(const CommandLine& commandLine) {
    QList<Picture> needles;
    try {
        const Picture haystack = loadPicture(commandLine.haystack);
        for (const QString& file : commandLine.needles)
            needles.append(loadPicture(file));
        const Findings findings = search(commandLine, haystack, needles);
        if (!commandLine.annotatedFile.isEmpty())
            storeAnnotated(commandLine.annotatedFile, haystack.image, findings);
        const QByteArray output =
            commandLine.printsJson ? jsonOf(findings) : textOf(findings, commandLine);
        if (!writeBytes(stdout, output))
            return failWith(QStringLiteral("standard output can't be written"));
        return findings.occurrences.isEmpty() ? ExitFailure : ExitSuccess;
    } catch (const Vision::BadImage& exception) {
        return failWith(culprit(exception, needles) + fromNativeBytes(exception.what()));
    } catch (const std::exception& exception) {
        return failWith(fromNativeBytes(exception.what()));
    }
}

}  // namespace Tamrix
