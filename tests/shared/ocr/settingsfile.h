#pragma once

#include <QFile>
#include <QList>
#include <QString>

#include "shared/settings/settings.h"

namespace Tamrix::OCR {

struct SettingsEntry {
    const char* group;
    const char* key;
    QString value;
};

/// Writes a new file of settings and reads it.
inline Settings settingsFile(const QString& path, const QList<SettingsEntry>& entries) {
    QFile::remove(path);
    {
        Settings settings(path);
        for (const SettingsEntry& entry : entries)
            settings.writeEntry(entry.group, entry.key, entry.value);
    }
    return Settings(path);
}

}  // namespace Tamrix::OCR
