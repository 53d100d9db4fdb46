#pragma once

#include <json/json.h>

#include <sstream>
#include <stdexcept>
#include <string>

namespace Tamrix::Test {

/// The text of the std::runtime_error that the function throws, "nothing thrown" for none.
template <typename Function>
std::string failureText(Function function) {
    try {
        function();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "nothing thrown";
}

inline Json::Value jsonOf(const std::string& text) {
    Json::Value value;
    std::istringstream(text) >> value;
    return value;
}

}  // namespace Tamrix::Test
