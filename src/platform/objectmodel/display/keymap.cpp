#include "platform/objectmodel/display/keymap.h"

#include <xkbcommon/xkbcommon.h>

#include <algorithm>

#include "base/blocking.h"

namespace Tamrix::Display {

namespace {

// Of the core protocol's state: which of the layouts is active, and caps lock.
constexpr int groupShift = 13;
constexpr int groupMask = 3;
constexpr int columnsPerGroup = 2;
constexpr int reachableGroups = 2;

/// A program reads the new layout when it handles the key's event; one whose key is taken for another
/// symbol gets so long for that, in microseconds.
constexpr unsigned long reusePause = 100000;
/// How many keys are borrowed at most.
constexpr size_t mostBorrowed = 24;

bool isLetter(quint32 keySym) {
    return xkb_keysym_to_upper(keySym) != xkb_keysym_to_lower(keySym);
}

}  // namespace

KeyMap::KeyMap(std::shared_ptr<XConnection> connection) : m_connection(std::move(connection)) {}

KeyMap::~KeyMap() {
    if (m_borrowed.empty() || !m_connection->isOpen())
        return;
    blockingSleep(reusePause);
    for (const Borrowed& each : m_borrowed)
        assign(each.code, XKB_KEY_NoSymbol);
    m_connection->synchronize();
}

void KeyMap::load() {
    const xcb_keycode_t first = m_connection->setup()->min_keycode;
    const int count = m_connection->setup()->max_keycode - first + 1;
    const auto mapping = m_connection->reply(
        xcb_get_keyboard_mapping(m_connection->get(), first, static_cast<uint8_t>(count)),
        xcb_get_keyboard_mapping_reply);
    m_symbols.clear();
    m_free.clear();
    m_columns = mapping ? mapping->keysyms_per_keycode : 0;
    if (!mapping ||
        xcb_get_keyboard_mapping_keysyms_length(mapping.get()) < count * m_columns)
        return;
    const xcb_keysym_t* const symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    m_symbols.assign(symbols, symbols + count * m_columns);
    m_isStale = false;
    for (int key = 0; key < count; ++key) {
        const auto begin = m_symbols.begin() + key * m_columns;
        const bool isFree = std::all_of(begin, begin + m_columns, [](quint32 symbol) {
            return symbol == XKB_KEY_NoSymbol;
        });
        if (isFree)
            m_free.push_back(static_cast<xcb_keycode_t>(first + key));
    }
}

std::vector<quint32> KeyMap::symbolsOf(xcb_keycode_t code) const {
    const size_t begin = static_cast<size_t>(code - m_connection->setup()->min_keycode) *
                         static_cast<size_t>(m_columns);
    if (begin + static_cast<size_t>(m_columns) > m_symbols.size())
        return {};
    return {m_symbols.begin() + static_cast<long>(begin),
            m_symbols.begin() + static_cast<long>(begin) + m_columns};
}

std::optional<KeyStroke> KeyMap::find(quint32 keySym, int group, bool hasCapsLock) const {
    const int base = group * columnsPerGroup;
    if (group >= reachableGroups || base >= m_columns)
        return std::nullopt;
    const bool flips = hasCapsLock && isLetter(keySym);
    // A key that gives it without Shift goes before one that does with it.
    for (int level = 0; level < columnsPerGroup && base + level < m_columns; ++level) {
        for (size_t index = static_cast<size_t>(base + level); index < m_symbols.size();
             index += static_cast<size_t>(m_columns)) {
            if (m_symbols[index] != keySym)
                continue;
            const size_t key = index / static_cast<size_t>(m_columns);
            return KeyStroke{
                static_cast<xcb_keycode_t>(m_connection->setup()->min_keycode + key),
                (level == 1) != flips};
        }
    }
    return std::nullopt;
}

Outcome<KeyStroke> KeyMap::strokeFor(quint32 keySym) {
    if (m_isStale)
        load();
    const auto pointer = m_connection->reply(
        xcb_query_pointer(m_connection->get(), m_connection->root()), xcb_query_pointer_reply);
    if (!m_connection->isOpen())
        return m_connection->ended();
    const int state = pointer ? pointer->mask : 0;
    if (const auto stroke = find(keySym, state >> groupShift & groupMask,
                                 (state & XCB_MOD_MASK_LOCK) != 0))
        return *stroke;
    return borrow(keySym);
}

Outcome<KeyStroke> KeyMap::borrow(quint32 keySym) {
    const auto known = std::find_if(m_borrowed.begin(), m_borrowed.end(), [&](const Borrowed& each) {
        return each.keySym == keySym;
    });
    if (known != m_borrowed.end())
        return KeyStroke{known->code, false};
    Borrowed taken{0, keySym};
    if (!m_free.empty() && m_borrowed.size() < mostBorrowed) {
        taken.code = m_free.back();
        m_free.pop_back();
    } else if (!m_borrowed.empty()) {
        taken.code = m_borrowed.front().code;
        m_borrowed.pop_front();
        m_connection->synchronize();
        blockingSleep(reusePause);
    } else {
        return fail(FailureKind::Refused,
                    QStringLiteral("the keyboard of the display '%1' has no key for the symbol "
                                   "0x%2, and no free one that could get it")
                        .arg(m_connection->name(), QString::number(keySym, 16)));
    }
    assign(taken.code, keySym);
    m_connection->synchronize();
    m_borrowed.push_back(taken);
    return KeyStroke{taken.code, false};
}

void KeyMap::assign(xcb_keycode_t code, quint32 keySym) {
    // The same in both levels of both layouts, whatever modifiers are down.
    const std::vector<xcb_keysym_t> symbols(columnsPerGroup * reachableGroups, keySym);
    xcb_change_keyboard_mapping(m_connection->get(), 1, code,
                                static_cast<uint8_t>(symbols.size()), symbols.data());
}

}  // namespace Tamrix::Display
