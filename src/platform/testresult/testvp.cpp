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

/// Makes a file NAME_NUMBER.png that isn't there yet; null when that fails, with `*path` the name
/// that was tried last.
std::unique_ptr<QFile> createPictureFile(const QDir& directory, const QString& name,
                                         QString* path) {
    auto file = std::make_unique<QFile>();
    for (int number = 1;; ++number) {
        *path = directory.filePath(QStringLiteral("%1_%2.png").arg(name, QString::number(number)));
        file->setFileName(*path);
        // Another process may take the name between a look and the opening, so that the opening
        // itself decides.
        if (file->open(QIODevice::WriteOnly | QIODevice::NewOnly))
            return file;
        if (!file->exists())
            return nullptr;
    }
}

/// The folder for pictures of the running test case; an empty text when there is none.
QString pictureFolder(RunnerInterface* runner) {
    const TestVP::ScreenshotServices& services = screenshotServices();
    return runner && services.directory ? services.directory(runner) : QString();
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
    const QString folder = pictureFolder(runner);
    if (folder.isEmpty())
        return QString();
    QImage picture = image;
    if (picture.isNull() && services.grabDesktop)
        picture = services.grabDesktop(runner);
    if (picture.isNull()) {
        qWarning("No screenshot is stored in '%s': there is no picture of the desktop",
                 qUtf8Printable(folder));
        return QString();
    }
    const QString kind = resultTypeName(type).remove(QLatin1Char(' ')).toLower();
    const QString path = storePicture(runner, QStringLiteral("screenshot_") + kind, picture);
    if (path.isEmpty())
        return QString();
    const ResultTypeInfo* const info = resultTypeInfo(type);
    if (info && info->isFailure && services.keepMoment)
        services.keepMoment(runner, folder);
    return screenshotNote(QDir::toNativeSeparators(path));
}

QString TestVP::storePicture(RunnerInterface* runner, const QString& name, const QImage& picture) {
    const QString folder = pictureFolder(runner);
    if (folder.isEmpty())
        return QString();
    const QDir directory(folder);
    if (!directory.mkpath(QStringLiteral("."))) {
        qWarning("No screenshot is stored: the directory '%s' could not be created",
                 qUtf8Printable(folder));
        return QString();
    }
    QString path;
    const std::unique_ptr<QFile> file = createPictureFile(directory, name, &path);
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
    if (!reason.isEmpty()) {
        qWarning("The screenshot '%s' could not be written: %s", qUtf8Printable(path),
                 qUtf8Printable(reason));
        file->remove();
        return QString();
    }
    return path;
}

void TestVP::attachPictures(TestResult* result, RunnerInterface* runner, const QImage& expected,
                            const QImage& actual, const QImage& difference) {
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
        const QString path = storePicture(runner, QLatin1String(row.baseName), row.picture);
        if (!path.isEmpty())
            result->addResultAttachment(TestResult::ImageAttachment, QLatin1String(row.message),
                                        path);
    }
}

}  // namespace Tamrix
