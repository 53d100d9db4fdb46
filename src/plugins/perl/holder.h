#pragma once

#include "base/shared.h"
#include "plugins/perl/svref.h"

namespace Tamrix::PerlPlugin {

/// A Perl object that holds a SharedPtr<T>, of whatever class it was made or blessed into. It can't
/// be made by scripts.
template <typename T>
class Holder {
public:
    /// A new object of the class; undef for null.
    static SvRef wrap(pTHX_ SharedPtr<T> object, const char* className) {
        SV* const inner = newSV(0);
        if (!object)
            return SvRef::steal(inner);
        sv_magicext(inner, nullptr, PERL_MAGIC_ext, &s_table,
                    reinterpret_cast<const char*>(new SharedPtr<T>(std::move(object))), 0);
        SV* const reference = newRV_noinc(inner);
        sv_bless(reference, gv_stashpv(className, GV_ADD));
        return SvRef::steal(reference);
    }

    static bool check(SV* value) { return find(value) != nullptr; }

    /// What the object holds, null for any other value.
    static SharedPtr<T> unwrap(SV* value) {
        const MAGIC* const magic = find(value);
        return magic ? *reinterpret_cast<SharedPtr<T>*>(magic->mg_ptr) : SharedPtr<T>();
    }

private:
    static const MAGIC* find(SV* value) {
        if (!SvROK(value) || SvTYPE(SvRV(value)) < SVt_PVMG)
            return nullptr;
        return mg_findext(SvRV(value), PERL_MAGIC_ext, &s_table);
    }
    static int release(pTHX_ SV* /*inner*/, MAGIC* magic) {
        PERL_UNUSED_CONTEXT;
        delete reinterpret_cast<SharedPtr<T>*>(magic->mg_ptr);
        magic->mg_ptr = nullptr;
        return 0;
    }

    static const MGVTBL s_table;
};

template <typename T>
const MGVTBL Holder<T>::s_table = {nullptr, nullptr, nullptr, nullptr, Holder<T>::release,
                                   nullptr, nullptr, nullptr};

}  // namespace Tamrix::PerlPlugin
