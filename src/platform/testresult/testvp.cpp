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

/// Makes a file of a new name for a screenshot; null when that fails, with `*path` the name that
/// was tried last.
std::unique_ptr<QFile> createScreenshotFile(const QDir& directory, TestResult::ResultType type,
                                            QString* path) {
    const QString kind = resultTypeName(type).remove(QLatin1Char(' ')).toLower();
    auto file = std::make_unique<QFile>();
    for (int number = 1;; ++number) {
        *path = directory.filePath(
            QStringLiteral("screenshot_%1_%2.png").arg(kind, QString::number(number)));
        file->setFileName(*path);
        // Another process may take the name between a look and the opening, so that the opening
        // itself decides.
        if (file->open(QIODevice::WriteOnly | QIODevice::NewOnly))
            return file;
        if (!file->exists())
            return nullptr;
    }
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

    if (!directory.mkpath(QStringLiteral("."))) {
        qWarning("No screenshot is stored: the directory '%s' could not be created",
                 qUtf8Printable(directoryPath));
        return QString();
    }
    QString path;
    const std::unique_ptr<QFile> file = createScreenshotFile(directory, type, &path);
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
    const ResultTypeInfo* const info = resultTypeInfo(type);
    if (info && info->isFailure && services.keepMoment)
        services.keepMoment(runner, directoryPath);
    return screenshotNote(QDir::toNativeSeparators(path));
}

}  // namespace Tamrix
