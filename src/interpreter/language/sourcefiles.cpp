#include "interpreter/language/sourcefiles.h"

#include <QDir>
#include <algorithm>

#include "base/utf8file.h"
#include "interpreter/bridge/debugger.h"
#include "interpreter/language/looseutf8.h"

namespace Tamrix {

Outcome<QString> readSource(const QString& path) {
    const Outcome<Utf8Text> content = readUtf8File(path);
    if (!content)
        return fail(content.error().kind, QStringLiteral("%1: %2").arg(path, content.error().text));
    if (content->faultyLine > 0)
        return fail(FailureKind::Failed, QStringLiteral("%1:%2: the file is not encoded in UTF-8")
                                             .arg(path, QString::number(content->faultyLine)));
    return content->text;
}

bool SourceFiles::isUnbracketed(const QByteArray& name) {
    return !name.startsWith('<') && !name.startsWith('(');
}

void SourceFiles::addLibrary(const QString& folder) {
    m_libraries.append(Debugger::sanitizedFilePath(QDir::cleanPath(folder)) + '/');
}

void SourceFiles::addAlias(const QByteArray& name, const QString& path) {
    m_files.insert(name, {Debugger::sanitizedFilePath(path), true});
}

const SourceFiles::File& SourceFiles::file(const char* name) {
    // Most names are known: they are looked up without a copy.
    const QByteArray given = QByteArray::fromRawData(name, static_cast<int>(qstrlen(name)));
    const auto known = m_files.constFind(given);
    if (known != m_files.constEnd())
        return *known;
    File made;
    if (!given.isEmpty() && m_isFile(given)) {
        made.path = Debugger::sanitizedFilePath(fromLooseUtf8(given.constData(), given.size()));
        made.isScript =
            std::none_of(m_libraries.cbegin(), m_libraries.cend(),
                         [&made](const QString& folder) { return made.path.startsWith(folder); });
    }
    return *m_files.insert(QByteArray(given.constData(), given.size()), made);
}

}  // namespace Tamrix
