#pragma once

#include <utility>

#include "plugins/perl/perlheaders.h"

namespace Tamrix::PerlPlugin {

/// A counted reference to a Perl value; null is legal. Script thread only.
class SvRef {
public:
    SvRef() = default;
    /// Takes over a reference that the caller owns.
    static SvRef steal(SV* value) { return SvRef(value); }
    static SvRef borrow(SV* value) { return SvRef(SvREFCNT_inc(value)); }

    SvRef(const SvRef& other) : m_value(SvREFCNT_inc(other.m_value)) {}
    SvRef(SvRef&& other) noexcept : m_value(std::exchange(other.m_value, nullptr)) {}
    SvRef& operator=(SvRef other) noexcept {
        std::swap(m_value, other.m_value);
        return *this;
    }
    ~SvRef() {
        if (m_value)
            drop();
    }

    SV* get() const { return m_value; }
    SV* release() { return std::exchange(m_value, nullptr); }
    explicit operator bool() const { return m_value != nullptr; }

private:
    explicit SvRef(SV* value) : m_value(value) {}

    void drop() {
        // Without asking which runtime it is.
        if (SvREFCNT(m_value) > 1) {
            --SvREFCNT(m_value);
            return;
        }
        dTHX;
        // The end of an object may run code of the script, which may leave by a jump: not here,
        // where it would jump over C++, but at Perl's next statement.
        if (SvROK(m_value))
            sv_2mortal(m_value);
        else
            SvREFCNT_dec_NN(m_value);
    }

    SV* m_value = nullptr;
};

}  // namespace Tamrix::PerlPlugin
