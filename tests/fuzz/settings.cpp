// A settings file: all values in all forms, and the file written and read again.

#include "shared/settings/settings.h"

#include <QFile>
#include <QTemporaryDir>
#include <cstdlib>

#include "fuzz/fuzztarget.h"
#include "fuzz/quietqt.h"

using Tamrix::Settings;

namespace {

void readAll(Settings& settings) {
    for (const QString& group : settings.groupList()) {
        const QStringList keys = settings.entryList(group, QString());
        settings.subkeyList(group, QString());
        for (const QString& key : keys) {
            for (const bool expand : {false, true}) {
                settings.setExpandEnvironment(expand);
                settings.readEntry(group, key);
                settings.readListEntry(group, key);
            }
            settings.readNumEntry(group, key);
            settings.readDoubleEntry(group, key);
            settings.readBoolEntry(group, key);
        }
    }
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    Tamrix::Fuzz::silenceQt();
    ::setenv("A", "b$(C)", 1);
    // In memory: writing waits for the disk otherwise.
    static const QTemporaryDir s_folder(QStringLiteral("/dev/shm/settings-XXXXXX"));
    static const QString s_path = s_folder.filePath(QStringLiteral("settings.ini"));
    QFile file(s_path);
    fuzzRequire(file.open(QIODevice::WriteOnly) &&
                    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size)) ==
                        static_cast<qint64>(size),
                "there is a file");
    file.close();

    Settings settings(s_path);
    readAll(settings);
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data),
                                           static_cast<int>(size < 40 ? size : 40));
    settings.writeEntry(QStringLiteral("Written"), QStringLiteral("text"), text);
    settings.writeEntry(QStringLiteral("Written"), QStringLiteral("list"), QStringList{text, text});
    fuzzRequire(settings.flush(), "the file can be written");

    Settings again(s_path);
    // A text may hold a NUL or half a surrogate pair, which files don't keep.
    if (!text.contains(QChar(0)) && text.isValidUtf16()) {
        fuzzRequire(again.readEntry(QStringLiteral("Written"), QStringLiteral("text")) == text,
                    "a text stays as it was");
        fuzzRequire(again.readListEntry(QStringLiteral("Written"), QStringLiteral("list")) ==
                        QStringList({text, text}),
                    "a list stays as it was");
    }
    return 0;
}
