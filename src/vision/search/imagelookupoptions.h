#pragma once

#include <json/forwards.h>

#include <QFlags>
#include <QMap>
#include <QString>

#include "base/export.h"

namespace Tamrix::Vision {

/// How an image is to be searched. Every option can be absent and then has a fixed default, so that
/// layers (the settings of a suite, the options of one call) can be laid over each other.
///
/// A value. What is read from a text or from JSON either makes a whole record or throws a
/// std::runtime_error that names what was wrong. Only the JSON form checks ranges.
class TAMRIX_EXPORT ImageLookupOptions {
public:
    enum Field : unsigned {
        Tolerant = 1,
        Threshold = 2,
        Multiscale = 4,
        MinScaleFactor = 8,
        MaxScaleFactor = 16
    };
    Q_DECLARE_FLAGS(Fields, Field)

    static constexpr double defaultThreshold = 99.5;
    static constexpr double defaultMinScaleFactor = 50.0;
    static constexpr double defaultMaxScaleFactor = 200.0;

    /// A null record.
    ImageLookupOptions() = default;
    /// From texts under the keys "tolerant", "threshold", "multiscale", "minScale" and "maxScale".
    explicit ImageLookupOptions(const QMap<QString, QString>& values);
    /// From lines of KEY=VALUE; empty lines are left out.
    explicit ImageLookupOptions(const QString& lines);

    /// From "threshold: 95, tolerant: true", the form of description().
    static ImageLookupOptions fromDescription(const QString& text);
    /// What is set, sorted by key; empty for a null record.
    QString description() const;
    /// What is set, as texts by key.
    QMap<QString, QString> toValueMap() const;

    /// From an object. Unknown members are told only when the known ones are right.
    static ImageLookupOptions fromJson(const Json::Value& value);
    /// An object of what is set.
    Json::Value toJson() const;

    /// Whether all of the fields are set; for no field, whether none is set at all.
    bool hasField(Fields fields) const { return fields ? (m_fields & fields) == fields : isNull(); }
    /// Whether no option is set.
    bool isNull() const { return !m_fields; }

    // Each option: the value or, where it isn't set, the default.

    /// Whether to search by correlation instead of pixel by pixel; false.
    bool getTolerant() const { return hasField(Tolerant) && m_tolerant; }
    void setTolerant(bool tolerant);
    void resetTolerant() { m_fields &= ~Fields(Tolerant); }

    /// The least score of a tolerant search, in percent; 99.5.
    double getThreshold() const { return hasField(Threshold) ? m_threshold : defaultThreshold; }
    void setThreshold(double threshold);
    void resetThreshold() { m_fields &= ~Fields(Threshold); }

    /// Whether a tolerant search tries resized copies of the needle as well; false.
    bool getMultiscale() const { return hasField(Multiscale) && m_multiscale; }
    void setMultiscale(bool multiscale);
    void resetMultiscale() { m_fields &= ~Fields(Multiscale); }

    /// The smallest size that is tried, in percent of the needle's; 50.
    double getMinScaleFactor() const {
        return hasField(MinScaleFactor) ? m_minScaleFactor : defaultMinScaleFactor;
    }
    void setMinScaleFactor(double factor);
    void resetMinScaleFactor() { m_fields &= ~Fields(MinScaleFactor); }

    /// The largest size that is tried, in percent of the needle's; 200.
    double getMaxScaleFactor() const {
        return hasField(MaxScaleFactor) ? m_maxScaleFactor : defaultMaxScaleFactor;
    }
    void setMaxScaleFactor(double factor);
    void resetMaxScaleFactor() { m_fields &= ~Fields(MaxScaleFactor); }

    /// `base` with everything that `over` sets.
    static ImageLookupOptions overlay(const ImageLookupOptions& base,
                                      const ImageLookupOptions& over);

    /// Whether a search that failed with `options` over `defaults` could still be loosened by
    /// defaults that `options` does not fix.
    static bool canRelaxDefaults(const ImageLookupOptions& defaults,
                                 const ImageLookupOptions& options);

private:
    void initFromMap(const QMap<QString, QString>& values);

    Fields m_fields;
    bool m_tolerant = false;
    bool m_multiscale = false;
    double m_threshold = defaultThreshold;
    double m_minScaleFactor = defaultMinScaleFactor;
    double m_maxScaleFactor = defaultMaxScaleFactor;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(ImageLookupOptions::Fields)

// The words of the text forms. Those that read throw a std::runtime_error that quotes the text.

/// A decimal integer that is the whole text.
TAMRIX_EXPORT int parseInt(const QString& text);
/// "true", "false" in any case, "1" or "0".
TAMRIX_EXPORT bool parseBool(const QString& text);
/// A number with a decimal point, whatever the locale.
TAMRIX_EXPORT double parseDouble(const QString& text);
/// The number with a decimal point and three digits behind it.
TAMRIX_EXPORT QString unparseDouble(double number);

}  // namespace Tamrix::Vision
