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

/// Copies block by block; returns why it failed, empty on success. A target that could not be
/// written whole is removed.
QString copyInBlocks(const QString& sourcePath, const QString& targetPath) {
    constexpr qint64 blockSize = 1 << 20;

    QFile source(sourcePath);
    if (!source.open(QIODevice::ReadOnly))
        return QString("Opening '%1' for reading failed: %2").arg(sourcePath, source.errorString());
    if (QFile::exists(targetPath))
        return QString("Target file '%1' exists, will not overwrite.").arg(targetPath);
    QFile target(targetPath);
    if (!target.open(QIODevice::WriteOnly))
        return QString("Opening '%1' for writing failed: %2").arg(targetPath, target.errorString());

    QString error;
    QString reason;
    QByteArray block;
    while (error.isEmpty() && !(block = source.read(blockSize)).isEmpty()) {
        if (!writeAll(&target, block, &reason))
            error = QString("Writing to '%1' failed: %2").arg(targetPath, reason);
    }
    if (error.isEmpty() && source.error() != QFileDevice::NoError)
        error = QString("Reading from '%1' failed: %2").arg(sourcePath, source.errorString());
    if (!error.isEmpty())
        target.remove();
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

/// The path of a new attachment of the running test case, named like `source`. The folder is made.
Outcome<QString> attachmentPath(RunnerInterface* runner, const QFileInfo& source) {
    QString error;
    // 1. The folder that it goes to,
    const QFileInfo folder =
        attachmentResultsPath(runner->currentResultDirectory(), runner->testCasePath(), &error);
    // 2. which is made when it is not there.
    if (error.isEmpty())
        error = ensureResultPathExists(folder);
    if (!error.isEmpty())
        return fail(FailureKind::Failed, error);
    // 3. A name that is free there.
    return calculateTargetFileName(folder.filePath(), source);
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
    // 3. to 5. Its place.
    const Outcome<QString> target = attachmentPath(runner, source);
    if (!target) {
        context->setError(target.error().text);
        return;
    }
    // 6. The copy.
    error = copyInBlocks(source.filePath(), *target);
    if (!error.isEmpty()) {
        context->setError(QString("Error copying file '%1' as attachment into report: %2.")
                              .arg(source.filePath(), error));
        return;
    }
    // 7. The result.
    addAttachment(context, TestResult::FileAttachment, message, *target);
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
    const Outcome<QString> target = attachmentPath(runner, QFileInfo("image.png"));
    if (!target)
        return context->setError(target.error().text);
    // 4. The file.
    const Outcome<> written = Vision::writePicture(picture->image, *target, "PNG");
    if (!written)
        return context->setError("Error writing image file: " + written.error().text);
    // 5. The result.
    addAttachment(context, TestResult::ImageAttachment, message, *target);
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
    const Outcome<QString> target = attachmentPath(runner, QFileInfo("desktop_screenshot.png"));
    if (!target)
        return context->setError(target.error().text);
    // 3. The file.
    const QString error = saveScreenshotFromCurrentAutContext(QFileInfo(*target), "PNG");
    if (!error.isEmpty())
        return context->setError(error);
    // 4. The result.
    addAttachment(context, TestResult::ImageAttachment, message, *target);
}

}  // namespace Tamrix
