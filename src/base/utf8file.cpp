#include "base/utf8file.h"

#include <QFile>

#include "base/utf8.h"
#include "base/wholetext.h"

namespace Tamrix {

Outcome<Utf8Text> readUtf8File(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(FailureKind::Failed, file.errorString());
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return fail(FailureKind::Failed, file.errorString());
    Utf8Text content;
    content.text = wholeUtf8(bytes);
    const int valid = validUtf8Length(bytes.cbegin(), bytes.cend());
    if (valid < bytes.size())
        content.faultyLine = bytes.left(valid).count('\n') + 1;
    return content;
}

}  // namespace Tamrix
