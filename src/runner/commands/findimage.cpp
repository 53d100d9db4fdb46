// "tamrixrunner find-image": pictures in another one.

#include <json/json.h>

#include <QImage>
#include <algorithm>
#include <limits>
#include <memory>
#include <stdexcept>

#include "base/nativebytes.h"
#include "base/textescape.h"
#include "runner/commands/command.h"
#include "runner/commands/picturefiles.h"
#include "runner/commands/samefile.h"
#include "runner/processes/terminal.h"
#include "vision/search/frame.h"
#include "vision/search/imagelookup.h"
#include "vision/search/parallel.h"
#include "vision/search/placescore.h"

namespace Tamrix {

namespace {

using Vision::ImageLookupImplementation;
using Vision::ImageLookupOptions;
using Vision::SearchRegion;

struct FindImageSettings {
    // Files of pictures.
    QString haystack;
    QStringList needles;
    ImageLookupOptions options;
    /// Empty for the whole haystack.
    SearchRegion region;
    /// How many occurrences are told.
    int limit = 0;
    /// Whether to find the settings that find the needles.
    bool wantsBest = false;
    bool printsJson = false;
    /// Where the haystack is stored with frames around what was found, empty for nowhere.
    QString annotatedFile;
};

Outcome<> readSearchOptions(const QStringList& values, FindImageSettings& settings) {
    const auto wrongOptions = [&](const QString& problem) {
        return wrongUsage(QStringLiteral("--options '%1': %2").arg(values.constLast(), problem));
    };
    try {
        const auto options = ImageLookupOptions::fromDescription(values.constLast());
        // The form of JSON has ranges.
        settings.options = ImageLookupOptions::fromJson(options.toJson());
    } catch (const std::runtime_error& error) {
        return wrongOptions(QString::fromUtf8(error.what()));
    }
    if (settings.options.getMinScaleFactor() > settings.options.getMaxScaleFactor())
        return wrongOptions(QStringLiteral("minScale is above maxScale"));
    return {};
}

Outcome<> readRegion(const QStringList& values, FindImageSettings& settings) {
    const Outcome<SearchRegion> region = readRegionOption(values.constLast());
    if (!region)
        return fail(region.error());
    settings.region = *region;
    return {};
}

Outcome<> readLimit(const QStringList& values, FindImageSettings& settings) {
    bool isNumber = false;
    settings.limit = values.constLast().toInt(&isNumber);
    if (!isNumber || settings.limit < 1)
        return wrongUsage(
            QStringLiteral("--limit takes a number from 1 on, not '%1'").arg(values.constLast()));
    return {};
}

Outcome<> readAnnotatedFile(const QStringList& values, FindImageSettings& settings) {
    settings.annotatedFile = values.constLast();
    if (settings.annotatedFile.isEmpty())
        return wrongUsage(QStringLiteral("--annotate needs a file"));
    return {};
}

Outcome<> readArguments(const CommandArguments& arguments, FindImageSettings& settings) {
    settings.haystack = arguments.own.constFirst();
    settings.needles = arguments.own.mid(1);
    for (const QString& picture : arguments.own) {
        if (!settings.annotatedFile.isEmpty() && isSameFile(picture, settings.annotatedFile))
            return wrongUsage(QStringLiteral("--annotate %1 would write over '%2'")
                                  .arg(settings.annotatedFile, picture));
    }
    return {};
}

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

Findings search(const FindImageSettings& settings, const Picture& haystack,
                const QList<Picture>& needles) {
    QList<QImage> images;
    for (const Picture& needle : needles)
        images.append(needle.image);
    const std::unique_ptr<ImageLookupImplementation> engine(ImageLookupImplementation::get());
    const std::unique_ptr<ImageLookupImplementation::Cache> cache(engine->newCache(images, true));
    const SearchRegion region = regionToSearch(settings.region, haystack);

    Findings findings;
    findings.options = settings.options;
    QList<QRect> rectangles;
    if (settings.wantsBest) {
        const auto best = engine->bestOccurrences(haystack.image, region, cache.get(), {},
                                                  settings.options, settings.limit, {});
        findings.options = ImageLookupOptions::overlay(best.first, settings.options);
        rectangles = best.second;
    } else {
        rectangles = engine->allOccurrences(haystack.image, region, cache.get(), settings.options,
                                            settings.limit);
    }
    for (const QRect& rectangle : qAsConst(rectangles)) {
        Occurrence occurrence{rectangle, 0, {}};
        if (findings.options.getTolerant()) {
            const auto [score, needle] = Vision::scorePlace(haystack.image, images, rectangle);
            occurrence.score = score;
            if (needle >= 0)
                occurrence.needle = needles.at(needle).file;
        }
        findings.occurrences.append(occurrence);
    }
    return findings;
}

QByteArray textOf(const Findings& findings, const FindImageSettings& settings) {
    if (findings.occurrences.isEmpty())
        return "Not found\n";
    QString text;
    if (settings.wantsBest) {
        text = findings.options.isNull() ? QStringLiteral("Found without any options\n")
                                         : QStringLiteral("Found with --options \"%1\"\n")
                                               .arg(findings.options.description());
    }
    for (const Occurrence& occurrence : findings.occurrences) {
        text += SearchRegion(occurrence.rectangle).description();
        if (findings.options.getTolerant())
            text += QStringLiteral("  score %1").arg(Vision::unparseDouble(occurrence.score));
        if (settings.needles.size() > 1 && !occurrence.needle.isEmpty())
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
    return jsonText(value);
}

QList<QRect> rectanglesOf(const Findings& findings) {
    QList<QRect> rectangles;
    for (const Occurrence& occurrence : findings.occurrences)
        rectangles.append(occurrence.rectangle);
    return rectangles;
}

/// What stands in front of the text of a failed search: the needle that it is about, if known.
QString culprit(const Vision::BadImage& exception, const QList<Picture>& needles) {
    for (const Picture& needle : needles) {
        if (needles.size() == 1 || needle.image == exception.image())
            return QStringLiteral("'%1': ").arg(needle.file);
    }
    return {};
}

int findImage(const FindImageSettings& settings) {
    QList<Picture> needles;
    try {
        const Picture haystack = loadPicture(settings.haystack);
        for (const QString& file : settings.needles)
            needles.append(loadPicture(file));
        const Findings findings = search(settings, haystack, needles);
        if (!settings.annotatedFile.isEmpty())
            storeFramed(settings.annotatedFile, haystack.image, rectanglesOf(findings));
        const QByteArray output =
            settings.printsJson ? jsonOf(findings) : textOf(findings, settings);
        if (!writeBytes(stdout, output))
            return failWith(QStringLiteral("standard output can't be written"));
        return findings.occurrences.isEmpty() ? ExitFailure : ExitSuccess;
    } catch (const Vision::BadImage& exception) {
        return failWith(culprit(exception, needles) + fromNativeBytes(exception.what()));
    } catch (const std::exception& exception) {
        return failWith(fromNativeBytes(exception.what()));
    }
}

}  // namespace

Command findImageCommand() {
    return makeCommand<FindImageSettings>(
        {{"find-image", "HAYSTACK NEEDLE...",
          "Finds pictures in a screenshot, as scripts do, and prints the places.", 2,
          CommandSyntax::anyNumber},
         {{"options", "OPTIONS",
           "How to search: \"tolerant: true, threshold: 97, multiscale: true, minScale: 80, "
           "maxScale: 120\", or some of it.",
           nullptr, readSearchOptions},
          {"region", "LEFTxTOPxWIDTHxHEIGHT",
           "Where to search; several rectangles are separated by commas.", nullptr, readRegion},
          {"limit", "N", "Prints so many occurrences at most; %1 unless given.", "100", readLimit},
          {"best", nullptr, "Finds the most similar places and the settings that find them.",
           nullptr, setTo(&FindImageSettings::wantsBest, true)},
          {"json", nullptr, "Prints JSON.", nullptr, setTo(&FindImageSettings::printsJson, true)},
          {"annotate", "FILE", "Stores the screenshot with frames around what was found.", nullptr,
           readAnnotatedFile}},
         {},
         readArguments,
         findImage});
}

}  // namespace Tamrix
