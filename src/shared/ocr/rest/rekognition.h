#pragma once

#include <QRect>
#include <QString>
#include <QUrl>

#include "base/export.h"
#include "shared/ocr/genericresult.h"
#include "shared/ocr/rest/restimplementation.h"

namespace Tamrix::OCR::Rekognition {

/// The capability "AlwaysUseRegion": the service works on the region only.
extern TAMRIX_EXPORT const SimpleCapability alwaysUseRegion;

/// The words of a reply, with places in the work rectangle that was sent. Throws InvalidResponse,
/// with the reply in it, when it says something unusable.
TAMRIX_EXPORT QList<GenericResult::Line> linesOf(const QByteArray& reply, const QRect& workRect);

/// The service Amazon Rekognition: a signed request with the picture is posted, words with places
/// relative to the picture come back.
class TAMRIX_EXPORT Implementation : public RESTImplementation {
public:
    /// Throws SetupError for settings without keys or with an unknown proxy.
    explicit Implementation(const Settings& settings);

    QMap<QString, const Capability*> capabilities() override;
    Json::Value getOptionData(const Json::Value& options) override;
    QSharedPointer<Result> processImage(const QImage& image, const QStringList& searchPaths,
                                        const Options& options, const Vision::SearchRegion& region,
                                        const QSharedPointer<ProgressReporter>& progress) override;

    /// A word of a reply: an entry of "TextDetections". Throws std::runtime_error with what is
    /// missing or wrong.
    static Word wordFromJson(const Json::Value& detection, const QRect& workRect);

protected:
    /// Where requests to the host go.
    virtual QUrl endpoint(const QString& host) const;

private:
    QString m_apiKeyId;
    QString m_apiKey;
    QString m_region;
};

}  // namespace Tamrix::OCR::Rekognition
