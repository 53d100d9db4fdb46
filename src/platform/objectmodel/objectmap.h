#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include "base/export.h"
#include "base/outcome.h"
#include "platform/objectmodel/object.h"
#include "platform/objectmodel/objectname.h"

namespace Tamrix {

/// The symbolic names of a suite: ":Name" for a real name. Script thread only.
///
/// The file has one entry a line: symbolic name, tab, real name, each with backslash, tab and line
/// feed escaped as \\, \t and \n; a "\" before anything else stands for itself. Empty lines and
/// lines that start with "#" are ignored. A real name may refer to others: a value in quotes that
/// starts with ":" is the symbolic name of another object, also in names nested in each other.
/// Values of properties that are a text for sure (isTextProperty()) never refer to anything.
class TAMRIX_EXPORT ObjectMap {
public:
    static ObjectMap* self();

    /// The name that `name`, a symbolic or a real one, stands for, with every symbolic name in it
    /// replaced. Fails when the name is malformed, unknown or refers to itself.
    Outcome<ObjectName> resolve(const QString& name) const;
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
    QStringList symbolicNames() const { return m_names.keys(); }

    /// Replaces the map by a file's entries. On failure, which names file, line and fault, the map
    /// is empty.
    Outcome<> load(const QString& path);
    /// Does the same if the file is not any more what load() has read, or there was none, going by
    /// its time stamp. On failure the map stays as it is. Names that were made beside the file are
    /// kept.
    Outcome<> loadIfChanged(const QString& path);
    void clear();

    /// Entries of the text form, by symbolic name; faulty lines are left out and named in `*error`
    /// when it is given.
    static QMap<QString, ObjectName> parseSerializedMap(const QString& text,
                                                        QString* error = nullptr);
    static QString escapeForSerialize(const QString& text);

private:
    QMap<QString, ObjectName> m_names;
    /// Those of them that were made beside the file.
    QStringList m_madeNames;
    /// Of the file that was read; empty without one.
    QString m_fileStamp;
};

/// Whether the values of this property of a name are texts: "text", "name", "type"...
TAMRIX_EXPORT bool isTextProperty(const QString& property);

}  // namespace Tamrix
