#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "base/filewriting.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/imagefiles.h"
#include "interpreter/generic/imageobjects.h"
#include "interpreter/generic/runneraccess.h"
#include "interpreter/generic/testfunctions.h"
#include "platform/testresult/testresult.h"
#include "vision/search/picturefile.h"

namespace Tamrix {

namespace {

constexpr const char* noTextMessage =
    "Informational message for the screenshot must be provided as string.";

/// Copies block by block to a file that is open; returns why it failed, empty on success.
QString copyInBlocks(const QString& sourcePath, QFile* target) {
    constexpr qint64 blockSize = 1 << 20;

    QFile source(sourcePath);
    if (!source.open(QIODevice::ReadOnly))
        return QString("Opening '%1' for reading failed: %2").arg(sourcePath, source.errorString());
    QString error;
    QString reason;
    QByteArray block;
    while (error.isEmpty() && !(block = source.read(blockSize)).isEmpty()) {
        if (!writeAll(target, block, &reason))
            error = QString("Writing to '%1' failed: %2").arg(target->fileName(), reason);
    }
    if (error.isEmpty() && source.error() != QFileDevice::NoError)
        error = QString("Reading from '%1' failed: %2").arg(sourcePath, source.errorString());
    return error;
}

/// The checks of the arguments; returns an error text, empty when they are right.
QString attachFileArguments(ScriptContext* context, QString* path, QString* message) {
    if (context->argumentCount() < 1)
        return "Expected at least one argument";
    if (!context->argument(0)->isString())
        return "File path to attach to the report must be provided as string.";
    *path = context->argument(0)->toString();
    if (path->isEmpty())
        return "File path to attach to the report must not be empty.";
    if (context->argumentCount() > 1) {
        if (!context->argument(1)->isString())
            return "Message argument needs to be a string.";
        *message = context->argument(1)->toString();
    }
    return {};
}

/// The folder for attachments of the running test case, which is made.
Outcome<QString> attachmentFolder(RunnerInterface* runner) {
    QString error;
    // 1. Its path.
    const QFileInfo folder =
        attachmentResultsPath(runner->currentResultDirectory(), runner->testCasePath(), &error);
    // 2. It is made when it is not there.
    if (error.isEmpty())
        error = ensureResultPathExists(folder);
    if (!error.isEmpty())
        return fail(FailureKind::Failed, error);
    return folder.filePath();
}

/// Adds an attachment to the results and ends the call.
void addAttachment(ScriptContext* context, TestResult::AttachmentType type, const QString& message,
                   const QString& path) {
    if (TestResult* result = context->testResult())
        result->addAttachment(type, message, QFileInfo(path).absoluteFilePath(),
                              context->callStackForResult(false));
    context->setNullResult();
}

/// The checks of the file; makes its path absolute.
QString checkedSourceFile(QFileInfo& source) {
    source.makeAbsolute();
    if (source.isRelative())
        return QString(
                   "Cannot attach files using relative path '%1'. Converting the path to an "
                   "absolute path failed.")
            .arg(source.filePath());
    if (!source.exists())
        return QString("Cannot attach non-existing file at '%1'. Specify an existing path instead.")
            .arg(source.filePath());
    if (!source.isFile())
        return QString("The specified path at '%1' is not a file, only files can be attached.")
            .arg(source.filePath());
    return {};
}

}  // namespace

QFileInfo attachmentResultsPath(const QString& resultDirectory, const QString& testCasePath,
                                QString* error) {
    const QDir caseDirectory = QFileInfo(testCasePath).dir();
    if (resultDirectory.isEmpty()) {
        QFileInfo target(QDir::cleanPath(caseDirectory.filePath("../attachments")));
        target.setCaching(false);
        return target;
    }
    if (QDir::isRelativePath(resultDirectory)) {
        *error = QString("Result directory '%1' is not absolute, cannot attach files to the report")
                     .arg(resultDirectory);
        return {};
    }
    const QFileInfo result(QDir::cleanPath(resultDirectory));
    if (!result.exists() && !result.dir().mkdir(result.fileName())) {
        *error = QString(
                     "Result directory '%1' could not be created, cannot attach files to the "
                     "report")
                     .arg(resultDirectory);
        return {};
    }
    const QString suiteName = QFileInfo(caseDirectory.absolutePath()).dir().dirName();
    QFileInfo target(
        QString("%1/%2/%3").arg(result.filePath(), suiteName, caseDirectory.dirName()) +
        "/attachments");
    target.setCaching(false);
    return target;
}

QString ensureResultPathExists(const QFileInfo& directory) {
    if (directory.exists() || QDir().mkpath(directory.filePath()))
        return {};
    return QString("Could not create report directory '%1'.").arg(directory.filePath());
}

QString calculateTargetFileName(const QString& directory, const QFileInfo& source) {
    const QDir target(directory);
    QString path = target.filePath(source.fileName());
    for (int counter = 1; QFile::exists(path); ++counter)
        // The point stays behind a name without suffix.
        path = target.filePath(
            QString("%1_%2.%3")
                .arg(source.baseName(), QString::number(counter), source.completeSuffix()));
    return path;
}

bool createTargetFile(const QString& directory, const QFileInfo& source, QFile* file) {
    // Another process may take the name between the look and the opening, which itself decides.
    do {
        file->setFileName(calculateTargetFileName(directory, source));
        if (file->open(QIODevice::WriteOnly | QIODevice::NewOnly))
            return true;
    } while (file->exists());
    return false;
}

void testAttachFile(ScriptContext* context) {
    // 1. The arguments.
    QString path;
    QString message = QStringLiteral("Attached File");
    QString error = attachFileArguments(context, &path, &message);
    // 2. The file.
    QFileInfo source(path);
    if (error.isEmpty())
        error = checkedSourceFile(source);
    if (!error.isEmpty()) {
        context->setError(error);
        return;
    }
    RunnerInterface* const runner = runnerFor("attachFile");
    if (!runner)
        return;
    // 3. to 5. Its place, under a name that is free.
    const Outcome<QString> folder = attachmentFolder(runner);
    if (!folder) {
        context->setError(folder.error().text);
        return;
    }
    QFile target;
    if (!createTargetFile(*folder, source, &target))
        error = QString("Opening '%1' for writing failed: %2")
                    .arg(target.fileName(), target.errorString());
    // 6. The copy.
    else if (error = copyInBlocks(source.filePath(), &target); !error.isEmpty())
        target.remove();
    if (!error.isEmpty()) {
        context->setError(QString("Error copying file '%1' as attachment into report: %2.")
                              .arg(source.filePath(), error));
        return;
    }
    // 7. The result.
    addAttachment(context, TestResult::FileAttachment, message, target.fileName());
}

void testAttachImage(ScriptContext* context) {
    const auto refuse = [context](const char* error) { context->setError(error); };
    // 1. The picture.
    if (context->argumentCount() < 1)
        return refuse("Expected at least one argument");
    if (context->argumentCount() > 2)
        return refuse("Expected at most two arguments");
    const auto picture = context->argument(0)->toNative<ImageScriptObject>();
    if (!picture)
        return refuse("The attachment argument must be an image");
    // 2. The message.
    QString message = QStringLiteral("Attached image");
    if (context->argument(1)) {
        if (!context->argument(1)->isString())
            return refuse(noTextMessage);
        message = context->argument(1)->toString();
    }
    RunnerInterface* const runner = runnerFor("attachImage");
    if (!runner)
        return;
    // 3. Its place.
    const Outcome<QString> folder = attachmentFolder(runner);
    if (!folder)
        return context->setError(folder.error().text);
    // 4. The file.
    QFile target;
    QString error;
    if (!createTargetFile(*folder, QFileInfo("image.png"), &target)) {
        error = target.errorString();
    } else if (const auto written = Vision::writePicture(picture->image, target.fileName(), "PNG");
               !written) {
        error = written.error().text;
        target.remove();
    }
    if (!error.isEmpty())
        return context->setError("Error writing image file: " + error);
    // 5. The result.
    addAttachment(context, TestResult::ImageAttachment, message, target.fileName());
}

void testAttachDesktopScreenshot(ScriptContext* context) {
    const auto refuse = [context](const char* error) { context->setError(error); };
    // 1. The message.
    if (context->argumentCount() < 1)
        return refuse("Expected at least one argument");
    if (!context->argument(0)->isString())
        return refuse(noTextMessage);
    const QString message = context->argument(0)->toString();
    if (message.isEmpty())
        return refuse("Informational message for the screenshot must not be empty.");
    RunnerInterface* const runner = runnerFor("attachDesktopScreenshot");
    if (!runner)
        return;
    // 2. Its place.
    const Outcome<QString> folder = attachmentFolder(runner);
    if (!folder)
        return context->setError(folder.error().text);
    // 3. The file.
    QFile target;
    QString error;
    if (!createTargetFile(*folder, QFileInfo("desktop_screenshot.png"), &target))
        error =
            QString("Failed to save \"%1\" file: %2").arg(target.fileName(), target.errorString());
    else if (error = saveScreenshotFromCurrentAutContext(QFileInfo(target), "PNG");
             !error.isEmpty())
        target.remove();
    if (!error.isEmpty())
        return context->setError(error);
    // 4. The result.
    addAttachment(context, TestResult::ImageAttachment, message, target.fileName());
}

}  // namespace Tamrix
