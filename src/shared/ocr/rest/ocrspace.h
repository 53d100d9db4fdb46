#pragma once

#include <QString>

#include "base/export.h"
#include "shared/ocr/genericresult.h"
#include "shared/ocr/rest/restimplementation.h"

namespace Tamrix::OCR::OcrSpace {

// The languages that the service reads.
TAMRIX_EXPORT QList<Language> listKnownLanguages();
extern TAMRIX_EXPORT const QList<Language> knownLanguages;
extern TAMRIX_EXPORT const UsesLanguageHint languageHint;

/// The words of a reply whose picture was magnified by `scale`, with places counted from the work
/// rectangle's corner. Throws EngineError with what the service says of a failure, InvalidResponse,
/// with the reply in it, when it says something unusable.
TAMRIX_EXPORT QList<GenericResult::Line> linesOf(const QByteArray& reply, const QRect& workRect,
                                                 double scale);

/// The service OCR.Space: a form with the picture is posted, words with places come back.
class TAMRIX_EXPORT Implementation : public RESTImplementation {
public:
    /// Throws SetupError for settings without key or with an unknown proxy.
    explicit Implementation(const Settings& settings);

    QMap<QString, const Capability*> capabilities() override;
    Json::Value getOptionData(const Json::Value& options) override;
    QSharedPointer<Result> processImage(const QImage& image, const QStringList& searchPaths,
                                        const Options& options, const Vision::SearchRegion& region,
                                        const QSharedPointer<ProgressReporter>& progress) override;

private:
    QString m_apiKey;
    QString m_apiEndpoint;
};

}  // namespace Tamrix::OCR::OcrSpace
