#include "plugins/python/exceptionhandlers.h"

#include <opcode.h>

#include <optional>
#include <string_view>
#include <vector>

#include "plugins/python/frames.h"

// Handlers are read from the byte code of CPython 3.11: a table at each code object says which
// handler covers an instruction, and the handler begins with a fixed sequence of instructions.

namespace Tamrix::PythonPlugin {

namespace {

/// Handlers in handlers; no code is nested as deep.
constexpr int maximumDepth = 100;

/// The table of handlers: rows of start, length, handler and stack depth, each a number of six bits
/// a byte, the most significant first, with a mark in bytes that have another one behind them.
class HandlerTable {
public:
    explicit HandlerTable(PyObject* table)
        : m_bytes(PyBytes_AS_STRING(table), static_cast<std::size_t>(PyBytes_GET_SIZE(table))) {}

    /// The handler of an instruction, counted in code units; nothing when the frame is left.
    std::optional<int> handlerOf(int instruction) const {
        std::string_view rest = m_bytes;
        while (!rest.empty()) {
            const int start = takeNumber(rest);
            const int length = takeNumber(rest);
            const int handler = takeNumber(rest);
            takeNumber(rest);
            if (instruction >= start && instruction < start + length)
                return handler;
        }
        return std::nullopt;
    }

private:
    static int takeNumber(std::string_view& rest) {
        constexpr int continues = 0x40;
        constexpr int bits = 0x3f;
        int number = 0;
        while (!rest.empty()) {
            const int byte = static_cast<unsigned char>(rest.front());
            rest.remove_prefix(1);
            number = (number << 6) | (byte & bits);
            if (!(byte & continues))
                break;
        }
        return number;
    }

    std::string_view m_bytes;
};

enum class Verdict { Catches, MayCatch, Passes };

/// Runs the beginning of a handler as far as it says which exceptions it is for.
class HandlerReader {
public:
    HandlerReader(PyCodeObject* code, PyFrameObject* frame, PyObject* exception)
        : m_code(code),
          m_exception(exception),
          m_bytes(checked(PyCode_GetCode(code))),
          m_locals(checked(PyFrame_GetLocals(frame))),
          m_globals(checked(PyFrame_GetGlobals(frame))),
          m_builtins(checked(PyFrame_GetBuiltins(frame))) {}

    Verdict read(int handler) {
        m_next = handler;
        m_stack.clear();
        if (!take() || m_opcode != PUSH_EXC_INFO)
            return Verdict::Passes;
        // No type in front: the handler is for all of them.
        bool isBare = true;
        while (take()) {
            switch (m_opcode) {
                case POP_TOP:
                    return isBare ? Verdict::Catches : Verdict::Passes;
                case WITH_EXCEPT_START:
                case BUILD_LIST:  // except* collects what it has left over
                    return Verdict::MayCatch;
                case COPY:
                case SWAP:
                    break;
                case CHECK_EXC_MATCH: {
                    if (m_stack.empty())
                        return Verdict::MayCatch;
                    const PyRef type = std::move(m_stack.back());
                    m_stack.pop_back();
                    if (PyErr_GivenExceptionMatches(m_exception, type.get()))
                        return Verdict::Catches;
                    if (!take() || m_opcode != POP_JUMP_FORWARD_IF_FALSE)
                        return Verdict::MayCatch;
                    m_next += m_argument;
                    m_stack.clear();
                    isBare = true;
                    continue;
                }
                default:
                    // What else stands there is a `finally`.
                    if (!pushValue())
                        return Verdict::Passes;
            }
            isBare = false;
        }
        return Verdict::Passes;
    }

private:
    /// Takes the next instruction with its argument.
    bool take() {
        const auto* const bytes =
            reinterpret_cast<unsigned char*>(PyBytes_AS_STRING(m_bytes.get()));
        const auto count = static_cast<int>(PyBytes_GET_SIZE(m_bytes.get()) / 2);
        m_argument = 0;
        while (m_next < count) {
            m_opcode = bytes[2 * m_next];
            m_argument = (m_argument << 8) | bytes[2 * m_next + 1];
            ++m_next;
            if (m_opcode == CACHE)
                m_argument = 0;
            else if (m_opcode != EXTENDED_ARG)
                return true;
        }
        return false;
    }

    /// Pushes what the instruction does, if it is one of those that name exceptions.
    bool pushValue() {
        switch (m_opcode) {
            case LOAD_GLOBAL:
                // With the mark a call follows.
                return (m_argument & 1) == 0 && push(named(m_argument >> 1, PyRef()));
            case LOAD_NAME:
                return push(named(m_argument, m_locals));
            case LOAD_FAST:
            case LOAD_DEREF:
            case LOAD_CLASSDEREF:
                return push(
                    item(m_locals, PyTuple_GET_ITEM(m_code->co_localsplusnames, m_argument)));
            case LOAD_ATTR: {
                if (m_stack.empty())
                    return false;
                const PyRef object = std::move(m_stack.back());
                m_stack.pop_back();
                return push(PyRef::steal(PyObject_GetAttr(object.get(), name(m_argument))));
            }
            case BUILD_TUPLE: {
                if (static_cast<int>(m_stack.size()) < m_argument)
                    return false;
                const auto first = m_stack.end() - m_argument;
                PyRef tuple = PyRef::steal(PyTuple_New(m_argument));
                for (int index = 0; tuple && index < m_argument; ++index)
                    PyTuple_SET_ITEM(tuple.get(), index, (first + index)->release());
                m_stack.erase(first, m_stack.end());
                return push(std::move(tuple));
            }
            default:
                return false;
        }
    }

    bool push(PyRef value) {
        if (!value) {
            PyErr_Clear();
            return false;
        }
        m_stack.push_back(std::move(value));
        return true;
    }

    PyObject* name(int index) const { return PyTuple_GET_ITEM(m_code->co_names, index); }

    static PyRef item(const PyRef& mapping, PyObject* key) {
        PyRef value = PyRef::steal(mapping ? PyObject_GetItem(mapping.get(), key) : nullptr);
        if (!value)
            PyErr_Clear();
        return value;
    }

    /// A name as Python looks it up.
    PyRef named(int index, const PyRef& locals) const {
        for (const PyRef* names : {&locals, &m_globals, &m_builtins}) {
            if (PyRef value = item(*names, name(index)))
                return value;
        }
        return {};
    }

    PyCodeObject* m_code;
    PyObject* m_exception;
    PyRef m_bytes;
    PyRef m_locals;
    PyRef m_globals;
    PyRef m_builtins;
    std::vector<PyRef> m_stack;
    int m_next = 0;
    int m_opcode = 0;
    int m_argument = 0;
};

}  // namespace

bool mayCatch(PyObject* frame, PyObject* exception) {
    auto* const running = reinterpret_cast<PyFrameObject*>(frame);
    const PyRef codeObject = frameCode(frame);
    auto* const code = reinterpret_cast<PyCodeObject*>(codeObject.get());
    const HandlerTable table(code->co_exceptiontable);
    std::optional<int> handler = table.handlerOf(PyFrame_GetLasti(running) / 2);
    if (!handler)
        return false;
    HandlerReader reader(code, running, exception);
    for (int depth = 0; handler && depth < maximumDepth; ++depth) {
        if (reader.read(*handler) != Verdict::Passes)
            return true;
        // What passes a handler goes on where an exception in the handler would.
        handler = table.handlerOf(*handler);
    }
    return false;
}

}  // namespace Tamrix::PythonPlugin
