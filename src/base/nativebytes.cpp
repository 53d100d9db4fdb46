#include "base/nativebytes.h"

#include <QTextCodec>

#include "base/utf8.h"

namespace Tamrix {

namespace {

constexpr int utf8Mib = 106;
/// Lone surrogates from here on stand for bytes above 0x7f.
constexpr ushort byteBase = 0xdc00;

QTextCodec* utf8() {
    static QTextCodec* const codec = QTextCodec::codecForMib(utf8Mib);
    return codec;
}

/// UTF-8 as it stands: no byte order mark is taken off or put in front.
QTextCodec::ConverterState plainState() {
    return QTextCodec::ConverterState(QTextCodec::IgnoreHeader);
}

bool isByte(QChar unit) {
    return unit.unicode() >= byteBase + 0x80 && unit.unicode() <= byteBase + 0xff;
}

QString decode(const char* bytes, int size) {
    // An empty text, no null one.
    if (size == 0)
        return QLatin1String("");
    QTextCodec::ConverterState state = plainState();
    const QString whole = utf8()->toUnicode(bytes, size, &state);
    if (state.invalidChars == 0 && state.remainingChars == 0)
        return whole;
    QString text;
    int start = 0;
    const auto appendValid = [&](int end) {
        QTextCodec::ConverterState part = plainState();
        text += utf8()->toUnicode(bytes + start, end - start, &part);
    };
    for (int position = 0; position < size;) {
        const int length = utf8CharacterLength(bytes + position, bytes + size);
        if (length > 0) {
            position += length;
            continue;
        }
        appendValid(position);
        text += QChar(static_cast<ushort>(byteBase + static_cast<uchar>(bytes[position])));
        start = ++position;
    }
    appendValid(size);
    return text;
}

QByteArray encode(const QChar* text, int size) {
    QByteArray bytes;
    int start = 0;
    const auto appendValid = [&](int end) {
        QTextCodec::ConverterState state = plainState();
        bytes += utf8()->fromUnicode(text + start, end - start, &state);
    };
    for (int index = 0; index < size; ++index) {
        if (text[index].isHighSurrogate() && index + 1 < size && text[index + 1].isLowSurrogate()) {
            ++index;
        } else if (text[index].isSurrogate()) {
            appendValid(index);
            bytes +=
                isByte(text[index]) ? static_cast<char>(text[index].unicode() - byteBase) : '?';
            start = index + 1;
        }
    }
    appendValid(size);
    return bytes;
}

/// UTF-8 that loses no byte of what is none.
class NativeCodec : public QTextCodec {
public:
    QByteArray name() const override { return "UTF-8-bytes"; }
    /// From the range for private use.
    int mibEnum() const override { return 3999; }

protected:
    QString convertToUnicode(const char* bytes, int size, ConverterState* state) const override {
        // What comes in pieces is a stream of text, not a name.
        return state ? utf8()->toUnicode(bytes, size, state) : decode(bytes, size);
    }
    QByteArray convertFromUnicode(const QChar* text, int size,
                                  ConverterState* state) const override {
        return state ? utf8()->fromUnicode(text, size, state) : encode(text, size);
    }
};

}  // namespace

QString fromNativeBytes(const QByteArray& bytes) {
    return decode(bytes.constData(), bytes.size());
}

QByteArray toNativeBytes(const QString& text) {
    return encode(text.constData(), text.size());
}

void useNativeBytesForLocale() {
    if (QTextCodec::codecForLocale()->mibEnum() == utf8Mib)
        QTextCodec::setCodecForLocale(new NativeCodec);  // Qt owns every codec.
}

}  // namespace Tamrix
