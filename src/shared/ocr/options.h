#pragma once

#include <json/forwards.h>

#include <QMap>
#include <QString>
#include <QStringList>
#include <optional>

#include "base/export.h"

// How text is to be recognised. Every option may be left unsaid, so that layers (the settings of a
// run, the options of one call) can be stacked. All records are values.
//
// What is read from JSON makes a whole record or throws: InvalidInputs for an unknown member or a
// wrong value, another std::exception for a text that is no JSON and for a member that no text can
// be made of. Unknown members are told only when the known ones are right.

namespace Tamrix::OCR {

// The members of the JSON form. The language of all engines is "engineLanguage", that of one engine
// is "language" inside its record.
inline constexpr const char* scaleFactorId = "scaleFactor";
inline constexpr const char* languageId = "engineLanguage";
inline constexpr const char* profilesId = "engineProfiles";
inline constexpr const char* optionsId = "engineOptions";
inline constexpr const char* tesseractId = "tesseract";
inline constexpr const char* ocrSpaceId = "ocrSpace";
inline constexpr const char* tesseractModeId = "mode";
inline constexpr const char* tesseractPsmId = "psm";
inline constexpr const char* tesseractFlavorId = "flavor";
inline constexpr const char* tesseractLanguageId = "language";
inline constexpr const char* tesseractPreprocessingId = "preprocessing";
inline constexpr const char* tesseractPostprocessingId = "postprocessing";
inline constexpr const char* ocrspaceLanguageId = "language";

/// The least magnification.
inline constexpr double minimalScaleFactor = 0.2;

/// The magnification that is meant when nobody says one: what screens show is small.
inline constexpr double defaultScaleFactor = 3.5;

/// A value, or nothing for an option that was left unsaid.
template <typename T>
using Optional = std::optional<T>;

/// What the Tesseract engine alone reads.
struct TAMRIX_EXPORT TesseractOptions {
    /// The numbers are those of Tesseract's engine modes. A script may set others; the engine then
    /// refuses them.
    enum Mode : int { TesseractOnly = 0, LstmOnly = 1, Combined = 2, DefaultMode = 3 };

    /// The numbers are those of Tesseract's page segmentation modes.
    enum PageSegmentationMode : int {
        OsdOnly = 0,
        AutoOsd = 1,
        AutoOnly = 2,
        Auto = 3,
        SingleColumn = 4,
        SingleBlockVertical = 5,
        SingleBlock = 6,
        SingleLine = 7,
        SingleWord = 8,
        CircleWord = 9,
        SingleCharacter = 10,
        SparseText = 11,
        SparseTextOsd = 12
    };

    Optional<Mode> mode;
    Optional<PageSegmentationMode> psm;
    /// A set of engine data files; empty for the main installation.
    Optional<QString> flavor;
    /// As Tesseract names it.
    Optional<QString> language;
    // Names of profiles.
    Optional<QString> preprocessing;
    Optional<QString> postprocessing;

    /// With every option set.
    static TesseractOptions defaults();
    static TesseractOptions fromJson(const Json::Value& value);
    /// An object of what is set.
    Json::Value toJson() const;
};

/// What the OCR.Space engine alone reads.
struct TAMRIX_EXPORT OCRSpaceOptions {
    Optional<QString> language;

    static OCRSpaceOptions fromJson(const Json::Value& value);
    /// An object of what is set.
    Json::Value toJson() const;
};

/// All options of a recognition.
struct TAMRIX_EXPORT Options {
    TesseractOptions tesseract;
    OCRSpaceOptions ocrSpace;
    /// Magnification of the picture before it is read. Set from the start, and so it is in each
    /// record that is read without it: a scale survives stacking only from the topmost layer.
    Optional<double> scaleFactor = defaultScaleFactor;
    /// Looked up in the list of languages of the engine that is used.
    Optional<QString> language;
    QStringList profiles;
    QMap<QString, QString> options;

    static Options defaults();
    static Options fromJson(const Json::Value& value);
    /// From a JSON text.
    static Options fromJson(const QString& text);
    /// An object of what is set; profiles and options are there even when they are empty.
    Json::Value toJson() const;
};

TAMRIX_EXPORT Json::Value toJson(TesseractOptions::Mode mode);

// Layers: `a` is the lower one, `b` the upper one.

constexpr TesseractOptions::Mode stack(TesseractOptions::Mode /*a*/, TesseractOptions::Mode b) {
    return b;
}

constexpr TesseractOptions::PageSegmentationMode stack(TesseractOptions::PageSegmentationMode /*a*/,
                                                       TesseractOptions::PageSegmentationMode b) {
    return b;
}

/// `b` where it is set, else `a`, set or not.
template <typename T>
Optional<T> stack(const Optional<T>& a, const Optional<T>& b) {
    return b ? b : a;
}

TAMRIX_EXPORT TesseractOptions stack(const TesseractOptions& a, const TesseractOptions& b);
TAMRIX_EXPORT OCRSpaceOptions stack(const OCRSpaceOptions& a, const OCRSpaceOptions& b);
/// Profiles are those of both, one after the other; of options with one name the upper one holds.
TAMRIX_EXPORT Options stack(const Options& a, const Options& b);

}  // namespace Tamrix::OCR
