#pragma once

#include <json/forwards.h>

#include <QImage>
#include <QList>
#include <QMap>
#include <QMutex>
#include <QSharedPointer>
#include <QString>
#include <QStringList>

#include "base/export.h"
#include "shared/ocr/language.h"
#include "shared/ocr/options.h"
#include "shared/ocr/progressreporter.h"
#include "shared/ocr/result.h"
#include "shared/settings/settings.h"

namespace Tamrix::OCR {

/// An engine that reads text in pictures. Engines are shared and live to the end of the process, or
/// of the application object. What goes wrong in them is thrown, as one of the exceptions of
/// typedexception.h or as another std::runtime_error.
///
/// get() may be called on any thread; an engine that speaks with a service belongs to the thread
/// that asked for it first, and is used there only.
class TAMRIX_EXPORT Implementation {
public:
    /// Something that an engine can do, for dialogues about its options.
    class Capability {
    public:
        virtual ~Capability() = default;
        virtual Json::Value toJson() const = 0;
    };

    /// An engine that can be asked for.
    struct TAMRIX_EXPORT Engine {
        QString name;
        QString displayName;
        Json::Value toJson() const;
    };

    virtual ~Implementation() = default;

    /// By name; they are the engine's own.
    virtual QMap<QString, const Capability*> capabilities() = 0;
    /// What can be chosen under these partial options: an object with at least "name" and
    /// "displayName".
    virtual Json::Value getOptionData(const Json::Value& options) = 0;
    /// Reads the picture where the region is. `searchPaths` are the folders in which files that the
    /// options name are looked for. Not reentrant.
    virtual QSharedPointer<Result> processImage(
        const QImage& image, const QStringList& searchPaths, const Options& options,
        const Vision::SearchRegion& region, const QSharedPointer<ProgressReporter>& progress) = 0;

    /// All engines, in the order in which they are offered.
    static QList<Engine> availableImplementations();

    // The engine of a name. It is made by the first call, with the settings of that call: later
    // ones are not looked at. An engine that can't be made is tried again by the next call. Throws
    // SetupError for a name that isn't known. Without settings the user's file "ocr.ini" counts.
    static QSharedPointer<Implementation> get(const QString& name, const Settings& settings);
    static QSharedPointer<Implementation> get(const QString& name);
    /// The engine that the settings name, Tesseract unless they do.
    static QSharedPointer<Implementation> get(const Settings& settings);
    static QSharedPointer<Implementation> get();
};

/// A capability about which there is nothing more to say.
class TAMRIX_EXPORT SimpleCapability : public Implementation::Capability {
public:
    /// An empty object.
    Json::Value toJson() const override;
};

/// The engine reads better when it knows the language.
class TAMRIX_EXPORT UsesLanguageHint : public Implementation::Capability {
public:
    static constexpr const char* propertyKey = "UsesLanguageHint";

    UsesLanguageHint() = default;
    explicit UsesLanguageHint(const QList<Language>& known) : languages(known) {}

    /// An object with the array "languages".
    Json::Value toJson() const override;

    QList<Language> languages;
};

TAMRIX_EXPORT Json::Value toJson(const QList<Language>& languages);

/// The members "name" and "displayName" of the engine.
TAMRIX_EXPORT Json::Value describeEngine(const char* name);

/// What an engine works on: the region's bounding box within the image. Throws InvalidInputs when
/// there is no image, or nothing of it in the region.
TAMRIX_EXPORT QRect checkedWorkRectangle(const QImage& image, const Vision::SearchRegion& region);

/// The magnification that the options ask for, or the default one.
TAMRIX_EXPORT double effectiveScale(const Options& options);

// The engines that were made, by name. Guarded by the mutex.
extern TAMRIX_EXPORT QMap<QString, QSharedPointer<Implementation>> implemenations;
extern TAMRIX_EXPORT QMutex implemenationsMutex;

}  // namespace Tamrix::OCR
