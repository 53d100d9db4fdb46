#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <utility>
#include <vector>

#include "plugins/ruby/protection.h"

namespace Tamrix::RubyPlugin {

// Values between C++ and Ruby. What Ruby refuses throws ScriptErrorSet.

/// A String in UTF-8. Half of a pair of surrogates is kept as the three bytes that it would have.
VALUE toRuby(const QString& text);
VALUE toRuby(const std::string& utf8);
VALUE toRuby(const QStringList& texts);
/// A binary String.
VALUE toRuby(const QByteArray& bytes);
/// nil for an invalid one, else a Time here.
VALUE toRuby(const QDateTime& time);

/// A String or Symbol, whatever its encoding; the null string for what is neither.
QString fromRuby(VALUE text);
/// The bytes of a String, whatever its encoding; none of anything else.
QByteArray bytesOfRuby(VALUE text);
/// A Time, Date or DateTime; invalid for anything else.
QDateTime timeFromRuby(VALUE value);

/// Any value as text, as to_s gives it, but "nil" for nil. Errors of to_s are passed over, unless
/// they end the script.
QString textOf(VALUE value);
/// The class's name as scripts write it.
QString classNameOf(VALUE value);

/// An Array of what `toValue` gives for each element of a range.
template <typename Range, typename ToValue>
VALUE arrayOf(const Range& range, ToValue toValue) {
    const VALUE array = protect([] { return rb_ary_new(); });
    for (const auto& each : range) {
        const VALUE value = toValue(each);
        protect([=] { return rb_ary_push(array, value); });
    }
    return array;
}
/// A Hash of the pairs of a range, of which `toValue` makes keys and values.
template <typename Range, typename ToKey, typename ToValue>
VALUE hashOf(const Range& range, ToKey toKey, ToValue toValue) {
    const VALUE hash = protect([] { return rb_hash_new(); });
    for (const auto& [name, each] : range) {
        const VALUE key = toKey(name);
        const VALUE value = toValue(each);
        protect([=] { return rb_hash_aset(hash, key, value); });
    }
    return hash;
}

/// The elements of an Array. Who holds on to them keeps the Array as well.
std::vector<VALUE> itemsOf(VALUE array);
/// The entries of a Hash, in its order.
std::vector<std::pair<VALUE, VALUE>> entriesOf(VALUE hash);

/// The text as a literal of a script, on one line.
QString rubyLiteral(const QString& text);

/// wait_for_object for waitForObject.
QString snakeCase(const QString& name);

}  // namespace Tamrix::RubyPlugin
