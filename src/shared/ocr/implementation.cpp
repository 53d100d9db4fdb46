#include "shared/ocr/implementation.h"

#include <json/json.h>

#include <QCoreApplication>
#include <QMutexLocker>
#include <algorithm>

#include "shared/ocr/rest/ocrspace.h"
#include "shared/ocr/rest/rekognition.h"
#include "shared/ocr/tesseract/implementation.h"
#include "shared/ocr/typedexception.h"

namespace Tamrix::OCR {

// The spelling of both is meant.
QMap<QString, QSharedPointer<Implementation>> implemenations;
QMutex implemenationsMutex;

namespace {

struct EngineRow {
    const char* name;
    const char* displayName;
    QSharedPointer<Implementation> (*make)(const Settings& settings);
};

template <typename T>
QSharedPointer<Implementation> make(const Settings& settings) {
    return QSharedPointer<T>::create(settings);
}

constexpr EngineRow engines[] = {
    {"Tesseract", "Tesseract", make<Tesseract::Implementation>},
    {"OCRSpace", "OCR.Space", make<OcrSpace::Implementation>},
    {"Rekognition", "Amazon Rekognition", make<Rekognition::Implementation>},
};

/// What speaks with the network must not outlive the application object.
void forgetEngines() {
    const QMutexLocker lock(&implemenationsMutex);
    implemenations.clear();
}

}  // namespace

QList<Implementation::Engine> Implementation::availableImplementations() {
    QList<Engine> list;
    for (const EngineRow& row : engines)
        list.append({QLatin1String(row.name), QLatin1String(row.displayName)});
    return list;
}

QSharedPointer<Implementation> Implementation::get(const QString& name, const Settings& settings) {
    const QMutexLocker lock(&implemenationsMutex);
    if (const QSharedPointer<Implementation> known = implemenations.value(name))
        return known;
    const auto* const row =
        std::find_if(std::begin(engines), std::end(engines),
                     [&](const EngineRow& each) { return name == QLatin1String(each.name); });
    if (row == std::end(engines))
        throw SetupError(QStringLiteral("Unknown OCR engine: %1").arg(name));
    // A constructor may throw; nothing is stored then.
    QSharedPointer<Implementation> engine = row->make(settings);
    if (implemenations.isEmpty() && QCoreApplication::instance())
        qAddPostRoutine(forgetEngines);
    implemenations.insert(name, engine);
    return engine;
}

QSharedPointer<Implementation> Implementation::get(const QString& name) {
    return get(name, UserSettings(UserSettingsType::Ocr));
}

QSharedPointer<Implementation> Implementation::get(const Settings& settings) {
    return get(settings.readEntry(QStringLiteral("General"), QStringLiteral("DefaultEngine"),
                                  QStringLiteral("Tesseract")),
               settings);
}

QSharedPointer<Implementation> Implementation::get() {
    return get(UserSettings(UserSettingsType::Ocr));
}

Json::Value Implementation::Engine::toJson() const {
    Json::Value value(Json::objectValue);
    value["name"] = name.toStdString();
    value["displayName"] = displayName.toStdString();
    return value;
}

Json::Value SimpleCapability::toJson() const {
    return Json::Value(Json::objectValue);
}

Json::Value UsesLanguageHint::toJson() const {
    Json::Value value(Json::objectValue);
    value["languages"] = OCR::toJson(languages);
    return value;
}

Json::Value toJson(const QList<Language>& languages) {
    Json::Value array(Json::arrayValue);
    for (const Language& language : languages)
        array.append(language.toJson());
    return array;
}

Json::Value describeEngine(const char* name) {
    for (const Implementation::Engine& engine : Implementation::availableImplementations()) {
        if (engine.name == QLatin1String(name))
            return engine.toJson();
    }
    return Json::Value(Json::objectValue);
}

QRect checkedWorkRectangle(const QImage& image, const Vision::SearchRegion& region) {
    if (image.isNull())
        throw InvalidInputs(QStringLiteral("Null QImage received"));
    const QRect workRect = region.boundingBox() & image.rect();
    if (workRect.isEmpty())
        throw InvalidInputs(QStringLiteral("Invalid search region specified"));
    return workRect;
}

double effectiveScale(const Options& options) {
    return options.scaleFactor.value_or(defaultScaleFactor);
}

}  // namespace Tamrix::OCR
