#include "plugins/tcl/tclargument.h"

#include <QRegularExpression>

#include "interpreter/objects/objectidentity.h"
#include "plugins/tcl/containers.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/tclinterpreter.h"
#include "plugins/tcl/valuetype.h"

namespace Tamrix::TclPlugin {

namespace {

/// In the order of ValueType.
constexpr const char* typeNames[] = {"string", "boolean", "int", "double", "list", "dict", "bytes"};

/// A value of the same text, so that a look at it as something else leaves no traces.
TclRef copyOf(Tcl_Obj* value) {
    const std::string_view bytes = bytesOf(value);
    return TclRef(Tcl_NewStringObj(bytes.data(), static_cast<int>(bytes.size())));
}

}  // namespace

TclArgument::TclArgument(TclInterpreter& interpreter, TclRef value)
    : m_interpreter(interpreter), m_value(std::move(value)) {}

// Type tests

QString TclArgument::typeName() const {
    const ValueType type = typeOf(value());
    if (const HeldValues::Held* const held = m_interpreter.values().find(value()))
        return m_interpreter.values().classNameOf(held->value);
    return QLatin1String(typeNames[static_cast<std::size_t>(type)]);
}

bool TclArgument::isBool() const {
    if (typeOf(value()) == ValueType::Boolean)
        return true;
    int truth = 0;
    if (m_isResult)
        return Tcl_GetBooleanFromObj(nullptr, copyOf(value()).get(), &truth) == TCL_OK;
    return typeOf(value()) == ValueType::Text && truthWord(value()).has_value();
}

bool TclArgument::isNumber() const {
    switch (typeOf(value())) {
        case ValueType::Integer:
        case ValueType::Double:
            return true;
        case ValueType::Text: {
            double number = 0;
            return Tcl_GetDoubleFromObj(nullptr, copyOf(value()).get(), &number) == TCL_OK;
        }
        default:
            return false;
    }
}

bool TclArgument::isInteger() const {
    switch (typeOf(value())) {
        case ValueType::Integer:
            return true;
        case ValueType::Text: {
            Tcl_WideInt number = 0;
            return Tcl_GetWideIntFromObj(nullptr, copyOf(value()).get(), &number) == TCL_OK;
        }
        default:
            return false;
    }
}

bool TclArgument::isString() const {
    const ValueType type = typeOf(value());
    // A number with a text may be one that the script has as a word.
    const bool isWord = (type == ValueType::Integer || type == ValueType::Double) && value()->bytes;
    return (type == ValueType::Text || type == ValueType::Boolean || isWord) &&
           !m_interpreter.values().find(value()) && !m_interpreter.values().findRecord(value());
}

bool TclArgument::isCallable() const {
    const ValueType type = typeOf(value());
    if (type != ValueType::Text && type != ValueType::List)
        return false;
    const TclRef copy = copyOf(value());
    const auto words = elementsOf(copy.get());
    return !words.empty() && Tcl_GetCommandFromObj(m_interpreter.tcl(), words[0]) != nullptr;
}

bool TclArgument::isList() const {
    int count = 0;
    const ValueType type = typeOf(value());
    if (type != ValueType::Text)
        return type == ValueType::List;
    // A single word is no list, unless it was made as one.
    return Tcl_ListObjLength(nullptr, copyOf(value()).get(), &count) == TCL_OK && count != 1;
}

bool TclArgument::isMap() const {
    int count = 0;
    const ValueType type = typeOf(value());
    if (type != ValueType::Text && type != ValueType::List)
        return type == ValueType::Dictionary;
    return Tcl_DictObjSize(nullptr, copyOf(value()).get(), &count) == TCL_OK;
}

// Conversions

bool TclArgument::toBool() const {
    int truth = 0;
    return Tcl_GetBooleanFromObj(nullptr, copyOf(value()).get(), &truth) == TCL_OK && truth != 0;
}

double TclArgument::toDouble() const {
    double number = 0;
    if (Tcl_GetDoubleFromObj(nullptr, value(), &number) != TCL_OK)
        return 0;
    return number;
}

long long TclArgument::toInt() const {
    Tcl_WideInt number = 0;
    const bool isInteger = Tcl_GetWideIntFromObj(nullptr, value(), &number) == TCL_OK;
    if (isInteger && !isBig(value()))
        return number;
    const double fraction = toDouble();
    // Tcl takes unsigned integers of 64 bits for negative ones.
    if (isInteger && (number < 0) == (fraction < 0))
        return number;
    constexpr double limit = 9223372036854775808.0;  // 2^63
    if (fraction >= -limit && fraction < limit)
        return static_cast<long long>(fraction);
    m_interpreter.throwError(textOf(value()) +
                             " is too large: only integers of 64 bits can be passed on");
}

QString TclArgument::toString() const {
    if (const SharedPtr<Object> object = toObject()) {
        const ObjectResult<QString> text = objectText(object);
        return text ? *text : textOf(value());
    }
    return textOf(value());
}

ScriptArgument::List TclArgument::toList() const {
    List values;
    const TclRef list = typeOf(value()) == ValueType::List ? m_value : copyOf(value());
    const auto elements = elementsOf(list.get());
    values.reserve(elements.size());
    for (Tcl_Obj* const element : elements)
        values.push_back(new TclArgument(m_interpreter, TclRef(element)));
    return values;
}

ScriptArgument::Map TclArgument::toMap() const {
    Map values;
    const TclRef map = typeOf(value()) == ValueType::Dictionary ? m_value : copyOf(value());
    for (const auto& [key, entry] : entriesOf(map.get()))
        values[textOf(key)] = new TclArgument(m_interpreter, TclRef(entry));
    return values;
}

// Names of objects

QString TclArgument::toRealName() const {
    const QString text = toString();
    // A real name without the braces that are quotes to Tcl: {type='QPushButton'}.
    static const QRegularExpression s_property(QStringLiteral("^\\s*\\w+\\s*[~*]?=\\s*['{]"));
    if (text.contains(s_property))
        return QLatin1Char('{') + text.trimmed() + QLatin1Char('}');
    if (text.startsWith(QLatin1Char(':')) || text.startsWith(QLatin1Char('{')) || !isMap())
        return text;
    static const QRegularExpression s_name(QStringLiteral("^[A-Za-z_]\\w*[~*]?$"));
    const TclRef dictionary = nameDictionary(value());
    if (!dictionary)
        return text;
    for (const auto& [property, wanted] : entriesOf(dictionary.get())) {
        if (!textOf(property).contains(s_name))
            return text;
    }
    return TclArgument(m_interpreter, dictionary).ScriptArgument::toRealName();
}

PropertyValue TclArgument::toPropertyValue() const {
    if (typeOf(value()) == ValueType::Dictionary)
        return PropertyValue(ScriptArgument::toRealName(), 0, true);
    const QString text = toString();
    return PropertyValue(text, 0, isObject() || isMultiPropertyName(text));
}

// Values for applications

std::optional<QByteArray> TclArgument::bytes() const {
    if (typeOf(value()) != ValueType::Bytes)
        return std::nullopt;
    int size = 0;
    const unsigned char* const bytes = Tcl_GetByteArrayFromObj(value(), &size);
    return QByteArray(reinterpret_cast<const char*>(bytes), size);
}

std::optional<QVariant> TclArgument::toVariant() const {
    if (typeOf(value()) != ValueType::Text || isObject())
        return LanguageArgument::toVariant();
    // As one or the other it comes to the same.
    if (isPlainInteger(value()))
        return toInt();
    if (m_interpreter.values().find(value()) || m_interpreter.values().findRecord(value()))
        return {};
    return textOf(value());
}

bool TclArgument::isNull() const {
    return isEmptyText(value());
}

// Callables

SharedPtr<ScriptArgument> TclArgument::called(const List& arguments) const {
    m_interpreter.run(value(), {arguments, {}});
    SharedPtr<TclArgument> result(
        new TclArgument(m_interpreter, TclRef(Tcl_GetObjResult(m_interpreter.tcl()))));
    result->setIsResult();
    return result;
}

LanguageInterpreter* TclArgument::active() {
    return TclInterpreter::active();
}

QString TclArgument::callableIdentifier() const {
    return QStringLiteral("Callable|") + textOf(value());
}

// What it may be the name of

template <>
SharedPtr<Object> TclArgument::held() const {
    return m_interpreter.values().get<Object>(value());
}

template <>
SharedPtr<NativeScriptObject> TclArgument::held() const {
    return m_interpreter.values().get<NativeScriptObject>(value());
}

template <>
SharedPtr<ApplicationContext> TclArgument::held() const {
    return m_interpreter.values().get<ApplicationContext>(value());
}

template <>
SharedPtr<TestDataSet> TclArgument::held() const {
    const List records = toList();
    return records.empty() ? SharedPtr<TestDataSet>()
                           : m_interpreter.values().setOfRecord(valueOf(records.front()));
}

template <>
SharedPtr<HeldRecord> TclArgument::held() const {
    const TestDataRecord* const record = m_interpreter.values().findRecord(value());
    return record ? new HeldRecord(m_interpreter.values().setOfRecord(value()), record) : nullptr;
}

}  // namespace Tamrix::TclPlugin
