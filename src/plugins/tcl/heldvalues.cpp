#include "plugins/tcl/heldvalues.h"

#include <algorithm>

#include "base/overloaded.h"
#include "interpreter/objects/objectidentity.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/nativeclasses.h"
#include "plugins/tcl/tclinterpreter.h"
#include "plugins/tcl/valuetype.h"

namespace Tamrix::TclPlugin {

namespace {

constexpr std::string_view prefix = "::tamrix::";
constexpr std::string_view recordMark = "::";

/// What of a class's name can stand in that of a command.
QByteArray nameOfClass(const QString& className) {
    QByteArray name = className.toLatin1();
    std::replace_if(
        name.begin(), name.end(),
        [](char letter) { return !QChar(QLatin1Char(letter)).isLetterOrNumber(); }, '_');
    // A number behind a digit would belong to it.
    return !name.isEmpty() && QChar(QLatin1Char(name.back())).isDigit() ? name + '_' : name;
}

bool hasPrefix(std::string_view bytes) {
    return bytes.substr(0, prefix.size()) == prefix;
}

/// The name of the data set in that of a record, and the number behind it; an empty name for
/// others.
std::pair<QByteArray, int> partsOfRecord(std::string_view bytes) {
    const std::size_t mark = bytes.rfind(recordMark);
    if (!hasPrefix(bytes) || mark < prefix.size())
        return {};
    const QByteArray number(bytes.data() + mark + recordMark.size(),
                            static_cast<int>(bytes.size() - mark - recordMark.size()));
    bool isNumber = false;
    const int index = number.toInt(&isNumber);
    if (!isNumber)
        return {};
    return {QByteArray(bytes.data(), static_cast<int>(mark)), index};
}

quint64 keyOf(const HeldValues::Value& value) {
    return std::visit(
        Overloaded{[](const SharedPtr<Object>& object) { return objectHash(object); },
                   [](const SharedPtr<ApplicationContext>& context) {
                       return static_cast<quint64>(context->id);
                   },
                   [](const auto& other) { return reinterpret_cast<quint64>(other.get()); }},
        value);
}

bool areSame(const HeldValues::Value& left, const HeldValues::Value& right) {
    const auto* const object = std::get_if<SharedPtr<Object>>(&left);
    const auto* const other = std::get_if<SharedPtr<Object>>(&right);
    return left.index() == right.index() &&
           (object ? isSameObject(*object, *other) : keyOf(left) == keyOf(right));
}

TclRef valueOfName(const QByteArray& name) {
    return TclRef(Tcl_NewStringObj(name.constData(), name.size()));
}

}  // namespace

HeldValues::~HeldValues() {
    // Their commands are gone with the interpreter of Tcl, or are to go now.
    while (!m_byName.isEmpty()) {
        const QByteArray name = m_byName.cbegin().key();
        if (Tcl_DeleteCommand(m_interp, name.constData()) != 0)
            commandDeleted(m_byName.value(name));
    }
}

void HeldValues::commandDeleted(void* held) {
    const std::unique_ptr<Held> gone(static_cast<Held*>(held));
    gone->owner->m_byName.remove(gone->name);
    gone->owner->m_byKey.remove(keyOf(gone->value), gone.get());
}

QString HeldValues::classNameOf(const Value& value) const {
    return std::visit(
        Overloaded{[](const SharedPtr<Object>& object) { return object->className(); },
                   [this](const SharedPtr<NativeScriptObject>& object) {
                       return m_interpreter.classes().classNameOf(object->typeId());
                   },
                   [](const SharedPtr<ApplicationContext>&) {
                       return QStringLiteral("ApplicationContext");
                   },
                   [](const SharedPtr<TestDataSet>&) { return QStringLiteral("DataSet"); }},
        value);
}

TclRef HeldValues::nameOf(const Value& value) {
    const bool isNull = std::visit([](const auto& pointer) { return !pointer; }, value);
    if (isNull)
        return TclRef(Tcl_NewObj());
    TclRef name;
    for (const Held* const held : m_byKey.values(keyOf(value))) {
        if (areSame(held->value, value))
            name = valueOfName(held->name);
    }
    if (!name)
        name = hold(value);
    const auto* const set = std::get_if<SharedPtr<TestDataSet>>(&value);
    return set ? recordsOf(*set, name.get()) : name;
}

TclRef HeldValues::hold(const Value& value) {
    auto held = std::make_unique<Held>();
    held->value = value;
    held->owner = this;
    held->name = QByteArray(prefix.data(), static_cast<int>(prefix.size())) +
                 nameOfClass(classNameOf(value)) + QByteArray::number(++m_lastNumber);
    m_byName.insert(held->name, held.get());
    m_byKey.insert(keyOf(value), held.get());
    const QByteArray name = held->name;
    Tcl_CreateObjCommand(m_interp, name.constData(), m_command, held.release(), commandDeleted);
    return valueOfName(name);
}

TclRef HeldValues::recordsOf(const SharedPtr<TestDataSet>& set, Tcl_Obj* name) {
    TclRef records(Tcl_NewListObj(0, nullptr));
    for (int index = 0; index < set->count(); ++index) {
        const std::string record =
            std::string(bytesOf(name)) + std::string(recordMark) + std::to_string(index);
        Tcl_ListObjAppendElement(nullptr, records.get(),
                                 Tcl_NewStringObj(record.data(), static_cast<int>(record.size())));
    }
    return records;
}

const HeldValues::Held* HeldValues::find(Tcl_Obj* name) const {
    // Bytes would not be any more what they were made as.
    if (typeOf(name) != ValueType::Text)
        return nullptr;
    const std::string_view bytes = bytesOf(name);
    if (!hasPrefix(bytes))
        return nullptr;
    return m_byName.value(QByteArray::fromRawData(bytes.data(), static_cast<int>(bytes.size())));
}

SharedPtr<TestDataSet> HeldValues::setOfRecord(Tcl_Obj* name) const {
    if (typeOf(name) != ValueType::Text)
        return {};
    const Held* const held = m_byName.value(partsOfRecord(bytesOf(name)).first);
    const auto* const set = held ? std::get_if<SharedPtr<TestDataSet>>(&held->value) : nullptr;
    return set ? *set : SharedPtr<TestDataSet>();
}

const TestDataRecord* HeldValues::findRecord(Tcl_Obj* name) const {
    const SharedPtr<TestDataSet> set = setOfRecord(name);
    const int index = set ? partsOfRecord(bytesOf(name)).second : -1;
    return index >= 0 && index < set->count() ? set->record(index) : nullptr;
}

}  // namespace Tamrix::TclPlugin
