#include "base/stringconversion.h"

#include <iconv.h>
#include <langinfo.h>

#include <cerrno>
#include <cstring>

namespace Tamrix {

namespace {

const char* localEncoding() {
    return nl_langinfo(CODESET);
}

}  // namespace

std::string mbs2mbs(const std::string& text, const char* from, const char* to) {
    // Equal encodings need no conversion, and the commonest pair is UTF-8 on both sides.
    if (text.empty() || std::strcmp(from, to) == 0)
        return text;
    const iconv_t converter = iconv_open(to, from);
    if (converter == reinterpret_cast<iconv_t>(-1))
        return text;

    std::string result;
    char* in = const_cast<char*>(text.data());
    std::size_t inLeft = text.size();
    char buffer[512];
    bool done = false;
    while (!done) {
        char* out = buffer;
        std::size_t outLeft = sizeof(buffer);
        // Behind the text, the closing shift sequence of an encoding that has one is asked for.
        done = inLeft == 0;
        const std::size_t converted = done ? iconv(converter, nullptr, nullptr, &out, &outLeft)
                                           : iconv(converter, &in, &inLeft, &out, &outLeft);
        const int error = errno;
        result.append(buffer, sizeof(buffer) - outLeft);
        if (!done && converted == static_cast<std::size_t>(-1) && error != E2BIG && inLeft > 0) {
            // An invalid or cut sequence: pass over one byte and go on behind it.
            result.push_back('?');
            ++in;
            --inLeft;
        }
    }
    iconv_close(converter);
    return result;
}

std::string utf8ToLocal8Bit(const std::string& text) {
    return mbs2mbs(text, "UTF-8", localEncoding());
}

std::string local8BitToUTF8(const std::string& text) {
    return mbs2mbs(text, localEncoding(), "UTF-8");
}

}  // namespace Tamrix
