#include "shared/ocr/result.h"

#include <json/json.h>

#include <stdexcept>

#include "shared/ocr/typedexception.h"
#include "vision/search/jsonhelpers.h"

namespace Tamrix::OCR {

namespace {

Word wordFromJson(const Json::Value& value) {
    if (!value.isObject())
        throw std::runtime_error("Word descriptor must be an object");
    Word word;
    word.text = Vision::requireQString(value, "text");
    word.rect = Vision::rectFromJson(Vision::requireObject(value, "location"));
    word.pointSize = Vision::requireInt(value, "pointSize");
    return word;
}

}  // namespace

Json::Value Word::toJson() const {
    Json::Value value(Json::objectValue);
    value["text"] = text.toStdString();
    value["location"] = Vision::rectToJson(rect);
    value["pointSize"] = pointSize;
    return value;
}

Match::Match(const Json::Value& value) {
    for (const Json::Value& word : Vision::requireObject(value, "words"))
        append(wordFromJson(word));
}

QStringList Match::wordList() const {
    QStringList texts;
    for (const Word& word : *this)
        texts.append(word.text);
    return texts;
}

QRect Match::boundingBox() const {
    QRect box;
    for (const Word& word : *this)
        box |= word.rect;
    return box;
}

Json::Value Match::toJson() const {
    Json::Value value(Json::objectValue);
    Json::Value& words = value["words"] = Json::Value(Json::arrayValue);
    for (const Word& word : *this)
        words.append(word.toJson());
    return value;
}

void requirePositiveOccurrence(int occurrence) {
    if (occurrence < 1)
        throw InvalidInputs(QStringLiteral("The occurrence index must be higher than zero"));
}

}  // namespace Tamrix::OCR
