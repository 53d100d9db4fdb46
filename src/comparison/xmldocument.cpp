#include "comparison/xmldocument.h"

#include <algorithm>

#include "base/keptwhitespace.h"
#include "base/tinyxmlguard.h"
#include "base/utf8.h"

namespace Tamrix {

namespace {

QByteArray asUtf8(const QByteArray& bytes) {
    const char* position = bytes.constBegin();
    const char* const end = bytes.constEnd();
    int valid = validUtf8Length(position, end);
    if (valid == bytes.size())
        return bytes;
    QByteArray text;
    for (;; valid = validUtf8Length(position, end)) {
        text.append(position, valid);
        position += valid;
        if (position == end)
            return text;
        text.append(QString(QLatin1String(position, 1)).toUtf8());
        ++position;
    }
}

}  // namespace

bool parseXmlDocument(const QByteArray& bytes, TiXmlDocument* document, QString* error) {
    const auto fail = [error](const QString& problem, int row) {
        *error = QStringLiteral("%1 Row: %2").arg(problem, QString::number(row));
        return false;
    };
    const QByteArray text = asUtf8(bytes);
    const TinyXmlCheck check = checkForTinyXml(text);
    if (!check.problem.isEmpty())
        return fail(check.problem, check.row);

    const KeptWhiteSpace keptWhiteSpace;
    const char* const rest = document->Parse(text.constData(), nullptr, TIXML_ENCODING_UTF8);
    if (document->Error())
        return fail(QString::fromUtf8(document->ErrorDesc()), document->ErrorRow());
    // The parser ends at text outside of all elements and tells nobody.
    if (rest && *rest) {
        return fail(QStringLiteral("Text outside of the document's elements."),
                    1 + static_cast<int>(std::count(text.constData(), rest, '\n')));
    }
    return true;
}

}  // namespace Tamrix
