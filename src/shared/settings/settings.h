#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include "base/export.h"

namespace Tamrix {

/// Reader and writer of one settings file, a text file of groups, keys and quoted values.
///
/// Short-lived: the constructor reads the whole file, the destructor writes it back if something
/// was changed. Failures are Qt warnings. Two objects on one file are independent; the last to
/// write wins. A missing file is an empty one.
class TAMRIX_EXPORT Settings {
public:
    explicit Settings(const QString& path);
    Settings(const QString& directory, const QString& file);
    /// Writes the file when something was changed; a failure is warned about by flush().
    ~Settings();
    /// A copy starts clean. Only an object without unwritten changes may be copied.
    Settings(const Settings& other);
    Settings& operator=(const Settings& other);

    /// The home folder.
    static QString settingsDir();
    /// The user's settings folder, TAMRIX_USER_SETTINGS_DIR or ".tamrix" below the home folder.
    /// Asking for it creates it.
    static QString tamrixSettingsDir();
    static QString userSettingsDir();
    /// The group that is meant when nothing else is: "General".
    static QString defaultGroup();

    QString path() const { return m_path; }
    bool isDirty() const { return m_dirty; }
    /// While on, readEntry() and readListEntry() replace "$(NAME)" by the environment's value.
    void setExpandEnvironment(bool on) { m_expandEnvironment = on; }

    bool hasGroup(const QString& group) const;
    QStringList groupList() const;

    // Reading gives the default for what is missing or malformed. Keys are normalized first.
    /// The text behind "=" as it stands in the file; false when there is none.
    bool readRawEntry(const QString& group, const QString& key, QString* raw) const;
    QString readEntry(const QString& group, const QString& key,
                      const QString& defaultValue = QString()) const;
    QStringList readListEntry(const QString& group, const QString& key,
                              const QStringList& defaultValue = QStringList()) const;
    int readNumEntry(const QString& group, const QString& key, int defaultValue = 0) const;
    double readDoubleEntry(const QString& group, const QString& key, double defaultValue = 0) const;
    bool readBoolEntry(const QString& group, const QString& key, bool defaultValue = false) const;
    /// The keys below `prefix` that have no further level, without the prefix.
    QStringList entryList(const QString& group, const QString& prefix) const;
    /// The distinct next levels below `prefix`.
    QStringList subkeyList(const QString& group, const QString& prefix) const;

    void writeRawEntry(const QString& group, const QString& key, const QString& raw);
    void writeEntry(const QString& group, const QString& key, const QString& value);
    void writeEntry(const QString& group, const QString& key, const char* value);
    void writeEntry(const QString& group, const QString& key, const QStringList& values);
    void writeEntry(const QString& group, const QString& key, int value);
    void writeEntry(const QString& group, const QString& key, double value);
    void writeEntry(const QString& group, const QString& key, bool value);
    void removeEntry(const QString& group, const QString& key);

    /// Writes the whole file; false, with a warning, when that fails. The object stays dirty.
    bool flush();

private:
    void parse();
    QStringList subkeyOrEntryList(const QString& group, const QString& prefix, bool subkeys) const;

    QMap<QString, QMap<QString, QString>> m_groups;
    QString m_path;
    bool m_dirty = false;
    bool m_expandEnvironment = false;
};

/// The files of the user's settings folder.
enum class UserSettingsType {
    Server = 0,
    WebWrapper = 1,
    TkWrapper = 2,
    Paths = 3,
    Ocr = 4,
    ResultHubCommand = 5
};

/// The files of the installation's etc folder.
enum class GlobalSettingsType { Tamrix = 0, Paths = 1 };

/// A file of the user's settings folder. A value outside the table names no file.
class TAMRIX_EXPORT UserSettings : public Settings {
public:
    explicit UserSettings(UserSettingsType type);
};

/// A file of TAMRIX_PREFIX/etc. A value outside the table names no file.
class TAMRIX_EXPORT GlobalSettings : public Settings {
public:
    explicit GlobalSettings(GlobalSettingsType type);
};

}  // namespace Tamrix
