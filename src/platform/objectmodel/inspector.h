#pragma once

#include <QList>
#include <QMap>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVariant>

#include "base/export.h"
#include "platform/objectmodel/object.h"

namespace Tamrix {

class Class;
class Event;
class ObjectModel;

/// The process-wide entry to the objects of the current application. Script thread only.
///
/// It asks the model that the runner set, and keeps the error text of the last failure and what
/// toolkit wrappers say about classes. Without a model every operation that asks the application
/// fails with noApplicationText.
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

    /// What operations that need an application say without one.
    static const QString noApplicationText;
    static tl::unexpected<Failure> noApplication() {
        return fail(FailureKind::Failed, noApplicationText);
    }

    static Inspector* self();

    /// The model of the current application, null when there is none. Not owned; the runner sets it
    /// when the current application changes, and null before the model ends.
    void setModel(ObjectModel* model) { m_model = model; }
    ObjectModel* model() const { return m_model; }

    // Look-up. Failing operations return null or an empty list and set lastError(); a success does
    // not clear it.
    /// By real or symbolic name, at once, without waiting.
    SharedPtr<Object> findObject(const QString& name);
    ObjectList topLevelObjects();
    /// Null for a type that the application does not know. Types of values are always known.
    const Class* classByName(const QString& name);
    const Class* globalClass();
    /// The class of one of the numbered types of values: 7 is "bool", the type of a call that had
    /// no text to give back. Null for any other number.
    const Class* classByTypeNumber(int number);
    /// An object of the class that isNull().
    SharedPtr<Object> createNullObject(const Class* objectClass);
    /// A value as an argument of a call.
    SharedPtr<Object> createObject(const QVariant& value);
    /// A request by name: "desktopScreenshot", "getPixmapAsImage", "grabObjectScreenshot",
    /// "viewCells". Invalid on failure.
    QVariant nativeRequest(const QString& name, const QVariantList& arguments);

    // Events. A null object and a null class stand for all objects. `callback` comes back through
    // the runner when the event happens.
    bool installEventHandler(SharedPtr<Object> object, const Class* objectClass,
                             const QString& event, const QString& callback);
    bool uninstallEventHandler(SharedPtr<Object> object, const Class* objectClass,
                               const QString& event, const QString& callback);
    bool sendEvent(const Event* event, SharedPtr<Object> target, const ObjectList& parameters);

    // The edge between outcomes, which callers decide about, and the last error, which scripts ask
    // for. Below it nobody sets the last error.
    /// Makes a failure the last error.
    void keep(const Failure& failure);
    /// The outcome's value; of a failure, which is kept, a default one: null, empty.
    template <typename T>
    T take(Outcome<T> outcome) {
        if (outcome)
            return *std::move(outcome);
        keep(outcome.error());
        return T();
    }
    /// Whether it was a success; a failure is kept.
    bool take(const Outcome<>& outcome);

    /// Why the last look-up failed.
    QString lastError() const { return m_lastFailure.text; }
    /// The same with its kind; without text when nothing has failed.
    const Failure& lastFailure() const { return m_lastFailure; }
    /// An empty text clears it. For failures of no special kind; keep() has one.
    void setLastError(const QString& text) { keep(Failure{FailureKind::Failed, text}); }
    /// Whether the last failure was that something was not there, or not ready, in time: scripts
    /// then get a look-up error.
    bool lastErrorIsLookup() const {
        return m_lastFailure.kind == FailureKind::NotFound ||
               m_lastFailure.kind == FailureKind::NotReady;
    }

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
    /// Forgets everything that wrappers set and the last error; the model stays.
    void reset();

private:
    Inspector() = default;

    /// Asks the model, when there is one, and keeps the failure.
    template <typename Ask>
    auto ask(Ask ask);

    ObjectModel* m_model = nullptr;
    Failure m_lastFailure;
    QMap<QString, ClassSettings> m_classSettings;
    QMap<QString, QString> m_recorderFilters;
    QList<QPair<QString, QString>> m_extensionScripts;
};

/// Fetches the tree below an object, or below the object of that name, in the stream form of
/// UIAbstraction::UIElement::elementsFromByteArray.
TAMRIX_EXPORT Outcome<QByteArray> requestObjectSnapshot(SharedPtr<Object> object);
TAMRIX_EXPORT Outcome<QByteArray> requestObjectSnapshot(const QString& name);
/// The same with what a visual verification point compares beside it: a picture of the object.
TAMRIX_EXPORT Outcome<QByteArray> requestObjectSnapshotForVisualVP(SharedPtr<Object> object);

}  // namespace Tamrix
