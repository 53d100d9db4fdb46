// "tamrixrunner cut": a search image out of a screenshot.

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "runner/commands/command.h"
#include "runner/suites/suite.h"
#include "shared/resources/testresource.h"
#include "vision/search/picturefile.h"

namespace Tamrix {

namespace {

struct CutSettings {
    QString screenshot;
    /// In its pixels. Not a QRect, whose far corner may leave the range of numbers.
    struct {
        int x, y, width, height;
    } place = {};
    /// With slashes, below the folder of search images.
    QString name;
    QString suite;
    /// Empty for what all cases share.
    QString testCase;
    bool replaces = false;
};

Outcome<int> readNumber(const QString& text, const char* what, int least) {
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (!isNumber || number < least)
        return wrongUsage(QStringLiteral("%1 is a number from %2 on, not '%3'")
                              .arg(QLatin1String(what), QString::number(least), text));
    return number;
}

Outcome<> readPlace(const QStringList& texts, CutSettings& settings) {
    const struct {
        const char* what;
        int least;
    } parts[] = {{"X", 0}, {"Y", 0}, {"WIDTH", 1}, {"HEIGHT", 1}};
    int numbers[4] = {};
    for (int index = 0; index < 4; ++index) {
        const Outcome<int> number =
            readNumber(texts.at(index), parts[index].what, parts[index].least);
        if (!number)
            return fail(number.error());
        numbers[index] = *number;
    }
    settings.place = {numbers[0], numbers[1], numbers[2], numbers[3]};
    return {};
}

Outcome<> readName(const QString& text, QString* name) {
    const QString clean = QDir::cleanPath(text);
    if (text.isEmpty() || QDir::isAbsolutePath(clean) || clean == QLatin1String("..") ||
        clean.startsWith(QLatin1String("../")) || clean == QLatin1String("."))
        return wrongUsage(QStringLiteral("NAME is a file below the folder of search images, "
                                         "not '%1'")
                              .arg(text));
    const bool hasSuffix = clean.endsWith(QLatin1String(".png"), Qt::CaseInsensitive);
    *name = hasSuffix ? clean : clean + QLatin1String(".png");
    return {};
}

Outcome<> readArguments(const CommandArguments& arguments, CutSettings& settings) {
    settings.screenshot = arguments.own.at(0);
    if (const Outcome<> place = readPlace(arguments.own.mid(1, 4), settings); !place)
        return place;
    if (settings.suite.isEmpty())
        return wrongUsage(QStringLiteral("--suite is missing"));
    return readName(arguments.own.at(5), &settings.name);
}

Outcome<QImage> cutOut(const CutSettings& settings) {
    const Outcome<QImage> read = Vision::readPicture(settings.screenshot);
    if (!read)
        return read;
    const QImage& screenshot = *read;
    const auto& place = settings.place;
    const QRect whole = screenshot.rect();
    if (place.x >= whole.width() || place.width > whole.width() - place.x ||
        place.y >= whole.height() || place.height > whole.height() - place.y)
        return fail(FailureKind::BadArgument,
                    QStringLiteral("the place leaves '%1', which has %2x%3 pixels")
                        .arg(settings.screenshot, QString::number(whole.width()),
                             QString::number(whole.height())));
    QImage part = screenshot.copy(place.x, place.y, place.width, place.height)
                      .convertToFormat(QImage::Format_RGB32);
    // What is known of the whole screenshot is not true of its part.
    for (const QString& key : part.textKeys())
        part.setText(key, QString());
    return part;
}

/// The folder of the case, or that of what all cases share.
Outcome<QString> ownerFolder(const CutSettings& settings) {
    const Outcome<Suite> suite = loadSuite(settings.suite);
    if (!suite)
        return fail(suite.error());
    if (settings.testCase.isEmpty())
        return QDir(suite->directory).filePath(QStringLiteral("shared"));
    const Outcome<QList<SuiteCase>> cases = selectCases(*suite, {settings.testCase});
    if (!cases)
        return fail(cases.error());
    return cases->constFirst().directory;
}

Outcome<QString> store(const CutSettings& settings) {
    const Outcome<QString> owner = ownerFolder(settings);
    if (!owner)
        return owner;
    const Outcome<QImage> image = cutOut(settings);
    if (!image)
        return fail(image.error());
    const QString path = QDir(*owner).filePath(
        TestResource::directoryName(TestResource::SearchImage) + QLatin1Char('/') + settings.name);
    if (QFile::exists(path) && !settings.replaces)
        return fail(FailureKind::Refused,
                    QStringLiteral("'%1' is there already; --replace replaces it").arg(path));
    const QString folder = QFileInfo(path).path();
    if (!QDir().mkpath(folder))
        return fail(FailureKind::Failed,
                    QStringLiteral("the folder '%1' can't be made").arg(folder));
    if (const Outcome<> written = Vision::writePicture(*image, path, "PNG"); !written)
        return fail(FailureKind::Failed, QStringLiteral("the picture '%1' can't be written: %2")
                                             .arg(path, written.error().text));
    return path;
}

int cut(const CutSettings& settings) {
    const Outcome<QString> path = store(settings);
    return path ? show(*path + QLatin1Char('\n')) : failWith(path.error().text);
}

}  // namespace

Command cutCommand() {
    return makeCommand<CutSettings>(
        {{"cut", "SCREENSHOT X Y WIDTH HEIGHT NAME",
          "Cuts a search image of a suite out of a screenshot, and prints where it is.", 6, 6},
         {{"suite", "SUITE", "The suite that gets the image, for all of its cases.", nullptr,
           textTo(&CutSettings::suite)},
          {"case", "CASE", "The one case that gets it.", nullptr, textTo(&CutSettings::testCase)},
          {"replace", nullptr, "Replaces an image of this name.", nullptr,
           setTo(&CutSettings::replaces, true)}},
         {},
         readArguments,
         cut});
}

}  // namespace Tamrix
