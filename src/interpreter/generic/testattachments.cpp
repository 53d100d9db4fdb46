#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "base/filewriting.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/runneraccess.h"
#include "interpreter/generic/testfunctions.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

namespace {

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
    // 3. The folder that it goes to,
    const QFileInfo target =
        attachmentResultsPath(runner->currentResultDirectory(), runner->testCasePath(), &error);
    // 4. which is made when it is not there.
    if (error.isEmpty())
        error = ensureResultPathExists(target);
    if (!error.isEmpty()) {
        context->setError(error);
        return;
    }
    // 5. A name that is free there.
    const QString targetPath = calculateTargetFileName(target.filePath(), source);
    // 6. The copy.
    error = copyInBlocks(source.filePath(), targetPath);
    if (!error.isEmpty()) {
        context->setError(QString("Error copying file '%1' as attachment into report: %2.")
                              .arg(source.filePath(), error));
        return;
    }
    // 7. The result.
    if (TestResult* result = context->testResult())
        result->addAttachment(TestResult::FileAttachment, message, targetPath,
                              context->callStackForResult(false));
    context->setNullResult();
}

}  // namespace Tamrix
