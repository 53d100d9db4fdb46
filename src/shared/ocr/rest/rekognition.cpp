#include "shared/ocr/rest/rekognition.h"

#include <json/json.h>

#include <QDateTime>
#include <QNetworkRequest>
#include <algorithm>
#include <limits>
#include <stdexcept>

#include "shared/ocr/rest/awssignature.h"
#include "shared/ocr/rest/services.h"
#include "vision/search/jsonhelpers.h"

namespace Tamrix::OCR::Rekognition {

namespace {

/// The service takes no options of these kinds. Throws InvalidInputs.
void checkOptions(const Options& options) {
    if (options.language && !options.language->isEmpty())
        throw InvalidInputs(
            QStringLiteral("Amazon Rekognition does not support language selection"));
    if (!options.profiles.isEmpty())
        throw InvalidInputs(QStringLiteral("Amazon Rekognition does not support profiles"));
    if (!options.options.isEmpty())
        throw InvalidInputs(QStringLiteral("Unknown options: ") +
                            QStringList(options.options.keys()).join(QStringLiteral(", ")));
}

/// Throws EngineError with what the service says of a failure.
void throwRefusal(const QByteArray& reply) {
    readReply(reply, [&] {
        const Json::Value value = parseReply(reply);
        const Json::Value& message = value["message"];
        if (message.isString())
            throw EngineError(QString::fromStdString(message.asString()));
        // That the text ends here is meant.
        throw std::runtime_error("The error response did not specify the ");
    });
}

/// A part of a length in pixels. What no picture has stays at the limit.
int partOf(double fraction, int length, int offset) {
    constexpr double limit = std::numeric_limits<int>::max() / 4;
    return static_cast<int>(std::clamp(fraction * length + offset, -limit, limit));
}

}  // namespace

const SimpleCapability alwaysUseRegion;

Word Implementation::wordFromJson(const Json::Value& detection, const QRect& workRect) {
    const Json::Value& box =
        Vision::requireObject(Vision::requireObject(detection, "Geometry"), "BoundingBox");
    const int width = partOf(Vision::requireDouble(box, "Width"), workRect.width(), 0);
    const int height = partOf(Vision::requireDouble(box, "Height"), workRect.height(), 0);
    const int left = partOf(Vision::requireDouble(box, "Left"), workRect.width(), workRect.left());
    const int top = partOf(Vision::requireDouble(box, "Top"), workRect.height(), workRect.top());
    Word word;
    word.text = Vision::requireQString(detection, "DetectedText");
    word.rect = QRect(QPoint(left, top), QPoint(left + width - 1, top + height - 1));
    word.pointSize = height;
    return word;
}

QList<GenericResult::Line> linesOf(const QByteArray& reply, const QRect& workRect) {
    return readReply(reply, [&] {
        const Json::Value value = parseReply(reply);
        QMap<int, GenericResult::Line> lines;
        for (const Json::Value& entry : Vision::requireArray(value, "TextDetections")) {
            if (!entry.isObject())
                throw std::runtime_error("TextDetection entry is not an object");
            const QString type = Vision::requireQString(entry, "Type");
            if (type == QLatin1String("LINE")) {
                const int id = Vision::requireInt(entry, "Id");
                if (lines.contains(id))
                    throw std::runtime_error("Duplicate line Id");
                lines.insert(id, {});
            } else if (type == QLatin1String("WORD")) {
                const auto line = lines.find(Vision::requireInt(entry, "ParentId"));
                const Word word = Implementation::wordFromJson(entry, workRect);
                if (line == lines.end())
                    throw std::runtime_error("Word without a Line");
                line->append(word);
            }
        }
        return QList<GenericResult::Line>(lines.values());
    });
}

Implementation::Implementation(const Settings& settings) : RESTImplementation(settings) {
    const auto entry = [&settings](const char* key, const char* otherwise) {
        return settings
            .readEntry(QStringLiteral("Rekognition"), QLatin1String(key), QLatin1String(otherwise))
            .trimmed();
    };
    m_apiKeyId = entry("ApiKeyId", "");
    m_apiKey = entry("ApiKey", "");
    m_region = entry("Region", rekognitionRegion);
    if (m_apiKeyId.isEmpty())
        throw SetupError(QStringLiteral("Rekognition API key ID is not set"));
    if (m_apiKey.isEmpty())
        throw SetupError(QStringLiteral("Rekognition API key is not set"));
}

QMap<QString, const OCR::Implementation::Capability*> Implementation::capabilities() {
    return {{QStringLiteral("AlwaysUseRegion"), &alwaysUseRegion}};
}

Json::Value Implementation::getOptionData(const Json::Value& /*options*/) {
    return describeEngine("Rekognition");
}

QUrl Implementation::endpoint(const QString& host) const {
    return QUrl(QStringLiteral("https://%1/").arg(host));
}

QSharedPointer<Result> Implementation::processImage(
    const QImage& image, const QStringList& /*searchPaths*/, const Options& options,
    const Vision::SearchRegion& region, const QSharedPointer<ProgressReporter>& progress) {
    // 1. The options.
    checkOptions(options);
    // 2. The part of the picture.
    const QRect workRect = checkedWorkRectangle(image, region);
    const QImage part = workRect == image.rect() ? image : image.copy(workRect);
    // 3. The time, and 4. the host.
    const QByteArray amzDate =
        QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'")).toLatin1();
    const QString host =
        QStringLiteral("%1.%2.%3")
            .arg(QLatin1String(service), m_region, QLatin1String(rekognitionDomain));
    // 6. The payload.
    const QByteArray payload =
        "{\"Image\":{\"Bytes\":\"" + prepareImage(part, options).toBase64() + "\"}}";
    // 5., 7. and 8. The headers.
    QNetworkRequest request(endpoint(host));
    request.setRawHeader("Content-Type", content_type);
    request.setRawHeader("X-Amz-Date", amzDate);
    request.setRawHeader("X-Amz-Target", amz_target);
    request.setRawHeader("Authorization",
                         authorization({m_apiKeyId.toUtf8(), m_apiKey.toUtf8(), m_region.toUtf8(),
                                        host.toUtf8(), amzDate, payload}));
    throwIfCancelled(progress.data());
    const ReplyHandle reply(network().post(request, payload));
    waitForReply(progress, reply.get());
    // 9. A refusal,
    const QByteArray body = reply->readAll();
    if (reply->error() != QNetworkReply::NoError) {
        if (body.isEmpty())
            throw ConnectionError(reply->errorString());
        throwRefusal(body);
    }
    // 10. and 11. or what was read.
    return QSharedPointer<GenericResult>::create(region, linesOf(body, workRect));
}

}  // namespace Tamrix::OCR::Rekognition
