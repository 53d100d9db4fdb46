#pragma once

#include <string>

#include "shared/tsvparser/blocks.h"

namespace Tamrix {

/// Splits a logical line into its fields. Calls store(begin, end) with the text of each field, in
/// order, which stays only until the next field. Quotes are taken away; what stands before and
/// behind a quoted part is of the same field. A line of quotes that hold nothing has no field at
/// all: a field is there once something was put into it, or when a separator stands before or
/// behind it.
template <typename Unit, typename Store>
void splitFields(const Unit* at, const Unit* end, Unit separator, Store store) {
    const Unit quote = '"';
    std::basic_string<Unit> joined;
    for (bool isFirst = true;; isFirst = false, ++at) {
        const Unit* begin = at;
        at = findEither(at, end, separator, quote);
        const Unit* fieldEnd = at;
        if (at != end && *at != separator) {
            // Inside quotes, up to the one that closes them; mostly that is the whole field.
            begin = at == begin ? at + 1 : begin;
            const bool isQuotedWhole = begin == at + 1;
            const Unit* closing = findEither(at + 1, end, quote, quote);
            if (isQuotedWhole &&
                (closing == end || closing + 1 == end || closing[1] == separator)) {
                fieldEnd = closing;
                at = closing == end ? end : closing + 1;
            } else {
                joined.assign(isQuotedWhole ? at : begin, at);
                for (;;) {
                    joined.append(at + 1, closing);
                    at = closing == end ? end : closing + 1;
                    if (at == end)
                        break;
                    if (*at == quote) {
                        // A doubled quote is one of the text.
                        joined += quote;
                    } else {
                        const Unit* const next = findEither(at, end, separator, quote);
                        joined.append(at, next);
                        at = next;
                        if (at == end || *at == separator)
                            break;
                    }
                    closing = findEither(at + 1, end, quote, quote);
                }
                begin = joined.data();
                fieldEnd = begin + joined.size();
            }
        }
        if (!isFirst || begin != fieldEnd || at != end)
            store(begin, fieldEnd);
        if (at == end)
            return;
    }
}

}  // namespace Tamrix
