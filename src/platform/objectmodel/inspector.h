#pragma once

#include <QList>
#include <QMap>
#include <QPair>
#include <QString>
#include <QStringList>

#include "base/export.h"

namespace Tamrix {

/// The process-wide entry to the object model. Script thread only.
///
/// So far it keeps what toolkit wrappers say about classes, for the applications that connect
/// later, and the error text of the last look-up.
class TAMRIX_EXPORT Inspector {
public:
    /// What the wrappers set for one class.
    struct ClassSettings {
        QString uniqueProperty;
        bool allowKeyEventCompression = false;
        bool eventCompression = false;
        QStringList propertyDelegates;
        bool mouseTracking = false;
        bool recordMouseDrag = false;
    };

    static Inspector* self();

    /// Why the last look-up failed.
    QString lastError() const { return m_lastError; }
    /// An empty text clears it.
    void setLastError(const QString& text) { m_lastError = text; }

    // What wrappers set. A later call replaces an earlier one for the same class or type.
    /// Scripts that extend the object model, in a language named by its file suffix.
    void addExtensionScript(const QString& text, const QString& suffix);
    void setUniqueProperty(const QString& className, const QString& property);
    void setAllowKeyEventCompression(const QString& className, bool on);
    void enableEventCompression(const QString& className, bool on);
    /// Each entry: two flags behind four name parts, or however the wrapper has them, as six words
    /// separated by one blank. The entries are added to those of the class.
    void addPropertyDelegate(const QString& className, const QStringList& delegates);
    void setMouseTracking(const QString& className, bool on);
    void setRecorderFilter(const QString& type, const QString& name);
    void setRecordMouseDrag(const QString& className, bool on);

    /// What was set for a class; the defaults when nothing was.
    ClassSettings classSettings(const QString& className) const;
    /// Recorder filters by type.
    QMap<QString, QString> recorderFilters() const { return m_recorderFilters; }
    /// Extension scripts, text and suffix, in the order in which they were added.
    QList<QPair<QString, QString>> extensionScripts() const { return m_extensionScripts; }
    /// Forgets everything that wrappers set and the last error.
    void reset();

private:
    Inspector() = default;

    QString m_lastError;
    QMap<QString, ClassSettings> m_classSettings;
    QMap<QString, QString> m_recorderFilters;
    QList<QPair<QString, QString>> m_extensionScripts;
};

}  // namespace Tamrix
