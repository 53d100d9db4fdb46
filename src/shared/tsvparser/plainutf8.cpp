#include "shared/tsvparser/plainutf8.h"

#include <cstdint>
#include <cstring>

#include "base/utf8.h"

namespace Tamrix {

namespace {

bool isByteOrderMark(const unsigned char* at) {
    return at[0] == 0xef && at[1] == 0xbb && at[2] == 0xbf;
}

/// The length of the sequence at the beginning, which is not ASCII; 0 when it is wrong or a
/// byte-order mark.
int sequenceLength(const unsigned char* at, std::size_t left) {
    const char* const bytes = reinterpret_cast<const char*>(at);
    const int length = utf8CharacterLength(bytes, bytes + left);
    return length == 3 && isByteOrderMark(at) ? 0 : length;
}

}  // namespace

bool isPlainUtf8(const char* bytes, std::size_t size) {
    const auto* const text = reinterpret_cast<const unsigned char*>(bytes);
    constexpr std::uint64_t highBits = 0x8080808080808080;
    std::size_t at = 0;
    while (at < size) {
        std::uint64_t words[4];
        if (size - at >= sizeof words) {
            std::memcpy(words, text + at, sizeof words);
            if (((words[0] | words[1] | words[2] | words[3]) & highBits) == 0) {
                at += sizeof words;
                continue;
            }
        }
        // Up to the end of the first other sequence, or of the text.
        while (at < size && text[at] < 0x80)
            ++at;
        while (at < size && text[at] >= 0x80) {
            const int length = sequenceLength(text + at, size - at);
            if (length == 0)
                return false;
            at += static_cast<std::size_t>(length);
        }
    }
    return true;
}

}  // namespace Tamrix
