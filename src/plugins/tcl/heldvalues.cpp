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

constexpr char prefix[] = "::tamrix::";
constexpr char recordMark[] = "::";

/// What of a class's name can stand in that of a command.
QByteArray nameOfClass(const QString& className) {
    QByteArray name = className.toLatin1();
    std::replace_if(
        name.begin(), name.end(),
        [](char letter) { return !QChar(QLatin1Char(letter)).isLetterOrNumber(); }, '_');
    // A number behind a digit would belong to it.
    return !name.isEmpty() && QChar(QLatin1Char(name.back())).isDigit() ? name + '_' : name;
}

/// The text of a value that may be a name, as long as the value is not changed; empty when it can
/// be none.
QByteArray possibleName(Tcl_Obj* value) {
    // Bytes would not be any more what they were made as.
    if (typeOf(value) != ValueType::Text)
        return {};
    const std::string_view bytes = bytesOf(value);
    const auto name = QByteArray::fromRawData(bytes.data(), static_cast<int>(bytes.size()));
    return name.startsWith(prefix) ? name : QByteArray();
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
    QByteArray name;
    for (const Held* const held : m_byKey.values(keyOf(value))) {
        if (areSame(held->value, value))
            name = held->name;
    }
    if (name.isEmpty())
        name = hold(value);
    const auto* const set = std::get_if<SharedPtr<TestDataSet>>(&value);
    if (!set)
        return valueOfName(name);
    TclRef records(Tcl_NewListObj(0, nullptr));
    for (int index = 0; index < (*set)->count(); ++index)
        Tcl_ListObjAppendElement(nullptr, records.get(),
                                 valueOfName(name + recordMark + QByteArray::number(index)).get());
    return records;
}

QByteArray HeldValues::hold(const Value& value) {
    auto held = std::make_unique<Held>();
    held->value = value;
    held->owner = this;
    held->name = prefix + nameOfClass(classNameOf(value)) + QByteArray::number(++m_lastNumber);
    m_byName.insert(held->name, held.get());
    m_byKey.insert(keyOf(value), held.get());
    const QByteArray name = held->name;
    Tcl_CreateObjCommand(m_interp, name.constData(), m_command, held.release(), commandDeleted);
    return name;
}

const HeldValues::Held* HeldValues::find(Tcl_Obj* name) const {
    return m_byName.value(possibleName(name));
}

SharedPtr<HeldRecord> HeldValues::record(Tcl_Obj* name) const {
    // The name of the data set with a number behind it.
    const QByteArray whole = possibleName(name);
    const int mark = whole.lastIndexOf(recordMark);
    const Held* const held = mark > 0 ? m_byName.value(whole.left(mark)) : nullptr;
    const auto* const set = held ? std::get_if<SharedPtr<TestDataSet>>(&held->value) : nullptr;
    bool isNumber = false;
    const int index = whole.mid(mark + 2).toInt(&isNumber);
    const TestDataRecord* const row = set && isNumber ? (*set)->record(index) : nullptr;
    return row ? new HeldRecord(*set, row) : nullptr;
}

}  // namespace Tamrix::TclPlugin
