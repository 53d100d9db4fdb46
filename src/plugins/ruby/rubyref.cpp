#include "plugins/ruby/rubyref.h"

namespace Tamrix::RubyPlugin {

RubyRef& RubyRef::all() {
    // Never destroyed: references of the process end after static destruction has begun.
    static auto* const s_head = new RubyRef(Head());
    return *s_head;
}

void RubyRef::markAll(void*) {
    const RubyRef& head = all();
    for (const RubyRef* each = head.m_next; each != &head; each = each->m_next)
        rb_gc_mark(each->m_value);
}

void RubyRef::startMarking() {
    static const rb_data_type_t s_type = {
        "Tamrix references", {markAll, nullptr, nullptr, nullptr, {nullptr}}, nullptr, nullptr, 0};
    // The collector marks only what has data.
    static char s_data;
    rb_gc_register_mark_object(rb_data_typed_object_wrap(rb_cObject, &s_data, &s_type));
}

}  // namespace Tamrix::RubyPlugin
