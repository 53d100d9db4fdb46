#include "platform/testresult/testvp.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImageWriter>
#include <memory>

#include "base/filewriting.h"
#include "platform/testresult/resulttext.h"
#include "platform/testresult/resulttypes.h"

namespace Tamrix {

namespace {

TestVP::ScreenshotServices& screenshotServices() {
    static TestVP::ScreenshotServices s_services;
    return s_services;
}

/// Makes a file of a new name, the base name with a number from 1, for a picture; null when that
/// fails, with `*path` the name that was tried last.
std::unique_ptr<QFile> createPictureFile(const QDir& directory, const QString& baseName,
                                         QString* path) {
    auto file = std::make_unique<QFile>();
    for (int number = 1;; ++number) {
        *path =
            directory.filePath(QStringLiteral("%1_%2.png").arg(baseName, QString::number(number)));
        file->setFileName(*path);
        // Another process may take the name between a look and the opening, so that the opening
        // itself decides.
        if (file->open(QIODevice::WriteOnly | QIODevice::NewOnly))
            return file;
        if (!file->exists())
            return nullptr;
    }
}

/// Stores a picture; its path, or an empty text after a warning when that fails.
QString storePicture(const QDir& directory, const QString& baseName, const QImage& picture) {
    if (!directory.mkpath(QStringLiteral("."))) {
        qWarning("No screenshot is stored: the directory '%s' could not be created",
                 qUtf8Printable(directory.path()));
        return QString();
    }
    QString path;
    const std::unique_ptr<QFile> file = createPictureFile(directory, baseName, &path);
    if (!file) {
        qWarning("The screenshot '%s' could not be created", qUtf8Printable(path));
        return QString();
    }
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    QImageWriter writer(&bytes, "png");
    QString reason;
    if (!writer.write(picture))
        reason = writer.errorString();
    else
        writeAll(file.get(), bytes.data(), &reason);
    if (reason.isEmpty())
        return path;
    qWarning("The screenshot '%s' could not be written: %s", qUtf8Printable(path),
             qUtf8Printable(reason));
    file->remove();
    return QString();
}

}  // namespace

void TestVP::setScreenshotServices(const ScreenshotServices& services) {
    screenshotServices() = services;
}

bool TestVP::wantLogScreenshotForResult(const VerificationOptions& options,
                                        TestResult::ResultType type) {
    switch (type) {
        case TestResult::Pass:
        case TestResult::ExpectedFail:
            return options.testFlag(VerificationOptions::LogScreenshotOnPass);
        case TestResult::Fail:
        case TestResult::UnexpectedPass:
            return options.testFlag(VerificationOptions::LogScreenshotOnFail);
        case TestResult::Warning:
            return options.testFlag(VerificationOptions::LogScreenshotOnWarning);
        case TestResult::Error:
        case TestResult::Fatal:
            return options.testFlag(VerificationOptions::LogScreenshotOnError);
        case TestResult::SectionStart:
        case TestResult::SectionEnd:
        case TestResult::Skipped:
        case TestResult::Log:
            break;
    }
    return false;
}

QString TestVP::logScreenshot(RunnerInterface* runner, TestResult::ResultType type,
                              const QImage& image) {
    const ScreenshotServices& services = screenshotServices();
    if (!runner || !services.directory)
        return QString();
    const QString directoryPath = services.directory(runner);
    if (directoryPath.isEmpty())
        return QString();
    const QDir directory(directoryPath);

    QImage picture = image;
    if (picture.isNull() && services.grabDesktop)
        picture = services.grabDesktop(runner);
    if (picture.isNull()) {
        qWarning("No screenshot is stored in '%s': there is no picture of the desktop",
                 qUtf8Printable(directoryPath));
        return QString();
    }

    const QString kind = resultTypeName(type).remove(QLatin1Char(' ')).toLower();
    const QString path =
        storePicture(directory, QStringLiteral("screenshot_%1").arg(kind), picture);
    if (path.isEmpty())
        return QString();
    const ResultTypeInfo* const info = resultTypeInfo(type);
    if (info && info->isFailure && services.keepMoment)
        services.keepMoment(runner, directoryPath);
    return screenshotNote(QDir::toNativeSeparators(path));
}

void TestVP::attachPictures(TestResult* result, RunnerInterface* runner, const QImage& expected,
                            const QImage& actual, const QImage& difference) {
    const ScreenshotServices& services = screenshotServices();
    const QString directory = runner && services.directory ? services.directory(runner) : QString();
    if (directory.isEmpty())
        return;
    const struct {
        const QImage& picture;
        const char* baseName;
        const char* message;
    } rows[] = {
        {expected, "expected", "Expected"},
        {actual, "actual", "Actual"},
        {difference, "difference", "Difference"},
    };
    for (const auto& row : rows) {
        if (row.picture.isNull())
            continue;
        const QString path =
            storePicture(QDir(directory), QLatin1String(row.baseName), row.picture);
        if (!path.isEmpty())
            result->addResultAttachment(TestResult::ImageAttachment, QLatin1String(row.message),
                                        path);
    }
}

}  // namespace Tamrix
