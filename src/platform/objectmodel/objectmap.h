#pragma once

#include <QHash>
#include <QMap>
#include <QString>
#include <QStringList>
#include <memory>

#include "base/export.h"
#include "base/outcome.h"
#include "platform/objectmodel/object.h"
#include "platform/objectmodel/objectname.h"

namespace Tamrix {

/// The symbolic names of a suite: ":Name" for a real name. Script thread only.
///
/// This is a plain map, a file with one entry a line: symbolic name, tab, real name, each with
/// backslash, tab and line feed escaped as \\, \t and \n; a "\" before anything else stands for
/// itself. Empty lines and lines that start with "#" are ignored. A real name may refer to others:
/// a value in quotes that starts with ":" is the symbolic name of another object, also in names
/// nested in each other. Values of properties that are a text for sure (isTextProperty()) never
/// refer to anything.
///
/// Names that are kept in other ways derive from it: they bring the entries, all else is the same.
class TAMRIX_EXPORT ObjectMap {
public:
    ObjectMap() = default;
    virtual ~ObjectMap() = default;
    ObjectMap(const ObjectMap&) = delete;
    ObjectMap& operator=(const ObjectMap&) = delete;

    /// The map in use. Not to be kept: another one may come into use.
    static ObjectMap* self();
    /// Brings a map into use and deletes the one that was; null for a plain one without entries.
    static void use(std::unique_ptr<ObjectMap> map);

    /// The name that `name`, a symbolic or a real one, stands for, with every symbolic name in it
    /// replaced. Fails when the name is malformed, unknown or refers to itself.
    Outcome<ObjectName> resolve(const QString& name);
    /// The same for scripts: invalid (without properties) on failure, with Inspector::lastError()
    /// set.
    ObjectName objectName(const QString& name);
    /// The real name in text form; empty on failure, as objectName().
    QString realName(const QString& name);
    /// The object's own real name; empty for null.
    QString realName(SharedPtr<Object> object);
    /// The symbolic name of a real name, empty when the map has none. With `createIfMissing` a new
    /// one is made and kept in the map, not in its file.
    QString symbolicName(const QString& name, bool createIfMissing = false);
    QString symbolicName(SharedPtr<Object> object, bool createIfMissing = false);
    /// All of them, sorted. Fails when the map can't be read.
    Outcome<QStringList> symbolicNames();

    /// The entries, with the references in them as they are. Fails when the map can't be read.
    Outcome<QMap<QString, ObjectName>> names();

    /// The symbolic name of an object, for which a new entry is written to the map's file when it
    /// has none: behind all others, with the file left as it is otherwise, whole or not at all.
    /// Fails when the map has no file, when that can't be written, and for a faulty one.
    Outcome<QString> add(const SharedPtr<Object>& object);

    /// The map's file, whether it is there or not; empty for a map without.
    QString path() const { return m_path; }
    /// Sets the file without reading it.
    void setPath(const QString& path) { m_path = path; }
    /// Replaces the map by a file's entries. On failure, which names file, line and fault, the map
    /// is empty.
    virtual Outcome<> load(const QString& path);
    /// Does the same if the file is not any more what load() has read, or there was none, going by
    /// its time stamp. On failure the map stays as it is. Names that were made beside the file are
    /// kept.
    virtual Outcome<> loadIfChanged(const QString& path);
    virtual void clear();

    /// Entries of the text form, by symbolic name; faulty lines are left out and named in `*error`
    /// when it is given.
    static QMap<QString, ObjectName> parseSerializedMap(const QString& text,
                                                        QString* error = nullptr);
    static QString escapeForSerialize(const QString& text);
    /// One line for each entry, without the last one's end.
    static QString serialized(const QMap<QString, QString>& realNames);

protected:
    // What a map that is kept in another way does otherwise.
    /// Brings the entries up to date before they are asked for. What it fails with is the reason
    /// why names are not found.
    virtual Outcome<> update() { return {}; }
    /// The key that a text means, empty when it is no symbolic name.
    virtual QString keyOf(const QString& name) const;
    /// The key of a new entry, which the map has not.
    virtual QString newKey(const ObjectName& name);
    /// The file's content with a new entry, whose references are keys of the map.
    virtual Outcome<QByteArray> contentWith(const QByteArray& content, const QString& key,
                                            const ObjectName& name);

    const QMap<QString, ObjectName>& entries() const { return m_names; }
    /// Replaces the entries; names that were made beside the file are kept.
    void setEntries(const QMap<QString, ObjectName>& names);
    /// The key of a name without references, empty when the map has none.
    QString keyOfResolved(const ObjectName& name);
    /// The name with the keys of the map in the place of nested names that they stand for.
    ObjectName referring(const ObjectName& name);

private:
    void insert(const QString& key, const ObjectName& name);
    Outcome<> writeEntry(const QString& key);

    QMap<QString, ObjectName> m_names;
    /// Keys by what they stand for, made when they are asked for.
    QHash<QString, QString> m_keys;
    bool m_hasKeys = false;
    /// Those names that were made beside the file.
    QStringList m_madeNames;
    QString m_path;
    /// Of the file that was read; empty without one.
    QString m_fileStamp;
};

/// Whether the values of this property of a name are texts: "text", "name", "type"...
TAMRIX_EXPORT bool isTextProperty(const QString& property);

}  // namespace Tamrix
