#pragma once

#include <QString>

#include "base/export.h"
#include "shared/ocr/implementation.h"

namespace Tamrix::Tesseract {

/// The names that the option "postprocessing" takes: "default" for words, "none" for single
/// characters.
TAMRIX_EXPORT QStringList postprocessingProfiles();

/// The engine in this process. Its libraries are loaded when the first object is made. Nothing of
/// one call stays for the next one.
class TAMRIX_EXPORT Implementation : public OCR::Implementation {
public:
    /// Throws SetupError when the settings don't say where the engine is, or the packages that it
    /// comes with are missing, and another std::runtime_error when its libraries can't be loaded.
    explicit Implementation(const Settings& settings);

    QMap<QString, const Capability*> capabilities() override;
    /// The "flavor" of the options tells which data files are asked about.
    Json::Value getOptionData(const Json::Value& options) override;
    QSharedPointer<OCR::Result> processImage(
        const QImage& image, const QStringList& searchPaths, const OCR::Options& options,
        const Vision::SearchRegion& region,
        const QSharedPointer<OCR::ProgressReporter>& progress) override;

    /// Where the libraries are.
    QString tesseractLibDir() const;

private:
    Settings m_settings;
    OCR::UsesLanguageHint m_languageHint;
    bool m_hasLanguages = false;
    QString m_installPath;
};

}  // namespace Tamrix::Tesseract
