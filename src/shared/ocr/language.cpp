#include "shared/ocr/language.h"

#include <json/json.h>

namespace Tamrix::OCR {

Json::Value Language::toJson() const {
    Json::Value object(Json::objectValue);
    object["code"] = code.toStdString();
    object["recordedName"] = recordedName.toStdString();
    object["displayName"] = displayName.toStdString();
    return object;
}

}  // namespace Tamrix::OCR
