#include "plugins/ruby/nativefunctions.h"

#include <QHash>
#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>
#include <utility>

#include "interpreter/language/directcall.h"
#include "interpreter/language/objectcalls.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/exceptions.h"
#include "plugins/ruby/holder.h"
#include "plugins/ruby/rubyargument.h"
#include "plugins/ruby/rubydebugger.h"
#include "plugins/ruby/rubyinterpreter.h"
#include "plugins/ruby/rubyruntime.h"

namespace Tamrix::RubyPlugin {

namespace {

/// Native functions that there can be.
constexpr std::size_t maximumFunctions = 512;

/// Parameters for which scripts can write a block.
const QStringList blockParameters = {"condition", "code", "callback"};

struct Slot {
    NativeFunction function;
    Front front;
    /// The place of the argument that a block stands for; -1 without.
    int blockPlace;
};

/// They live for the process.
std::array<const Slot*, maximumFunctions> s_slots;
std::size_t s_slotCount = 0;

int blockPlaceOf(const Parameters& parameters) {
    for (const QString& name : blockParameters) {
        const int place = parameters.names.indexOf(name);
        if (place >= 0)
            return place;
    }
    return -1;
}

/// Names as Ruby people write them mean the parameters, too: object_or_name.
void renameToParameters(CallArguments& arguments, const Parameters& parameters) {
    for (auto& [name, value] : arguments.named) {
        for (const QString& parameter : parameters.names) {
            if (name == snakeCase(parameter))
                name = parameter;
        }
    }
}

/// A block is the argument that it is written for.
void insertBlock(CallArguments& arguments, const Slot& slot) {
    if (slot.blockPlace < 0)
        throwException(rb_eArgError, slot.function.displayName() + "() takes no block");
    const int place = std::min(slot.blockPlace, static_cast<int>(arguments.positional.size()));
    const VALUE block = protect([] { return rb_block_proc(); });
    arguments.positional.insert(arguments.positional.begin() + place, new RubyArgument(block));
}

SharedPtr<NativeScriptObject> receiver(const Slot& slot, VALUE self) {
    return slot.function.kind() == NativeFunction::Kind::Method
               ? Holder<NativeScriptObject>::unwrap(self)
               : nullptr;
}

/// What a call gives whose arguments, and the object of a method, stand at their places.
template <typename ValueAt, typename... Object>
VALUE givenInPlace(RubyInterpreter& interpreter, const Slot& slot, int count, ValueAt valueAt,
                   const SharedPtr<Object>&... object) {
    VALUE value = Qnil;
    const auto take = [&value](VALUE result) { value = result; };
    if (!callDirectly<RubyContext>(interpreter, slot.function, count, valueAt, take, object...))
        [[unlikely]]
        raiseFailure(*interpreter.takeCallFailure());
    return value;
}

/// The call as nearly all are: without names, block and gaps.
VALUE callInPlace(RubyInterpreter& interpreter, const Slot& slot, int count, const VALUE* arguments,
                  VALUE self) {
    if (slot.front == Front::Self)
        return givenInPlace(interpreter, slot, count + 1,
                            [=](int place) { return place == 0 ? self : arguments[place - 1]; });
    const auto valueAt = [arguments](int place) { return arguments[place]; };
    if (slot.function.kind() == NativeFunction::Kind::Method)
        return givenInPlace(interpreter, slot, count, valueAt, receiver(slot, self));
    return givenInPlace(interpreter, slot, count, valueAt);
}

/// A call with all that there may be.
[[gnu::noinline]] VALUE callWithAll(const Slot& slot, int count, const VALUE* arguments,
                                    VALUE self) {
    CallArguments given = givenArguments(count, arguments);
    renameToParameters(given, slot.function.parameters());
    if (rb_block_given_p() != 0)
        insertBlock(given, slot);
    if (slot.front == Front::Self)
        given.positional.insert(given.positional.begin(), new RubyArgument(self));
    return valueOrRaise(callNative(RubyInterpreter::active(), slot.function, receiver(slot, self),
                                   std::move(given)));
}

/// Whether the last argument holds what stands by names: Ruby then makes a Hash of it. Asked only
/// where there is one, since Ruby looks for the answer in the frame.
bool haveNames(int count, const VALUE* arguments) {
    return count > 0 && RB_TYPE_P(arguments[count - 1], T_HASH) && rb_keyword_given_p() != 0;
}

/// A call that may be in another one. Ruby's own limit comes late for those, and each level has an
/// error with a stack of its own.
class NestedCall {
public:
    explicit NestedCall(const Slot& slot) {
        constexpr int maximumDepth = 400;
        if (s_depth >= maximumDepth) [[unlikely]]
            throwException(rb_eSysStackError,
                           slot.function.displayName() + "(): stack level too deep");
        ++s_depth;
    }
    ~NestedCall() { --s_depth; }
    NestedCall(const NestedCall&) = delete;
    NestedCall& operator=(const NestedCall&) = delete;

private:
    inline static int s_depth = 0;
};

/// Whether there are neither names nor a block nor gaps.
bool arePlain(const Slot& slot, int count, const VALUE* arguments) {
    const int before = slot.front == Front::Self ? 1 : 0;
    const auto isNil = [=](int index) {
        return index >= before && NIL_P(arguments[index - before]);
    };
    return rb_block_given_p() == 0 && !haveNames(count, arguments) &&
           slot.function.areInPlace(count + before, isNil);
}

[[gnu::noinline]] VALUE callSlot(const Slot& slot, int count, const VALUE* arguments, VALUE self) {
    return enterNative([&] {
        dropReleased();
        const NestedCall nested(slot);
        RubyInterpreter* const active = RubyInterpreter::active();
        VALUE result = Qnil;
        if (active && active->isScriptThread() &&
            slot.function.kind() != NativeFunction::Kind::Constructor &&
            arePlain(slot, count, arguments)) [[likely]]
            result = callInPlace(*active, slot, count, arguments, self);
        else
            result = callWithAll(slot, count, arguments, self);
        throwPostponed();
        return result;
    });
}

template <std::size_t index>
VALUE entry(int count, VALUE* arguments, VALUE self) {
    return callSlot(*s_slots[index], count, arguments, self);
}

template <std::size_t... indices>
constexpr std::array<Entry, sizeof...(indices)> entries(std::index_sequence<indices...>) {
    return {entry<indices>...};
}

/// Ruby hands no data to a C function: each native function has one of its own, which knows it by
/// its number.
constexpr auto s_entries = entries(std::make_index_sequence<maximumFunctions>());

// Global functions of applications

/// The application's names, by those that scripts call.
QHash<ID, QString>& globalFunctions() {
    static auto* const s_names = new QHash<ID, QString>;
    return *s_names;
}

VALUE callGlobalFunction(int count, VALUE* arguments, VALUE) {
    return enterNative([=] {
        const QString name = globalFunctions().value(rb_frame_callee());
        return valueOrRaise(
            callGlobal(RubyInterpreter::active(), name, givenArguments(count, arguments)));
    });
}

bool isTaken(ID name) {
    return rb_obj_respond_to(RubyRuntime::self().main(), name, 1) != 0;
}

}  // namespace

CallArguments givenArguments(int count, const VALUE* arguments) {
    CallArguments given;
    const bool isNamed = haveNames(count, arguments);
    const int positional = isNamed ? count - 1 : count;
    for (int index = 0; index < positional; ++index)
        given.positional.push_back(new RubyArgument(arguments[index]));
    if (isNamed) {
        for (const auto& [key, value] : entriesOf(arguments[count - 1]))
            given.named.emplace_back(fromRuby(key), new RubyArgument(value));
    }
    return given;
}

void raiseFailure(const ScriptFailure& failure) {
    const VALUE exception = exceptionOf(failure);
    if (RubyInterpreter* const interpreter = RubyInterpreter::active())
        interpreter->failures().notice(failure, interpreter->rubyDebugger(), exception);
    throwException(exception);
}

VALUE valueOrRaise(const ScriptResult& result) {
    if (!result)
        raiseFailure(result.error());
    return rubyValue(*result);
}

Entry entryOf(const NativeFunction& function, Front front) {
    for (std::size_t index = 0; index < s_slotCount; ++index) {
        const NativeFunction& known = s_slots[index]->function;
        if (known.address() == function.address() && known.kind() == function.kind() &&
            known.displayName() == function.displayName() && s_slots[index]->front == front)
            return s_entries[index];
    }
    if (s_slotCount == maximumFunctions)
        throw std::length_error("Ruby can be given no more functions");
    s_slots[s_slotCount] = new Slot{function, front, blockPlaceOf(function.parameters())};
    return s_entries[s_slotCount++];
}

QStringList rubyNames(const QString& name) {
    QStringList names{name, snakeCase(name)};
    names.removeDuplicates();
    return names;
}

void defineGlobal(const QString& name, Entry entry) {
    for (const QString& each : rubyNames(name))
        rb_define_private_method(rb_mKernel, each.toUtf8().constData(), entry, -1);
}

void defineSingleton(VALUE object, const QString& name, Entry entry) {
    for (const QString& each : rubyNames(name))
        rb_define_singleton_method(object, each.toUtf8().constData(), entry, -1);
}

void defineMethod(VALUE rubyClass, const QString& name, Entry entry) {
    for (const QString& each : rubyNames(name))
        rb_define_method(rubyClass, each.toUtf8().constData(), entry, -1);
}

void publishGlobalFunctions(const QStringList& names) {
    for (const QString& name : names) {
        for (const QString& each : rubyNames(name)) {
            const QByteArray text = each.toUtf8();
            const ID id = rb_intern2(text.constData(), text.size());
            if (isTaken(id))
                continue;
            globalFunctions().insert(id, name);
            rb_define_private_method(rb_mKernel, text.constData(), callGlobalFunction, -1);
        }
    }
}

}  // namespace Tamrix::RubyPlugin
