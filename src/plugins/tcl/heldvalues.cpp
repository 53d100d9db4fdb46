#include "plugins/tcl/heldvalues.h"

#include <algorithm>

#include "base/overloaded.h"
#include "interpreter/objects/objectidentity.h"
#include "plugins/tcl/conversion.h"
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
    HeldValues& owner = *gone->owner;
    owner.m_byName.remove(gone->name);
    const auto forget = [gone = gone.get()](auto& map) {
        for (auto entry = map.begin(); entry != map.end();)
            entry = *entry == gone ? map.erase(entry) : std::next(entry);
    };
    if (std::holds_alternative<SharedPtr<Object>>(gone->value))
        forget(owner.m_objects);
    else
        forget(owner.m_others);
}

TclRef HeldValues::hold(Value value, const QString& className) {
    auto held = std::make_unique<Held>();
    held->value = std::move(value);
    held->owner = this;
    held->name = QByteArray(prefix.data(), static_cast<int>(prefix.size())) +
                 nameOfClass(className) + QByteArray::number(++m_lastNumber);
    m_byName.insert(held->name, held.get());
    std::visit(Overloaded{[&](const SharedPtr<Object>& object) {
                              m_objects.insert(objectHash(object), held.get());
                          },
                          [&](const auto& other) { m_others.insert(other.get(), held.get()); }},
               held->value);
    const QByteArray name = held->name;
    Tcl_CreateObjCommand(m_interp, name.constData(), m_command, held.release(), commandDeleted);
    return TclRef(Tcl_NewStringObj(name.constData(), name.size()));
}

const HeldValues::Held* HeldValues::sameAs(const SharedPtr<Object>& object) const {
    const quint64 hash = objectHash(object);
    for (auto entry = m_objects.constFind(hash); entry != m_objects.cend() && entry.key() == hash;
         ++entry) {
        if (isSameObject(std::get<SharedPtr<Object>>((*entry)->value), object))
            return *entry;
    }
    return nullptr;
}

TclRef HeldValues::nameOf(const SharedPtr<Object>& object) {
    if (!object)
        return TclRef(Tcl_NewObj());
    if (const Held* const held = sameAs(object))
        return TclRef(Tcl_NewStringObj(held->name.constData(), held->name.size()));
    return hold(object, object->className());
}

TclRef HeldValues::nameOf(const SharedPtr<NativeScriptObject>& object, const QString& className) {
    if (!object)
        return TclRef(Tcl_NewObj());
    if (const Held* const held = m_others.value(object.get()))
        return TclRef(Tcl_NewStringObj(held->name.constData(), held->name.size()));
    return hold(object, className);
}

TclRef HeldValues::nameOf(const SharedPtr<ApplicationContext>& context) {
    if (!context)
        return TclRef(Tcl_NewObj());
    for (const Held* const held : qAsConst(m_others)) {
        const auto* const known = std::get_if<SharedPtr<ApplicationContext>>(&held->value);
        if (known && (*known)->id == context->id)
            return TclRef(Tcl_NewStringObj(held->name.constData(), held->name.size()));
    }
    return hold(context, QStringLiteral("ApplicationContext"));
}

TclRef HeldValues::nameOf(const SharedPtr<TestDataSet>& set) {
    const TclRef name = hold(set, QStringLiteral("DataSet"));
    const std::string_view bytes = bytesOf(name.get());
    TclRef records(Tcl_NewListObj(0, nullptr));
    for (int index = 0; index < set->count(); ++index) {
        const std::string record =
            std::string(bytes) + std::string(recordMark) + std::to_string(index);
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
