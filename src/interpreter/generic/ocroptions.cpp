#include "interpreter/generic/ocroptions.h"

#include <stdexcept>

namespace Tamrix::OCR {

namespace {

using Argument = SharedPtr<ScriptArgument>;

/// Throws unless the condition holds.
void require(bool condition, const QString& message) {
    if (!condition)
        throw std::runtime_error(message.toStdString());
}

/// Hands each entry to `take`, which returns false for a key that it doesn't know. The unknown ones
/// are told as `message` when all entries have been looked at.
template <typename Take>
void walk(const ScriptArgument::Map& map, const char* message, Take take) {
    QStringList unknown;
    for (const auto& [key, value] : map) {
        if (!take(key, value))
            unknown.append(key);
    }
    require(unknown.isEmpty(), QString(QLatin1String(message)).arg(unknown.join(',')));
}

ScriptArgument::Map readMap(const Argument& value, const char* message) {
    require(value->isMap(), QLatin1String(message));
    return value->toMap();
}

/// A number of an enumeration that starts at 0.
template <typename Enum>
Enum readEnum(const Argument& value, Enum last, const char* typeMessage, const char* rangeMessage) {
    require(value->isInteger(), QLatin1String(typeMessage));
    const long long number = value->toInt();
    require(number >= 0 && number <= last, QLatin1String(rangeMessage));
    return static_cast<Enum>(number);
}

TesseractOptions readTesseract(const ScriptArgument::Map& map) {
    TesseractOptions options;
    walk(map, "Unknown tesseract options keys: %1", [&](const QString& key, const Argument& value) {
        if (key == "mode")
            options.mode =
                readEnum(value, TesseractOptions::DefaultMode,
                         "The tesseract mode must be an integer", "Invalid tesseract mode");
        else if (key == "psm")
            options.psm = readEnum(value, TesseractOptions::SparseTextOsd,
                                   "The tesseract psm must be an integer", "Invalid tesseract psm");
        else if (key == "flavor")
            options.flavor = value->toString();
        else if (key == "preprocessing")
            options.preprocessing = value->toString();
        else if (key == "postprocessing")
            options.postprocessing = value->toString();
        else if (key == "language")
            options.language = value->toString();
        else
            return false;
        return true;
    });
    return options;
}

OCRSpaceOptions readOcrSpace(const ScriptArgument::Map& map) {
    OCRSpaceOptions options;
    walk(map, "Unknown OCR.Options options keys: %1",
         [&](const QString& key, const Argument& value) {
             if (key != "language")
                 return false;
             options.language = value->toString();
             return true;
         });
    return options;
}

QStringList readProfiles(const Argument& value) {
    require(value->isList(), QStringLiteral("The profiles must be a list"));
    QStringList profiles;
    for (const Argument& profile : value->toList())
        profiles.append(profile->toString());
    return profiles;
}

QMap<QString, QString> readFreeOptions(const Argument& value) {
    QMap<QString, QString> options;
    for (const auto& [name, option] : readMap(value, "The options must be a map"))
        options.insert(name, option->toString());
    return options;
}

double readScaleFactor(const Argument& value) {
    const double factor = value->toDouble();
    require(factor >= minimalScaleFactor,
            QStringLiteral("The scaleFactor must be at least %1").arg(minimalScaleFactor));
    return factor;
}

}  // namespace

Options getOCROptions(const ScriptArgument::Map& map) {
    Options options;
    // Scripts have shorter keys than the JSON form for what is not of one engine.
    walk(map, "Unknown options keys: %1", [&](const QString& key, const Argument& value) {
        if (key == "language")
            options.language = value->toString();
        else if (key == "tesseract")
            options.tesseract =
                readTesseract(readMap(value, "The tesseract options must be a map"));
        else if (key == "ocrSpace")
            options.ocrSpace = readOcrSpace(readMap(value, "The OCR.Space options must be a map"));
        else if (key == "profiles")
            options.profiles = readProfiles(value);
        else if (key == "options")
            options.options = readFreeOptions(value);
        else if (key == "scaleFactor")
            options.scaleFactor = readScaleFactor(value);
        else
            return false;
        return true;
    });
    return options;
}

}  // namespace Tamrix::OCR
