#include "shared/ocr/rest/ocrspace.h"

#include <json/json.h>

#include <QHttpMultiPart>
#include <QNetworkRequest>
#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "shared/ocr/rest/services.h"
#include "vision/search/jsonhelpers.h"

namespace Tamrix::OCR::OcrSpace {

namespace {

struct LanguageRow {
    const char* displayName;
    const char* recordedName;
    const char* code;
};

constexpr LanguageRow languageRows[] = {
    {"Default (English)", "", ""},
    {"Arabic", "Arabic", "ara"},
    {"Bulgarian", "Bulgarian", "bul"},
    {"Chinese Simplified", "Chinese_Simp", "chs"},
    {"Chinese Traditional", "Chinese_Trad", "cht"},
    {"Croatian", "Croatian", "hrv"},
    {"Czech", "Czech", "cze"},
    {"Danish", "Danish", "dan"},
    {"Dutch", "Dutch", "dut"},
    {"English", "English", "eng"},
    {"Finnish", "Finnish", "fin"},
    {"French", "French", "fre"},
    {"German", "German", "ger"},
    {"Greek", "Greek", "gre"},
    {"Hungarian", "Hungarian", "hun"},
    {"Korean", "Korean", "kor"},
    {"Italian", "Italian", "ita"},
    {"Japanese", "Japanese", "jpn"},
    {"Norwegian", "Norwegian", "nor"},
    {"Polish", "Polish", "pol"},
    {"Portuguese", "Portuguese", "por"},
    {"Russian", "Russian", "rus"},
    {"Slovenian", "Slovenian", "slv"},
    {"Spanish", "Spanish", "spa"},
    {"Swedish", "Swedish", "swe"},
    {"Turkish", "Turkish", "tur"},
};

/// What the exit code of a page or of the whole says: 1 is success.
void checkExitCode(const Json::Value& value, const char* key) {
    const int code = Vision::requireInt(value, key);
    if (code == 1)
        return;
    const Json::Value& message = value["ErrorMessage"];
    if (message.isString())
        throw EngineError(QString::fromStdString(message.asString()));
    if (message.isArray()) {
        std::string text;
        for (const Json::Value& part : message) {
            if (part.isString())
                text += part.asString();
        }
        throw EngineError(QString::fromStdString(text));
    }
    throw EngineError(QStringLiteral("Unknown OCR.Space error: code %1").arg(code));
}

/// A coordinate in the picture that was handed in. What no picture has stays at the limit.
int unscaled(double value) {
    constexpr double limit = std::numeric_limits<int>::max() / 4;
    return static_cast<int>(std::clamp(value, -limit, limit));
}

Word wordOf(const Json::Value& value, const QRect& workRect, double scale) {
    if (!value.isObject())
        throw std::runtime_error("Unexpected response: Word entry is not an object");
    const int height = unscaled(Vision::requireInt(value, "Height") / scale);
    const int width = unscaled(Vision::requireInt(value, "Width") / scale);
    const int top = unscaled(Vision::requireInt(value, "Top") / scale + workRect.top());
    const int left = unscaled(Vision::requireInt(value, "Left") / scale + workRect.left());
    Word word;
    word.rect = QRect(QPoint(left, top), QPoint(left + width - 1, top + height - 1));
    word.text = Vision::requireQString(value, "WordText");
    word.pointSize = word.rect.height();
    return word;
}

const Json::Value& onlyPage(const Json::Value& reply) {
    const Json::Value& pages = Vision::requireArray(reply, "ParsedResults");
    if (pages.size() != 1)
        throw std::runtime_error("Unexpected response: ParsedResults array size " +
                                 std::to_string(pages.size()));
    if (!pages[0].isObject())
        throw std::runtime_error("Unexpected response: Result is not an object");
    return pages[0];
}

/// Throws InvalidInputs for a language that the service doesn't read.
Language languageFor(const Options& options) {
    const QString name = options.language.value_or(QString());
    const auto language =
        std::find_if(knownLanguages.begin(), knownLanguages.end(),
                     [&](const Language& each) { return each.recordedName == name; });
    if (language == knownLanguages.end())
        throw InvalidInputs(QStringLiteral("Unknown OCR language: %1").arg(name));
    return *language;
}

struct FormPart {
    QByteArray disposition;
    QByteArray contentType;
    QByteArray body;
};

std::unique_ptr<QHttpMultiPart> makeForm(const Language& language, const QByteArray& picture) {
    QList<FormPart> parts = {
        {"form-data; name=\"scale\"", {}, "False"},
        {"form-data; name=\"isOverlayRequired\"", {}, "True"},
        {"form-data; name=\"detectOrientation\"", {}, "False"},
    };
    if (!language.code.isEmpty())
        parts.append({"form-data; name=\"language\"", {}, language.code.toUtf8()});
    parts.append({"form-data; name=\"file\"; filename=\"screenshot.png\"", "image/png", picture});

    auto form = std::make_unique<QHttpMultiPart>(QHttpMultiPart::FormDataType);
    for (const FormPart& part : qAsConst(parts)) {
        QHttpPart formPart;
        formPart.setRawHeader("Content-Disposition", part.disposition);
        if (!part.contentType.isEmpty())
            formPart.setRawHeader("Content-Type", part.contentType);
        formPart.setBody(part.body);
        form->append(formPart);
    }
    return form;
}

}  // namespace

QList<Language> listKnownLanguages() {
    QList<Language> languages;
    for (const LanguageRow& row : languageRows)
        languages.append(Language(QLatin1String(row.code), QLatin1String(row.recordedName),
                                  QLatin1String(row.displayName)));
    return languages;
}

const QList<Language> knownLanguages = listKnownLanguages();
const UsesLanguageHint languageHint(knownLanguages);

QList<GenericResult::Line> linesOf(const QByteArray& reply, const QRect& workRect, double scale) {
    return readReply(reply, [&] {
        const Json::Value value = parseReply(reply);
        checkExitCode(value, "OCRExitCode");
        const Json::Value& page = onlyPage(value);
        checkExitCode(page, "FileParseExitCode");
        const Json::Value& overlay = Vision::requireObject(page, "TextOverlay");
        if (!Vision::requireBool(overlay, "HasOverlay"))
            throw std::runtime_error("Response does not include an overlay");
        QList<GenericResult::Line> lines;
        for (const Json::Value& entry : Vision::requireArray(overlay, "Lines")) {
            GenericResult::Line line;
            for (const Json::Value& word : Vision::requireArray(entry, "Words"))
                line.append(wordOf(word, workRect, scale));
            lines.append(line);
        }
        return lines;
    });
}

Implementation::Implementation(const Settings& settings)
    : RESTImplementation(settings),
      m_apiKey(settings.readEntry(QStringLiteral("OCRSpace"), QStringLiteral("ApiKey"))),
      m_apiEndpoint(settings.readEntry(QStringLiteral("OCRSpace"), QStringLiteral("ApiEndpoint"),
                                       QLatin1String(ocrSpaceEndpoint))) {
    if (m_apiKey.isEmpty())
        throw SetupError(QStringLiteral("OCR.Space API key is not set"));
}

QMap<QString, const OCR::Implementation::Capability*> Implementation::capabilities() {
    return {{QLatin1String(UsesLanguageHint::propertyKey), &languageHint}};
}

Json::Value Implementation::getOptionData(const Json::Value& /*options*/) {
    Json::Value value = describeEngine("OCRSpace");
    value["languages"] = OCR::toJson(knownLanguages);
    return value;
}

QSharedPointer<Result> Implementation::processImage(
    const QImage& image, const QStringList& /*searchPaths*/, const Options& options,
    const Vision::SearchRegion& region, const QSharedPointer<ProgressReporter>& progress) {
    // 1. The language.
    const Language language = languageFor(options);
    // 2. The part of the picture.
    const QRect workRect = checkedWorkRectangle(image, region);
    const QImage part = workRect == image.rect() ? image : image.copy(workRect);
    // 3. The form.
    QNetworkRequest request(QUrl(m_apiEndpoint, QUrl::TolerantMode));
    request.setRawHeader("apikey", m_apiKey.toUtf8());
    const std::unique_ptr<QHttpMultiPart> form = makeForm(language, prepareImage(part, options));
    // 4. It is sent.
    throwIfCancelled(progress.data());
    const ReplyHandle reply(network().post(request, form.get()));
    waitForReply(progress, reply.get());
    // 5.
    if (reply->error() != QNetworkReply::NoError)
        throw ConnectionError(reply->errorString());
    // 6. to 10. What comes back.
    return QSharedPointer<GenericResult>::create(
        region, linesOf(reply->readAll(), workRect, effectiveScale(options)));
}

}  // namespace Tamrix::OCR::OcrSpace
