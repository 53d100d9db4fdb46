// "source": a script's text, for clients that can't read its file themselves.

#include <QFile>
#include <QFileInfo>

#include "dap/requests/request.h"

namespace Tamrix::Dap {

namespace {

constexpr qint64 longestSource = 16 * 1024 * 1024;

Outcome<SourceBody> source(Session&, const SourceArguments& arguments) {
    const QString path = arguments.source ? arguments.source->path.value_or(QString()) : QString();
    if (path.isEmpty())
        return fail(FailureKind::BadArgument, QStringLiteral("'source.path' is missing"));
    // What is no file may keep a reader waiting, or never end.
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile())
        return fail(FailureKind::Refused, QStringLiteral("'%1' is no file").arg(path));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(FailureKind::NotFound,
                    QStringLiteral("'%1' can't be read: %2").arg(path, file.errorString()));
    if (file.size() > longestSource)
        return fail(FailureKind::Refused, QStringLiteral("'%1' is longer than %2 bytes")
                                              .arg(path, QString::number(longestSource)));
    return SourceBody{QString::fromUtf8(file.read(longestSource))};
}

}  // namespace

RequestKind sourceRequest() {
    return makeRequest("source", source);
}

}  // namespace Tamrix::Dap
