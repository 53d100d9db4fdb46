#pragma once

#include <cstdint>

#include "base/export.h"

namespace Swinder {

/// A text in UTF-16 that the workbook keeps: valid as long as the workbook is and until it is
/// loaded again. Not terminated by a zero.
class UString {
public:
    UString() = default;
    UString(const std::uint16_t* data, int length) : m_data(data), m_length(length) {}

    const std::uint16_t* data() const { return m_data; }
    /// The number of UTF-16 units.
    int length() const { return m_length; }

private:
    const std::uint16_t* m_data = nullptr;
    int m_length = 0;
};

/// What a cell holds. Of a formula this is the result that the file has stored.
class TAMRIX_EXPORT Value {
public:
    enum Type : std::uint8_t {
        Empty = 0,
        Boolean = 1,
        Integer = 2,
        Float = 3,
        String = 4,
        RichText = 5,  ///< a text with changes of font, which are not kept
        Error = 6,     ///< a formula that has no result, such as #DIV/0!
    };

    Value() = default;
    static Value fromBoolean(bool value);
    /// A whole number that an int can hold becomes an Integer, any other number a Float. Dates are
    /// numbers too.
    static Value fromNumber(double value);
    /// `type` is String or RichText. The text is not copied.
    static Value fromText(UString text, Type type);
    /// `code` is the number that the file format gives the error.
    static Value fromError(int code);

    Type type() const { return m_type; }
    /// Each gives what a value of its type holds, and false, 0 or the empty text for other types;
    /// asFloat() serves an Integer as well, and asInteger() gives the code of an Error.
    bool asBoolean() const { return m_type == Boolean && m_integer != 0; }
    int asInteger() const { return m_type == Integer || m_type == Error ? m_integer : 0; }
    double asFloat() const;
    UString asString() const;

private:
    // A sheet may hold millions of these, so the members share their place.
    union {
        double m_float = 0;
        const std::uint16_t* m_text;
        int m_integer;
    };
    int m_length = 0;
    Type m_type = Empty;
};

}  // namespace Swinder
