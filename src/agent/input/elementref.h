#pragma once

#include "agent/core/session.h"
#include "agent/core/toolkit.h"

namespace Tamrix::Agent {

/// An element that is kept over turns of the event loop, in which it can vanish.
class ElementRef {
public:
    ElementRef() = default;
    explicit ElementRef(const Element& element)
        : m_handle(element.isNull() ? 0 : Session::self()->handle(element)) {}

    quint64 handle() const { return m_handle; }
    /// Null when it is gone.
    Element get() const {
        return m_handle == 0 ? Element() : Session::self()->find(m_handle).value_or(Element());
    }

private:
    quint64 m_handle = 0;
};

}  // namespace Tamrix::Agent
