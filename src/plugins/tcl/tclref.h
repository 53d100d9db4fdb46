#pragma once

#include <tcl.h>

#include <utility>

namespace Tamrix::TclPlugin {

/// A counted reference to a value of Tcl, null at first.
class TclRef {
public:
    TclRef() = default;
    /// Takes one more reference; a new object of Tcl has none yet.
    explicit TclRef(Tcl_Obj* object) : m_object(object) {
        if (m_object)
            Tcl_IncrRefCount(m_object);
    }
    TclRef(const TclRef& other) : TclRef(other.m_object) {}
    TclRef(TclRef&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    ~TclRef() {
        if (m_object)
            Tcl_DecrRefCount(m_object);
    }
    TclRef& operator=(TclRef other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }

    Tcl_Obj* get() const { return m_object; }
    explicit operator bool() const { return m_object != nullptr; }

private:
    Tcl_Obj* m_object = nullptr;
};

/// Keeps result and error of Tcl while something else runs in it.
class TclStateAside {
public:
    explicit TclStateAside(Tcl_Interp* interp)
        : m_interp(interp), m_state(Tcl_SaveInterpState(interp, TCL_OK)) {}
    ~TclStateAside() { Tcl_RestoreInterpState(m_interp, m_state); }
    TclStateAside(const TclStateAside&) = delete;
    TclStateAside& operator=(const TclStateAside&) = delete;

private:
    Tcl_Interp* m_interp;
    Tcl_InterpState m_state;
};

}  // namespace Tamrix::TclPlugin
