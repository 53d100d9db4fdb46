// "tamrixrunner find-text": what is written in a picture.

#include <json/json.h>

#include <QImage>
#include <exception>

#include "base/nativebytes.h"
#include "base/textescape.h"
#include "runner/commands/command.h"
#include "runner/commands/picturefiles.h"
#include "runner/commands/samefile.h"
#include "runner/processes/terminal.h"
#include "shared/ocr/implementation.h"
#include "shared/ocr/nearestphrase.h"
#include "shared/ocr/typedexception.h"
#include "shared/resources/testresource.h"

namespace Tamrix {

namespace {

using OCR::Match;
using OCR::Word;
using Vision::SearchRegion;

struct FindTextSettings {
    /// The file of the picture.
    QString picture;
    /// Null to tell all words.
    QString text;
    OCR::Options options = OCR::Options::defaults();
    /// Empty for the whole picture.
    SearchRegion region;
    /// Which match is told; 0 for all.
    int occurrence = 0;
    bool printsJson = false;
    /// Where the picture is stored with frames around what was found, empty for nowhere.
    QString annotatedFile;
    /// Empty for the one that the user's settings name.
    QString engine;
    /// Whether to tell what there is instead of reading anything.
    bool listsEngines = false;
};

Outcome<> readTextOptions(const QStringList& values, FindTextSettings& settings) {
    try {
        settings.options = stack(settings.options, OCR::Options::fromJson(values.constLast()));
    } catch (const std::exception& error) {
        return wrongUsage(QStringLiteral("--options '%1': %2")
                              .arg(values.constLast(), QString::fromUtf8(error.what()).trimmed()));
    }
    return {};
}

Outcome<> readTextRegion(const QStringList& values, FindTextSettings& settings) {
    const Outcome<SearchRegion> region = readRegionOption(values.constLast());
    if (!region)
        return fail(region.error());
    settings.region = *region;
    return {};
}

Outcome<> readOccurrence(const QStringList& values, FindTextSettings& settings) {
    bool isNumber = false;
    settings.occurrence = values.constLast().toInt(&isNumber);
    if (!isNumber || settings.occurrence < 1)
        return wrongUsage(QStringLiteral("--occurrence takes a number from 1 on, not '%1'")
                              .arg(values.constLast()));
    return {};
}

Outcome<> readAnnotatedTextFile(const QStringList& values, FindTextSettings& settings) {
    settings.annotatedFile = values.constLast();
    if (settings.annotatedFile.isEmpty())
        return wrongUsage(QStringLiteral("--annotate needs a file"));
    return {};
}

Outcome<> readEngine(const QStringList& values, FindTextSettings& settings) {
    settings.engine = values.constLast();
    QStringList names;
    for (const auto& engine : OCR::Implementation::availableImplementations())
        names.append(engine.name);
    if (!names.contains(settings.engine))
        return wrongUsage(QStringLiteral("--engine: there is no engine '%1'; there are: %2")
                              .arg(settings.engine, names.join(QStringLiteral(", "))));
    return {};
}

Outcome<> readTextArguments(const CommandArguments& arguments, FindTextSettings& settings) {
    if (settings.listsEngines) {
        if (!arguments.own.isEmpty())
            return wrongUsage(QStringLiteral("--engines takes no picture"));
        return {};
    }
    if (arguments.own.isEmpty())
        return wrongUsage(QStringLiteral("find-text needs PICTURE"));
    settings.picture = arguments.own.constFirst();
    if (arguments.own.size() > 1) {
        settings.text = arguments.own.at(1);
        if (settings.text.trimmed().isEmpty())
            return wrongUsage(QStringLiteral("TEXT is empty"));
    } else if (settings.occurrence != 0) {
        return wrongUsage(QStringLiteral("--occurrence needs TEXT"));
    }
    if (!settings.annotatedFile.isEmpty() && isSameFile(settings.picture, settings.annotatedFile))
        return wrongUsage(QStringLiteral("--annotate %1 would write over '%2'")
                              .arg(settings.annotatedFile, settings.picture));
    return {};
}

QSharedPointer<OCR::Implementation> engineFor(const FindTextSettings& settings) {
    return settings.engine.isEmpty() ? OCR::Implementation::get()
                                     : OCR::Implementation::get(settings.engine);
}

/// What the command tells: words, or matches of a text, each with its place.
struct ReadText {
    QSharedPointer<OCR::Result> result;
    QList<Match> matches;
};

ReadText readPicture(const FindTextSettings& settings, const Picture& picture) {
    ReadText read;
    read.result = engineFor(settings)->processImage(
        picture.image, TestResource::getSearchPaths(QStringLiteral("."), QString()),
        settings.options, regionToSearch(settings.region, picture), nullptr);
    if (settings.text.isNull()) {
        for (const Word& word : read.result->getAllWords())
            read.matches.append(Match{word});
    } else if (settings.occurrence == 0) {
        read.matches = read.result->getTextLocations(settings.text);
    } else {
        const Match match = read.result->getTextLocation(settings.text, settings.occurrence);
        if (!match.isEmpty())
            read.matches.append(match);
    }
    return read;
}

QByteArray textOf(const ReadText& read, const FindTextSettings& settings) {
    if (read.matches.isEmpty()) {
        const auto nearest = OCR::nearestPhrase(*read.result, settings.text);
        if (!nearest)
            return "Not found\n";
        return QStringLiteral("Not found; nearest is \"%1\" at %2\n")
            .arg(escapedForTerminal(nearest->text),
                 SearchRegion(nearest->words.boundingBox()).description())
            .toLocal8Bit();
    }
    QString text;
    for (const Match& match : read.matches) {
        text += QStringLiteral("%1  %2\n")
                    .arg(SearchRegion(match.boundingBox()).description(),
                         escapedForTerminal(match.wordList().join(QLatin1Char(' '))));
    }
    return text.toLocal8Bit();
}

QByteArray jsonOf(const ReadText& read, const FindTextSettings& settings) {
    Json::Value value(Json::objectValue);
    value["options"] = settings.options.toJson();
    if (settings.text.isNull()) {
        value["text"] = read.result->getText().toStdString();
        Json::Value& words = value["words"] = Json::Value(Json::arrayValue);
        for (const Match& match : read.matches)
            words.append(match.constFirst().toJson());
        return jsonText(value);
    }
    Json::Value& matches = value["matches"] = Json::Value(Json::arrayValue);
    for (const Match& match : read.matches) {
        Json::Value entry = match.toJson();
        entry["location"] = Vision::rectToJson(match.boundingBox());
        matches.append(entry);
    }
    return jsonText(value);
}

/// An engine's options, or why it can't be used.
struct EngineReport {
    OCR::Implementation::Engine engine;
    Json::Value data;
    QString problem;
};

QList<EngineReport> askEngines() {
    QList<EngineReport> reports;
    for (const auto& engine : OCR::Implementation::availableImplementations()) {
        EngineReport report = {engine, {}, {}};
        try {
            report.data = OCR::Implementation::get(engine.name)
                              ->getOptionData(Json::Value(Json::objectValue));
        } catch (const std::exception& error) {
            report.problem = QString::fromUtf8(error.what());
        }
        reports.append(report);
    }
    return reports;
}

/// The members of an array, as people read them: of languages the names.
QString listed(const Json::Value& array) {
    QStringList texts;
    for (const Json::Value& entry : array) {
        const std::string text =
            entry.isObject() ? entry["recordedName"].asString() : entry.asString();
        texts.append(text.empty() ? QStringLiteral("\"\"") : QString::fromStdString(text));
    }
    return texts.join(QStringLiteral(", "));
}

QByteArray enginesText(const QList<EngineReport>& reports) {
    constexpr struct {
        const char* key;
        const char* title;
    } rows[] = {{"languages", "languages"},
                {"engineModes", "modes"},
                {"flavors", "flavors"},
                {"profiles", "preprocessing"},
                {"postprofiles", "postprocessing"}};
    QString text;
    for (const EngineReport& report : reports) {
        text += report.engine.name + '\n';
        if (!report.problem.isEmpty())
            text += QStringLiteral("  not usable: %1\n").arg(escapedForTerminal(report.problem));
        for (const auto& row : rows) {
            if (report.data.isMember(row.key))
                text += QStringLiteral("  %1: %2\n")
                            .arg(QLatin1String(row.title),
                                 escapedForTerminal(listed(report.data[row.key])));
        }
    }
    return text.toLocal8Bit();
}

QByteArray enginesJson(const QList<EngineReport>& reports) {
    Json::Value array(Json::arrayValue);
    for (const EngineReport& report : reports) {
        Json::Value entry = report.problem.isEmpty() ? report.data : report.engine.toJson();
        if (!report.problem.isEmpty())
            entry["problem"] = report.problem.toStdString();
        array.append(entry);
    }
    return jsonText(array);
}

int print(const QByteArray& output, int exitCode) {
    if (!writeBytes(stdout, output))
        return failWith(QStringLiteral("standard output can't be written"));
    return exitCode;
}

int listEngines(const FindTextSettings& settings) {
    const QList<EngineReport> reports = askEngines();
    return print(settings.printsJson ? enginesJson(reports) : enginesText(reports), ExitSuccess);
}

int findText(const FindTextSettings& settings) {
    if (settings.listsEngines)
        return listEngines(settings);
    try {
        const Picture picture = loadPicture(settings.picture);
        const ReadText read = readPicture(settings, picture);
        if (!settings.annotatedFile.isEmpty()) {
            QList<QRect> places;
            for (const Match& match : read.matches)
                places.append(match.boundingBox());
            storeFramed(settings.annotatedFile, picture.image, places);
        }
        return print(settings.printsJson ? jsonOf(read, settings) : textOf(read, settings),
                     read.matches.isEmpty() ? ExitFailure : ExitSuccess);
    } catch (const TypedException& exception) {
        return failWith(QString::fromUtf8(exception.what()));
    } catch (const std::exception& exception) {
        return failWith(fromNativeBytes(exception.what()));
    }
}

}  // namespace

Command findTextCommand() {
    return makeCommand<FindTextSettings>(
        {{"find-text", "[PICTURE [TEXT]]",
          "Reads a screenshot, as scripts do, and prints its words, or the places of a text.", 0,
          2},
         {{"options", "OPTIONS",
           "How to read, in JSON: \"{\\\"scaleFactor\\\": 2, \\\"tesseract\\\": {\\\"psm\\\": "
           "11}}\", "
           "for one.",
           nullptr, readTextOptions},
          {"region", "LEFTxTOPxWIDTHxHEIGHT",
           "Where to read; several rectangles are separated by commas.", nullptr, readTextRegion},
          {"occurrence", "N", "Prints the Nth place of the text only.", nullptr, readOccurrence},
          {"json", nullptr, "Prints JSON.", nullptr, setTo(&FindTextSettings::printsJson, true)},
          {"annotate", "FILE", "Stores the screenshot with frames around what was found.", nullptr,
           readAnnotatedTextFile},
          {"engine", "NAME", "Reads with Tesseract, OCRSpace or Rekognition.", nullptr, readEngine},
          {"engines", nullptr, "Prints what these engines offer.", nullptr,
           setTo(&FindTextSettings::listsEngines, true)}},
         {{"engine", "engines"}},
         readTextArguments,
         findText});
}

}  // namespace Tamrix
