#pragma once

#include <json/forwards.h>

#include <QString>
#include <string>

#include "base/export.h"

namespace Tamrix::Vision {

// Members that an object of JSON must have, of the type that it must have. What is missing or of
// another type is a std::runtime_error: the member's name, and " entry missing", " entry is not an
// integer" and so on behind it. Of a value that is no object all members are missing.

TAMRIX_EXPORT const Json::Value& requireMember(const Json::Value& value, const std::string& key);
TAMRIX_EXPORT int requireInt(const Json::Value& value, const std::string& key);
TAMRIX_EXPORT double requireDouble(const Json::Value& value, const std::string& key);
TAMRIX_EXPORT bool requireBool(const Json::Value& value, const std::string& key);
TAMRIX_EXPORT QString requireQString(const Json::Value& value, const std::string& key);
TAMRIX_EXPORT const Json::Value& requireObject(const Json::Value& value, const std::string& key);
TAMRIX_EXPORT const Json::Value& requireArray(const Json::Value& value, const std::string& key);

}  // namespace Tamrix::Vision
