#include <json/json.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "shared/ocr/options.h"
#include "shared/ocr/typedexception.h"

namespace Tamrix::OCR {

namespace {

/// Throws InvalidInputs with the message unless the condition holds.
void require(bool condition, const char* message) {
    if (!condition)
        throw InvalidInputs(QLatin1String(message));
}

/// Hands each member of an object to `take`, which returns false for a name that it doesn't know.
/// The unknown ones are told when all members have been looked at.
template <typename Take>
void readMembers(const Json::Value& object, Take take) {
    require(object.isObject(), "options must be an object");
    QStringList unknown;
    for (const std::string& name : object.getMemberNames()) {
        if (!take(name, object[name]))
            unknown.append(QString::fromStdString(name));
    }
    if (!unknown.isEmpty())
        throw InvalidInputs(QStringLiteral("Unknown keys: %1").arg(unknown.join(',')));
}

QString readString(const Json::Value& value, const char* message) {
    require(value.isString(), message);
    return QString::fromStdString(value.asString());
}

/// A number of an enumeration that starts at 0. A negative one is out of range, not of a wrong
/// type: it is compared as an unsigned number.
template <typename Enum>
Enum readEnum(const Json::Value& value, Enum last, const char* typeMessage,
              const char* rangeMessage) {
    require(value.isInt(), typeMessage);
    const auto number = static_cast<unsigned>(value.asInt());
    require(number <= static_cast<unsigned>(last), rangeMessage);
    return static_cast<Enum>(number);
}

/// One option that is a string: where it is, its member and what is said of a wrong type.
template <typename Record>
struct StringMember {
    const char* name;
    Optional<QString> Record::*option;
    const char* message;
};

constexpr StringMember<TesseractOptions> tesseractStrings[] = {
    {tesseractFlavorId, &TesseractOptions::flavor, "tesseract flavor name must be a string"},
    {tesseractLanguageId, &TesseractOptions::language, "tesseract language name must be a string"},
    {tesseractPreprocessingId, &TesseractOptions::preprocessing,
     "tesseract preprocessing name must be a string"},
    {tesseractPostprocessingId, &TesseractOptions::postprocessing,
     "tesseract postprocessing name must be a string"},
};

constexpr StringMember<OCRSpaceOptions> ocrSpaceStrings[] = {
    {ocrspaceLanguageId, &OCRSpaceOptions::language, "OCR.Space language name must be a string"},
};

template <typename Record, std::size_t size>
bool readStringMember(const StringMember<Record> (&members)[size], Record& record,
                      const std::string& name, const Json::Value& value) {
    for (const StringMember<Record>& member : members) {
        if (name == member.name) {
            record.*member.option = readString(value, member.message);
            return true;
        }
    }
    return false;
}

template <typename Record, std::size_t size>
void writeStringMembers(const StringMember<Record> (&members)[size], const Record& record,
                        Json::Value& object) {
    for (const StringMember<Record>& member : members) {
        if (const Optional<QString>& option = record.*member.option)
            object[member.name] = option->toStdString();
    }
}

QStringList readProfiles(const Json::Value& value) {
    require(value.isArray(), "profiles must be an array");
    QStringList profiles;
    for (const Json::Value& profile : value)
        profiles.append(readString(profile, "profiles must be a string array"));
    return profiles;
}

/// Free options. That a member which is a string is refused, and others are turned into text, is
/// meant; one of which no text can be made throws what the JSON library throws.
QMap<QString, QString> readFreeOptions(const Json::Value& value) {
    require(value.isObject(), "engineOptions must be an object");
    QMap<QString, QString> options;
    for (const std::string& name : value.getMemberNames()) {
        require(!value[name].isString(), "engineOptions members must be strings");
        options.insert(QString::fromStdString(name),
                       QString::fromStdString(value[name].asString()));
    }
    return options;
}

double readScaleFactor(const Json::Value& value) {
    require(value.isNumeric(), "scaleFactor must be a number");
    require(value.asDouble() >= minimalScaleFactor, "scaleFactor must be at least 0.2");
    return value.asDouble();
}

}  // namespace

TesseractOptions TesseractOptions::fromJson(const Json::Value& value) {
    TesseractOptions options;
    readMembers(value, [&](const std::string& name, const Json::Value& member) {
        if (name == tesseractModeId)
            options.mode = readEnum(member, DefaultMode, "tesseract mode must be a number",
                                    "invalid tesseract mode");
        else if (name == tesseractPsmId)
            options.psm = readEnum(member, SparseTextOsd, "tesseract psm must be a number",
                                   "invalid tesseract psm");
        else
            return readStringMember(tesseractStrings, options, name, member);
        return true;
    });
    return options;
}

Json::Value TesseractOptions::toJson() const {
    Json::Value object(Json::objectValue);
    if (mode)
        object[tesseractModeId] = OCR::toJson(*mode);
    if (psm)
        object[tesseractPsmId] = static_cast<int>(*psm);
    writeStringMembers(tesseractStrings, *this, object);
    return object;
}

OCRSpaceOptions OCRSpaceOptions::fromJson(const Json::Value& value) {
    OCRSpaceOptions options;
    readMembers(value, [&](const std::string& name, const Json::Value& member) {
        return readStringMember(ocrSpaceStrings, options, name, member);
    });
    return options;
}

Json::Value OCRSpaceOptions::toJson() const {
    Json::Value object(Json::objectValue);
    writeStringMembers(ocrSpaceStrings, *this, object);
    return object;
}

Options Options::fromJson(const Json::Value& value) {
    Options options;
    readMembers(value, [&](const std::string& name, const Json::Value& member) {
        if (name == scaleFactorId) {
            options.scaleFactor = readScaleFactor(member);
        } else if (name == languageId) {
            options.language = readString(member, "language must be a string");
        } else if (name == profilesId) {
            options.profiles = readProfiles(member);
        } else if (name == optionsId) {
            options.options = readFreeOptions(member);
        } else if (name == tesseractId) {
            require(member.isObject(), "tesseract configuration must be an object");
            options.tesseract = TesseractOptions::fromJson(member);
        } else if (name == ocrSpaceId) {
            require(member.isObject(), "OCR.Space configuration must be an object");
            options.ocrSpace = OCRSpaceOptions::fromJson(member);
        } else {
            return false;
        }
        return true;
    });
    return options;
}

Options Options::fromJson(const QString& text) {
    const std::string bytes = text.toStdString();
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value value;
    std::string errors;
    if (!reader->parse(bytes.data(), bytes.data() + bytes.size(), &value, &errors))
        throw std::runtime_error("Invalid JSON: " + errors);
    return fromJson(value);
}

Json::Value Options::toJson() const {
    Json::Value object(Json::objectValue);
    if (scaleFactor)
        object[scaleFactorId] = *scaleFactor;
    if (language)
        object[languageId] = language->toStdString();
    Json::Value& profileList = object[profilesId] = Json::Value(Json::arrayValue);
    for (const QString& profile : profiles)
        profileList.append(profile.toStdString());
    Json::Value& freeOptions = object[optionsId] = Json::Value(Json::objectValue);
    for (auto it = options.cbegin(); it != options.cend(); ++it)
        freeOptions[it.key().toStdString()] = it.value().toStdString();
    const Json::Value tesseractObject = tesseract.toJson();
    if (!tesseractObject.empty())
        object[tesseractId] = tesseractObject;
    const Json::Value ocrSpaceObject = ocrSpace.toJson();
    if (!ocrSpaceObject.empty())
        object[ocrSpaceId] = ocrSpaceObject;
    return object;
}

Json::Value toJson(TesseractOptions::Mode mode) {
    return static_cast<int>(mode);
}

}  // namespace Tamrix::OCR
