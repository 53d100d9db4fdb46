#pragma once

#include "plugins/ruby/rubyapi.h"

namespace Tamrix::RubyPlugin {

/// Keeps a Ruby value alive. Values in variables on the stack need none: the garbage collector
/// looks for them there, but nowhere else in C++. Used with Ruby's lock held.
class RubyRef {
public:
    RubyRef() { link(); }
    explicit RubyRef(VALUE value) : m_value(value) { link(); }
    RubyRef(const RubyRef& other) : RubyRef(other.m_value) {}
    RubyRef& operator=(const RubyRef& other) {
        m_value = other.m_value;
        return *this;
    }
    RubyRef& operator=(VALUE value) {
        m_value = value;
        return *this;
    }
    ~RubyRef() {
        m_previous->m_next = m_next;
        m_next->m_previous = m_previous;
    }

    /// Qundef when there is none.
    VALUE get() const { return m_value; }
    /// Whether there is a value, which may be nil.
    explicit operator bool() const { return m_value != Qundef; }
    void reset() { m_value = Qundef; }

    /// Lets the garbage collector know of all of them; once for the process, when Ruby has started.
    static void startMarking();

private:
    struct Head {};
    explicit RubyRef(Head) : m_previous(this), m_next(this) {}
    void link() {
        RubyRef& head = all();
        m_previous = &head;
        m_next = head.m_next;
        m_next->m_previous = this;
        head.m_next = this;
    }
    static RubyRef& all();
    static void markAll(void*);

    VALUE m_value = Qundef;
    RubyRef* m_previous = nullptr;
    RubyRef* m_next = nullptr;
};

}  // namespace Tamrix::RubyPlugin
