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

}  // namespace

// Type tests

QString TclArgument::typeName() const {
    const ValueType type = typeOf(value());
    if (const HeldValues::Held* const held = m_interpreter.values().find(value()))
        return m_interpreter.values().classNameOf(held->value);
    return QLatin1String(typeNames[static_cast<std::size_t>(type)]);
}

bool TclArgument::isBool() const {
    const ValueType type = typeOf(value());
    if (type == ValueType::Boolean)
        return true;
    return m_isResult ? truthOf(copyOf(value()).get()).has_value()
                      : type == ValueType::Text && isTruthWord(value());
}

bool TclArgument::isNumber() const {
    const ValueType type = typeOf(value());
    return TclPlugin::isNumber(type) ||
           (type == ValueType::Text && doubleOf(copyOf(value()).get()));
}

bool TclArgument::holdsInteger() const {
    const ValueType type = typeOf(value());
    return type == ValueType::Integer ||
           (type == ValueType::Text && integerOf(copyOf(value()).get()));
}

bool TclArgument::isString() const {
    const ValueType type = typeOf(value());
    // A number with a text may be one that the script has as a word.
    const bool isWord = TclPlugin::isNumber(type) && value()->bytes;
    return (type == ValueType::Text || type == ValueType::Boolean || isWord) &&
           !m_interpreter.values().find(value()) && !m_interpreter.values().record(value());
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
    return truthOf(copyOf(value()).get()).value_or(false);
}

double TclArgument::toDouble() const {
    return doubleOf(value()).value_or(0);
}

long long TclArgument::convertedToInt() const {
    const std::optional<Tcl_WideInt> number = integerOf(value());
    if (number && !isBig(value()))
        return *number;
    const double fraction = toDouble();
    // Tcl takes unsigned integers of 64 bits for negative ones.
    if (number && (*number < 0) == (fraction < 0))
        return *number;
    if (const std::optional<long long> whole = wholePart(fraction))
        return *whole;
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
    if (m_interpreter.values().find(value()) || m_interpreter.values().record(value()))
        return {};
    return textOf(value());
}

// Callables

SharedPtr<ScriptArgument> TclArgument::called(const List& arguments) const {
    m_interpreter.run(value(), {arguments, {}});
    SharedPtr<TclArgument> result(
        new TclArgument(m_interpreter, TclRef(Tcl_GetObjResult(m_interpreter.tcl()))));
    result->setIsResult();
    return result;
}

SharedPtr<TestDataSet> TclArgument::setOfRecords() const {
    const List records = toList();
    const SharedPtr<HeldRecord> first = records.empty()
                                            ? SharedPtr<HeldRecord>()
                                            : m_interpreter.values().record(valueOf(records[0]));
    return first ? first->set : SharedPtr<TestDataSet>();
}

}  // namespace Tamrix::TclPlugin
