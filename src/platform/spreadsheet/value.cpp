#include "platform/spreadsheet/value.h"

#include <limits>

namespace Swinder {

Value Value::fromBoolean(bool value) {
    Value result;
    result.m_type = Boolean;
    result.m_integer = value ? 1 : 0;
    return result;
}

Value Value::fromNumber(double value) {
    Value result;
    // Numbers out of range, and what is no number, must not reach the conversion.
    const bool fits =
        value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max();
    if (fits && static_cast<int>(value) == value) {
        result.m_type = Integer;
        result.m_integer = static_cast<int>(value);
    } else {
        result.m_type = Float;
        result.m_float = value;
    }
    return result;
}

Value Value::fromText(UString text, Type type) {
    Value result;
    result.m_type = type;
    result.m_text = text.data();
    result.m_length = text.length();
    return result;
}

Value Value::fromError(int code) {
    Value result;
    result.m_type = Error;
    result.m_integer = code;
    return result;
}

double Value::asFloat() const {
    if (m_type == Integer)
        return m_integer;
    return m_type == Float ? m_float : 0;
}

UString Value::asString() const {
    return m_type == String || m_type == RichText ? UString(m_text, m_length) : UString();
}

}  // namespace Swinder
