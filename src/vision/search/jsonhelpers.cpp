#include "vision/search/jsonhelpers.h"

#include <json/json.h>

#include <stdexcept>

namespace Tamrix::Vision {

namespace {

/// The member, which passes the test of its type.
const Json::Value& requireType(const Json::Value& value, const std::string& key,
                               bool (Json::Value::*isOfType)() const, const char* typeName) {
    const Json::Value& member = requireMember(value, key);
    if (!(member.*isOfType)())
        throw std::runtime_error(key + " entry is not " + typeName);
    return member;
}

}  // namespace

const Json::Value& requireMember(const Json::Value& value, const std::string& key) {
    if (!value.isObject() || !value.isMember(key))
        throw std::runtime_error(key + " entry missing");
    return value[key];
}

int requireInt(const Json::Value& value, const std::string& key) {
    return requireType(value, key, &Json::Value::isInt, "an integer").asInt();
}

double requireDouble(const Json::Value& value, const std::string& key) {
    return requireType(value, key, &Json::Value::isDouble, "a number").asDouble();
}

bool requireBool(const Json::Value& value, const std::string& key) {
    return requireType(value, key, &Json::Value::isBool, "a boolean").asBool();
}

QString requireQString(const Json::Value& value, const std::string& key) {
    return QString::fromStdString(
        requireType(value, key, &Json::Value::isString, "a string").asString());
}

const Json::Value& requireObject(const Json::Value& value, const std::string& key) {
    return requireType(value, key, &Json::Value::isObject, "an object");
}

const Json::Value& requireArray(const Json::Value& value, const std::string& key) {
    return requireType(value, key, &Json::Value::isArray, "an array");
}

}  // namespace Tamrix::Vision
