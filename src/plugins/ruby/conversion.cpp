#include "plugins/ruby/conversion.h"

#include <algorithm>
#include <cmath>

#include "interpreter/language/literals.h"
#include "interpreter/language/looseutf8.h"

namespace Tamrix::RubyPlugin {

VALUE toRuby(const QString& text) {
    const QByteArray bytes = toLooseUtf8(text);
    const char* const data = bytes.constData();
    const long size = bytes.size();
    return protect([=] { return rb_utf8_str_new(data, size); });
}

VALUE toRuby(const std::string& utf8) {
    const char* const data = utf8.data();
    const long size = static_cast<long>(utf8.size());
    return protect([=] { return rb_utf8_str_new(data, size); });
}

VALUE toRuby(const QStringList& texts) {
    return arrayOf(texts, [](const QString& text) { return toRuby(text); });
}

VALUE toRuby(const QByteArray& bytes) {
    const char* const data = bytes.constData();
    const long size = bytes.size();
    return protect([=] { return rb_str_new(data, size); });
}

VALUE toRuby(const QDateTime& time) {
    if (!time.isValid())
        return Qnil;
    const qint64 milliseconds = time.toMSecsSinceEpoch();
    timespec point{};
    point.tv_sec = static_cast<time_t>(std::floor(static_cast<double>(milliseconds) / 1000.0));
    point.tv_nsec = static_cast<long>(milliseconds - point.tv_sec * 1000) * 1'000'000;
    // The last argument means the time zone here.
    return protect([&] { return rb_time_timespec_new(&point, INT_MAX); });
}

QString fromRuby(VALUE text) {
    if (RB_SYMBOL_P(text))
        text = protect([=] { return rb_sym2str(text); });
    if (!RB_TYPE_P(text, T_STRING))
        return {};
    const int encoding = rb_enc_get_index(text);
    const int range = rb_enc_str_coderange(text);
    if (range == ENC_CODERANGE_7BIT)
        return QString::fromLatin1(RSTRING_PTR(text), static_cast<int>(RSTRING_LEN(text)));
    const bool isUtf8 = encoding == rb_utf8_encindex() || encoding == rb_usascii_encindex() ||
                        encoding == rb_ascii8bit_encindex();
    if (isUtf8)
        return range == ENC_CODERANGE_VALID && encoding == rb_utf8_encindex()
                   ? fromWholeUtf8(RSTRING_PTR(text), static_cast<int>(RSTRING_LEN(text)))
                   : fromLooseUtf8(RSTRING_PTR(text), static_cast<int>(RSTRING_LEN(text)));
    const VALUE converted = protect([=] {
        return rb_str_encode(text, rb_enc_from_encoding(rb_utf8_encoding()),
                             ECONV_INVALID_REPLACE | ECONV_UNDEF_REPLACE, Qnil);
    });
    return fromWholeUtf8(RSTRING_PTR(converted), static_cast<int>(RSTRING_LEN(converted)));
}

QByteArray bytesOfRuby(VALUE text) {
    return RB_TYPE_P(text, T_STRING)
               ? QByteArray(RSTRING_PTR(text), static_cast<int>(RSTRING_LEN(text)))
               : QByteArray();
}

QDateTime timeFromRuby(VALUE value) {
    if (rb_obj_is_kind_of(value, rb_cTime) != Qtrue) {
        // A Date can only be there when its class is.
        const bool hasDates = rb_const_defined(rb_cObject, rb_intern("Date")) != 0;
        if (!hasDates || rb_obj_is_kind_of(value, protect([] {
                                               return rb_const_get(rb_cObject, rb_intern("Date"));
                                           })) != Qtrue)
            return {};
        value = callMethod(value, "to_time");
    }
    timespec point{};
    protect([&] {
        point = rb_time_timespec(value);
        return Qnil;
    });
    return QDateTime::fromMSecsSinceEpoch(qint64(point.tv_sec) * 1000 + point.tv_nsec / 1'000'000);
}

QString textOf(VALUE value) {
    if (RB_TYPE_P(value, T_STRING) || RB_SYMBOL_P(value))
        return fromRuby(value);
    if (NIL_P(value))
        return QStringLiteral("nil");
    try {
        return fromRuby(protect([=] { return rb_obj_as_string(value); }));
    } catch (const ScriptErrorSet&) {
        if (!isOrdinaryError())
            throw;
        takeException();
    }
    return QStringLiteral("<unprintable %1>").arg(classNameOf(value));
}

QString classNameOf(VALUE value) {
    // Not the value's own method `class`, which may be something else.
    return QString::fromUtf8(rb_class2name(rb_obj_class(value)));
}

std::vector<VALUE> itemsOf(VALUE array) {
    const VALUE* const items = RARRAY_CONST_PTR(array);
    return {items, items + RARRAY_LEN(array)};
}

std::vector<std::pair<VALUE, VALUE>> entriesOf(VALUE hash) {
    std::vector<std::pair<VALUE, VALUE>> entries;
    entries.reserve(RHASH_SIZE(hash));
    rb_hash_foreach(
        hash,
        [](VALUE key, VALUE value, VALUE target) -> int {
            reinterpret_cast<std::vector<std::pair<VALUE, VALUE>>*>(target)->emplace_back(key,
                                                                                          value);
            return ST_CONTINUE;
        },
        reinterpret_cast<VALUE>(&entries));
    return entries;
}

QString rubyLiteral(const QString& text) {
    const auto isPlain = [](QChar each) {
        return each != '\\' && each != '\'' && (each.isPrint() || each.isSurrogate());
    };
    if (std::all_of(text.begin(), text.end(), isPlain))
        return '\'' + text + '\'';
    LiteralStyle style;
    style.furtherEscaped = "#";
    return literalOf(text, style);
}

QString snakeCase(const QString& name) {
    QString result;
    for (int index = 0; index < name.size(); ++index) {
        const QChar letter = name.at(index);
        // Of a row of capitals, as in compareXMLFiles, the last one begins a word.
        const bool beginsWord = letter.isUpper() && index > 0 && name.at(index - 1) != '_' &&
                                (!name.at(index - 1).isUpper() ||
                                 (index + 1 < name.size() && name.at(index + 1).isLower()));
        if (beginsWord)
            result += '_';
        result += letter.toLower();
    }
    return result;
}

}  // namespace Tamrix::RubyPlugin
