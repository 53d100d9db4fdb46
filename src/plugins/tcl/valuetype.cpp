#include "plugins/tcl/valuetype.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

#include "plugins/tcl/conversion.h"
#include "plugins/tcl/tclinternals.h"

namespace Tamrix::TclPlugin {

namespace {

/// By the names that Tcl's own types have.
constexpr struct {
    std::string_view name;
    ValueType type;
} types[] = {
    {"int", ValueType::Integer},     {"wideInt", ValueType::Integer},
    {"bignum", ValueType::Integer},  {"double", ValueType::Double},
    {"boolean", ValueType::Boolean}, {"booleanString", ValueType::Boolean},
    {"list", ValueType::List},       {"dict", ValueType::Dictionary},
    {"bytearray", ValueType::Bytes},
};

/// Whether the text of a number is the one that Tcl writes for it.
bool isCanonical(Tcl_Obj* number) {
    // A number without a text gets its own.
    if (!number->bytes)
        return true;
    if (number->typePtr->name != std::string_view("double") && !isBig(number))
        return isPlainInteger(number);
    TclRef copy(Tcl_DuplicateObj(number));
    Tcl_InvalidateStringRep(copy.get());
    return bytesOf(copy.get()) == bytesOf(number);
}

template <typename Read>
std::optional<Read> readAs(int (*get)(Tcl_Interp*, Tcl_Obj*, Read*), Tcl_Obj* value) {
    Read read{};
    return get(nullptr, value, &read) == TCL_OK ? std::optional(read) : std::nullopt;
}

}  // namespace

ValueType typeOf(Tcl_Obj* value) {
    if (!value->typePtr)
        return ValueType::Text;
    const std::string_view name = value->typePtr->name;
    const auto* const row = std::find_if(std::begin(types), std::end(types),
                                         [name](const auto& each) { return each.name == name; });
    if (row == std::end(types))
        return ValueType::Text;
    switch (row->type) {
        case ValueType::Integer:
        case ValueType::Double:
            return isCanonical(value) ? row->type : ValueType::Text;
        case ValueType::List:
            return isMadeAsList(value) ? row->type : ValueType::Text;
        case ValueType::Bytes:
            return value->bytes ? ValueType::Text : row->type;
        default:
            return row->type;
    }
}

bool isEmptyText(Tcl_Obj* value) {
    return !value->typePtr && bytesOf(value).empty();
}

bool isBig(Tcl_Obj* integer) {
    return integer->typePtr && integer->typePtr->name == std::string_view("bignum");
}

bool isPlainInteger(Tcl_Obj* value) {
    const std::string_view bytes = bytesOf(value);
    long long number = 0;
    std::from_chars(bytes.data(), bytes.data() + bytes.size(), number);
    return bytes == std::to_string(number);
}

std::optional<bool> truthOf(Tcl_Obj* value) {
    const std::optional<int> truth = readAs(Tcl_GetBooleanFromObj, value);
    return truth ? std::optional(*truth != 0) : std::nullopt;
}

std::optional<Tcl_WideInt> integerOf(Tcl_Obj* value) {
    return readAs(Tcl_GetWideIntFromObj, value);
}

std::optional<double> doubleOf(Tcl_Obj* value) {
    return readAs(Tcl_GetDoubleFromObj, value);
}

bool isTruthWord(Tcl_Obj* value) {
    const std::string_view bytes = bytesOf(value);
    return !bytes.empty() && QChar(QLatin1Char(bytes.front())).isLetter() &&
           truthOf(copyOf(value).get()).has_value();
}

TclRef copyOf(Tcl_Obj* value) {
    const std::string_view bytes = bytesOf(value);
    return TclRef(Tcl_NewStringObj(bytes.data(), static_cast<int>(bytes.size())));
}

}  // namespace Tamrix::TclPlugin
