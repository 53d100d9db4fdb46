#include "vision/search/imagelookupoptions.h"

#include <json/json.h>

#include <QLocale>
#include <QStringList>
#include <stdexcept>

#include "vision/search/parsefailure.h"

namespace Tamrix::Vision {

namespace {

// The same in every form.
const char* const tolerantKey = "tolerant";
const char* const thresholdKey = "threshold";
const char* const multiscaleKey = "multiscale";
const char* const minScaleKey = "minScale";
const char* const maxScaleKey = "maxScale";

/// The entries of a text, each with a key in front of its own separator. A later entry replaces an
/// earlier one of the same key.
QMap<QString, QString> parseEntries(const QString& text, QChar entrySeparator, QChar keySeparator) {
    QMap<QString, QString> values;
    const QStringList entries = text.split(entrySeparator, Qt::SkipEmptyParts);
    for (const QString& entry : entries) {
        const int separator = entry.indexOf(keySeparator);
        if (separator < 0)
            failParsing(QStringLiteral("Key without a value: %1").arg(entry));
        values.insert(entry.left(separator).trimmed(), entry.mid(separator + 1).trimmed());
    }
    return values;
}

QString unparseBool(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

bool boolFromJson(const std::string& key, const Json::Value& value) {
    if (!value.isBool())
        throw std::runtime_error(key + " must be a boolean");
    return value.asBool();
}

double numberFromJson(const std::string& key, const Json::Value& value) {
    if (!value.isNumeric())
        throw std::runtime_error(key + " must be a number");
    return value.asDouble();
}

double scaleFromJson(const std::string& key, const Json::Value& value) {
    const double scale = numberFromJson(key, value);
    if (!(scale > 0))
        throw std::runtime_error(key + " must be positive");
    return scale;
}

double thresholdFromJson(const std::string& key, const Json::Value& value) {
    const double threshold = numberFromJson(key, value);
    if (!(threshold >= 0 && threshold <= 100))
        throw std::runtime_error(key + " must lie in the [0,100] range");
    return threshold;
}

}  // namespace

ImageLookupOptions::ImageLookupOptions(const QMap<QString, QString>& values) {
    initFromMap(values);
}

ImageLookupOptions::ImageLookupOptions(const QString& lines) {
    initFromMap(parseEntries(lines, QLatin1Char('\n'), QLatin1Char('=')));
}

ImageLookupOptions ImageLookupOptions::fromDescription(const QString& text) {
    return ImageLookupOptions(parseEntries(text, QLatin1Char(','), QLatin1Char(':')));
}

void ImageLookupOptions::initFromMap(const QMap<QString, QString>& values) {
    for (auto it = values.begin(); it != values.end(); ++it) {
        const QString& key = it.key();
        if (key == QLatin1String(tolerantKey))
            setTolerant(parseBool(it.value()));
        else if (key == QLatin1String(thresholdKey))
            setThreshold(parseDouble(it.value()));
        else if (key == QLatin1String(multiscaleKey))
            setMultiscale(parseBool(it.value()));
        else if (key == QLatin1String(minScaleKey))
            setMinScaleFactor(parseDouble(it.value()));
        else if (key == QLatin1String(maxScaleKey))
            setMaxScaleFactor(parseDouble(it.value()));
        else
            failParsing(QStringLiteral("Unknown key: %1").arg(key));
    }
}

QMap<QString, QString> ImageLookupOptions::toValueMap() const {
    QMap<QString, QString> values;
    if (hasField(Tolerant))
        values.insert(QLatin1String(tolerantKey), unparseBool(m_tolerant));
    if (hasField(Threshold))
        values.insert(QLatin1String(thresholdKey), unparseDouble(m_threshold));
    if (hasField(Multiscale))
        values.insert(QLatin1String(multiscaleKey), unparseBool(m_multiscale));
    if (hasField(MinScaleFactor))
        values.insert(QLatin1String(minScaleKey), unparseDouble(m_minScaleFactor));
    if (hasField(MaxScaleFactor))
        values.insert(QLatin1String(maxScaleKey), unparseDouble(m_maxScaleFactor));
    return values;
}

QString ImageLookupOptions::description() const {
    const QMap<QString, QString> values = toValueMap();
    QStringList entries;
    for (auto it = values.begin(); it != values.end(); ++it)
        entries.append(QStringLiteral("%1: %2").arg(it.key(), it.value()));
    return entries.join(QStringLiteral(", "));
}

Json::Value ImageLookupOptions::toJson() const {
    Json::Value value(Json::objectValue);
    if (hasField(Tolerant))
        value[tolerantKey] = m_tolerant;
    if (hasField(Threshold))
        value[thresholdKey] = m_threshold;
    if (hasField(Multiscale))
        value[multiscaleKey] = m_multiscale;
    if (hasField(MinScaleFactor))
        value[minScaleKey] = m_minScaleFactor;
    if (hasField(MaxScaleFactor))
        value[maxScaleKey] = m_maxScaleFactor;
    return value;
}

ImageLookupOptions ImageLookupOptions::fromJson(const Json::Value& value) {
    if (!value.isObject())
        throw std::runtime_error("Image lookup options must be an object");
    ImageLookupOptions options;
    std::string unknownKeys;
    // Sorted.
    const std::vector<std::string> keys = value.getMemberNames();
    for (const std::string& key : keys) {
        const Json::Value& member = value[key];
        if (key == maxScaleKey)
            options.setMaxScaleFactor(scaleFromJson(key, member));
        else if (key == minScaleKey)
            options.setMinScaleFactor(scaleFromJson(key, member));
        else if (key == multiscaleKey)
            options.setMultiscale(boolFromJson(key, member));
        else if (key == thresholdKey)
            options.setThreshold(thresholdFromJson(key, member));
        else if (key == tolerantKey)
            options.setTolerant(boolFromJson(key, member));
        else
            unknownKeys += (unknownKeys.empty() ? "" : ",") + key;
    }
    if (!unknownKeys.empty())
        throw std::runtime_error("Unknown keys: " + unknownKeys);
    return options;
}

void ImageLookupOptions::setTolerant(bool tolerant) {
    m_tolerant = tolerant;
    m_fields |= Tolerant;
}

void ImageLookupOptions::setThreshold(double threshold) {
    m_threshold = threshold;
    m_fields |= Threshold;
}

void ImageLookupOptions::setMultiscale(bool multiscale) {
    m_multiscale = multiscale;
    m_fields |= Multiscale;
}

void ImageLookupOptions::setMinScaleFactor(double factor) {
    m_minScaleFactor = factor;
    m_fields |= MinScaleFactor;
}

void ImageLookupOptions::setMaxScaleFactor(double factor) {
    m_maxScaleFactor = factor;
    m_fields |= MaxScaleFactor;
}

ImageLookupOptions ImageLookupOptions::overlay(const ImageLookupOptions& base,
                                               const ImageLookupOptions& over) {
    ImageLookupOptions result = base;
    if (over.hasField(Tolerant))
        result.setTolerant(over.m_tolerant);
    if (over.hasField(Threshold))
        result.setThreshold(over.m_threshold);
    if (over.hasField(Multiscale))
        result.setMultiscale(over.m_multiscale);
    if (over.hasField(MinScaleFactor))
        result.setMinScaleFactor(over.m_minScaleFactor);
    if (over.hasField(MaxScaleFactor))
        result.setMaxScaleFactor(over.m_maxScaleFactor);
    return result;
}

bool ImageLookupOptions::canRelaxDefaults(const ImageLookupOptions& defaults,
                                          const ImageLookupOptions& options) {
    // 1. An exact search can be made tolerant, unless the call asks for it.
    if (options.hasField(Tolerant)) {
        if (!options.getTolerant())
            return false;
    } else if (!defaults.getTolerant()) {
        return true;
    }
    // 2. The threshold can be lowered.
    if (!options.hasField(Threshold))
        return true;
    // 3. Scales can be allowed.
    if (options.hasField(Multiscale)) {
        if (!options.getMultiscale())
            return false;
    } else if (!defaults.getMultiscale()) {
        return true;
    }
    // 4. Smaller scales can be allowed.
    if (!options.hasField(MinScaleFactor) && defaults.getMinScaleFactor() > defaultMinScaleFactor)
        return true;
    // 5. Larger scales can be allowed.
    if (options.hasField(MaxScaleFactor) || !defaults.hasField(MaxScaleFactor))
        return false;
    return defaultMaxScaleFactor > defaults.getMaxScaleFactor();
}

int parseInt(const QString& text) {
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (!isNumber)
        failParsing(QStringLiteral("Invalid number: %1").arg(text));
    return number;
}

bool parseBool(const QString& text) {
    const QString lower = text.toLower();
    if (lower == QLatin1String("true") || text == QLatin1String("1"))
        return true;
    if (lower == QLatin1String("false") || text == QLatin1String("0"))
        return false;
    failParsing(QStringLiteral("Invalid boolean: %1").arg(text));
}

double parseDouble(const QString& text) {
    bool isNumber = false;
    const double number = QLocale::c().toDouble(text, &isNumber);
    if (!isNumber)
        failParsing(QStringLiteral("Invalid number: %1").arg(text));
    return number;
}

QString unparseDouble(double number) {
    QLocale locale = QLocale::c();
    // The C locale has none; a default of the program must not add them.
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(number, 'f', 3);
}

}  // namespace Tamrix::Vision
