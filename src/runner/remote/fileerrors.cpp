#include "runner/remote/fileerrors.h"

#include <QRandomGenerator>
#include <cerrno>

namespace Tamrix {

namespace {

struct ProblemRow {
    FileProblem problem;
    /// 0 for what no errno tells.
    int errorNumber;
    FailureKind kind;
    const char* text;
};

const ProblemRow rows[] = {
    {FileProblem::NotThere, ENOENT, FailureKind::NotFound, "'%1' does not exist"},
    {FileProblem::ExistsAlready, EEXIST, FailureKind::Refused, "'%1' exists already"},
    {FileProblem::NoPermission, EACCES, FailureKind::Refused, "no permission for '%1'"},
    {FileProblem::NoPermission, EPERM, FailureKind::Refused, "no permission for '%1'"},
    {FileProblem::NoDirectory, ENOTDIR, FailureKind::Refused,
     "'%1' is not in a folder, or is none"},
    {FileProblem::IsDirectory, EISDIR, FailureKind::Refused, "'%1' is a folder"},
    {FileProblem::NoFile, 0, FailureKind::Refused, "'%1' is no file"},
    {FileProblem::LeadsNowhere, ELOOP, FailureKind::Refused, "'%1' is a link that leads nowhere"},
    {FileProblem::NotEmpty, ENOTEMPTY, FailureKind::Refused, "the folder '%1' is not empty"},
    {FileProblem::NoSpace, ENOSPC, FailureKind::Failed, "no space is left for '%1'"},
    {FileProblem::NoName, ENAMETOOLONG, FailureKind::BadArgument, "'%1' can't be a path"},
};

Failure told(const ProblemRow& row, const QString& path) {
    return {row.kind, QString(QLatin1String(row.text)).arg(path)};
}

}  // namespace

Failure fileFailure(FileProblem problem, const QString& path) {
    for (const ProblemRow& row : rows) {
        if (row.problem == problem)
            return told(row, path);
    }
    return {FailureKind::Failed, QStringLiteral("'%1' can't be used").arg(path)};
}

Failure fileFailure(int errorNumber, const QString& path) {
    for (const ProblemRow& row : rows) {
        if (row.errorNumber == errorNumber && errorNumber != 0)
            return told(row, path);
    }
    return {FailureKind::Failed,
            QStringLiteral("'%1': %2").arg(path, qt_error_string(errorNumber))};
}

Failure creationFailure(const Failure& failure, const QString& path) {
    if (failure.kind != FailureKind::NotFound)
        return failure;
    return {FailureKind::NotFound, QStringLiteral("the folder of '%1' does not exist").arg(path)};
}

Outcome<> checkPath(const QString& path) {
    if (path.isEmpty())
        return fail(FailureKind::BadArgument, QStringLiteral("the path is empty"));
    if (path.contains(QChar(0))) {
        return fail(FailureKind::BadArgument,
                    QStringLiteral("the path holds a NUL: '%1'").arg(path.section(QChar(0), 0, 0)));
    }
    return {};
}

QString partPath(const QString& path) {
    const QString folder = path.left(path.lastIndexOf(QLatin1Char('/')) + 1);
    return QStringLiteral("%1.tamrix-%2.part")
        .arg(folder, QString::number(QRandomGenerator::system()->generate64(), 16));
}

}  // namespace Tamrix
