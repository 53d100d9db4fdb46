#include "platform/objectmodel/display/windows.h"

#include <xcb/res.h>

#include <algorithm>
#include <set>

namespace Tamrix::Display {

namespace {

/// How deep below its frame a window is looked for.
constexpr int mostFrameDepth = 4;
/// How many windows a frame may hold before it is no frame.
constexpr size_t mostFrameChildren = 100;

using Windows = std::vector<xcb_window_t>;

/// From the lowest to the highest.
Windows childrenOf(XConnection& connection, xcb_window_t window) {
    const auto tree =
        connection.reply(xcb_query_tree(connection.get(), window), xcb_query_tree_reply);
    if (!tree)
        return {};
    const xcb_window_t* const begin = xcb_query_tree_children(tree.get());
    return {begin, begin + xcb_query_tree_children_length(tree.get())};
}

struct Attributes {
    xcb_window_t window = 0;
    bool isShown = false;
};

/// Of those that can show something, asked for all at once.
std::vector<Attributes> attributesOf(XConnection& connection, const Windows& windows) {
    std::vector<xcb_get_window_attributes_cookie_t> cookies;
    cookies.reserve(windows.size());
    for (const xcb_window_t window : windows)
        cookies.push_back(xcb_get_window_attributes(connection.get(), window));
    std::vector<Attributes> all;
    for (size_t index = 0; index < windows.size(); ++index) {
        const auto answer = connection.reply(cookies[index], xcb_get_window_attributes_reply);
        if (!answer || answer->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT)
            continue;
        all.push_back({windows[index], answer->map_state == XCB_MAP_STATE_VIEWABLE});
    }
    return all;
}

/// The windows that a window manager knows, by what it says itself.
std::set<xcb_window_t> managedWindows(XConnection& connection) {
    const auto list = connection.numbers(connection.root(), "_NET_CLIENT_LIST");
    return {list.begin(), list.end()};
}

bool isManaged(XConnection& connection, xcb_window_t window,
               const std::set<xcb_window_t>& managed) {
    if (managed.count(window) != 0)
        return true;
    // Every window manager leaves this, also one that keeps no list.
    constexpr uint32_t withdrawn = 0;
    const auto state = connection.numbers(window, "WM_STATE");
    return !state.empty() && state.front() != withdrawn;
}

/// The window in a frame; 0 for none.
xcb_window_t managedBelow(XConnection& connection, xcb_window_t frame,
                          const std::set<xcb_window_t>& managed) {
    Windows level = childrenOf(connection, frame);
    for (int depth = 0; depth < mostFrameDepth && level.size() <= mostFrameChildren; ++depth) {
        Windows next;
        for (const xcb_window_t window : level) {
            if (isManaged(connection, window, managed))
                return window;
            const Windows children = childrenOf(connection, window);
            next.insert(next.end(), children.begin(), children.end());
        }
        level = std::move(next);
    }
    return 0;
}

/// A top-level window and where it stands.
struct Candidate {
    xcb_window_t window = 0;
    xcb_window_t frame = 0;
    bool isManaged = false;
};

std::vector<Candidate> candidates(XConnection& connection) {
    const std::set<xcb_window_t> managed = managedWindows(connection);
    std::vector<Candidate> all;
    for (const Attributes& child :
         attributesOf(connection, childrenOf(connection, connection.root()))) {
        // 1. A window that the window manager has put no frame around.
        if (isManaged(connection, child.window, managed)) {
            all.push_back({child.window, child.window, true});
            continue;
        }
        // 2. The window in a frame, which may look like a popup.
        const xcb_window_t inner = managedBelow(connection, child.window, managed);
        if (inner != 0)
            all.push_back({inner, child.window, true});
        // 3. A popup, or without a window manager any window, that is shown.
        else if (child.isShown)
            all.push_back({child.window, child.window, false});
    }
    return all;
}

// Processes

/// What a window's client is known by: the upper bits of all that it makes.
xcb_window_t clientOf(const XConnection& connection, xcb_window_t window) {
    return window & ~connection.setup()->resource_id_mask;
}

/// The process of a client as the server knows it; -1 when it doesn't.
qint64 processIn(xcb_res_query_client_ids_reply_t* reply) {
    if (!reply)
        return -1;
    for (auto id = xcb_res_query_client_ids_ids_iterator(reply); id.rem > 0;
         xcb_res_client_id_value_next(&id)) {
        const bool isProcess = (id.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0;
        if (isProcess && xcb_res_client_id_value_value_length(id.data) > 0)
            return *xcb_res_client_id_value_value(id.data);
    }
    return -1;
}

/// Asks for processes, many at once.
class ProcessQuery {
public:
    ProcessQuery(XConnection& connection, xcb_window_t window)
        : m_connection(connection), m_property(connection.requestProperty(window, "_NET_WM_PID")) {
        const xcb_query_extension_reply_t* const extension =
            xcb_get_extension_data(connection.get(), &xcb_res_id);
        m_isAsked = extension && extension->present != 0;
        const xcb_res_client_id_spec_t wanted{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        if (m_isAsked)
            m_client = xcb_res_query_client_ids(connection.get(), 1, &wanted);
    }

    /// The server's word counts more than the program's, which may see other numbers.
    qint64 answer() {
        const auto said = m_connection.numbersOf(m_property);
        qint64 process = -1;
        if (m_isAsked)
            process =
                processIn(m_connection.reply(m_client, xcb_res_query_client_ids_reply).get());
        if (process < 0 && !said.empty())
            process = said.front();
        return process;
    }

private:
    XConnection& m_connection;
    xcb_get_property_cookie_t m_property;
    bool m_isAsked = false;
    xcb_res_query_client_ids_cookie_t m_client = {};
};

// Facts

/// The last word of "_NET_WM_WINDOW_TYPE_POPUP_MENU", in lower case.
QString typeName(XConnection& connection, const std::vector<uint32_t>& types) {
    if (types.empty())
        return QStringLiteral("normal");
    const auto name =
        connection.reply(xcb_get_atom_name(connection.get(), types.front()),
                         xcb_get_atom_name_reply);
    if (!name)
        return QStringLiteral("normal");
    QString text = QString::fromLatin1(xcb_get_atom_name_name(name.get()),
                                       xcb_get_atom_name_name_length(name.get()));
    const QString prefix = QStringLiteral("_NET_WM_WINDOW_TYPE_");
    if (text.startsWith(prefix))
        text.remove(0, prefix.size());
    return text.toLower();
}

/// Asks for all facts of a window, so that many windows can be asked at once.
class FactsQuery {
public:
    FactsQuery(XConnection& connection, xcb_window_t window, xcb_window_t frame)
        : m_connection(connection), m_process(connection, window) {
        m_facts.id = window;
        m_facts.frame = frame;
        m_attributes = xcb_get_window_attributes(connection.get(), window);
        m_geometry = xcb_get_geometry(connection.get(), window);
        m_place = xcb_translate_coordinates(connection.get(), window, connection.root(), 0, 0);
        m_title = connection.requestProperty(window, "_NET_WM_NAME");
        m_oldTitle = connection.requestProperty(window, "WM_NAME");
        m_classes = connection.requestProperty(window, "WM_CLASS");
        m_role = connection.requestProperty(window, "WM_WINDOW_ROLE");
        m_type = connection.requestProperty(window, "_NET_WM_WINDOW_TYPE");
        m_state = connection.requestProperty(window, "_NET_WM_STATE");
        m_owner = connection.requestProperty(window, "WM_TRANSIENT_FOR");
        m_protocols = connection.requestProperty(window, "WM_PROTOCOLS");
    }

    /// Nothing when the window is gone. To be called once.
    std::optional<WindowFacts> answer() {
        const auto attributes = m_connection.reply(m_attributes, xcb_get_window_attributes_reply);
        const auto geometry = m_connection.reply(m_geometry, xcb_get_geometry_reply);
        const auto place = m_connection.reply(m_place, xcb_translate_coordinates_reply);
        readTexts();
        readStates();
        m_facts.pid = m_process.answer();
        if (!attributes || !geometry || !place)
            return std::nullopt;
        m_facts.isVisible = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
        m_facts.isPopup = attributes->override_redirect != 0;
        m_facts.geometry =
            QRect(place->dst_x, place->dst_y, geometry->width, geometry->height);
        return m_facts;
    }

private:
    void readTexts() {
        const QByteArray title = m_connection.bytesOf(m_title);
        const QByteArray oldTitle = m_connection.bytesOf(m_oldTitle);
        m_facts.title =
            title.isEmpty() ? QString::fromLatin1(oldTitle) : QString::fromUtf8(title);
        // Two texts, each with a null behind it.
        const QList<QByteArray> classes = m_connection.bytesOf(m_classes).split('\0');
        m_facts.instance = QString::fromLatin1(classes.value(0));
        m_facts.windowClass = QString::fromLatin1(classes.value(1));
        m_facts.role = QString::fromLatin1(m_connection.bytesOf(m_role));
    }

    void readStates() {
        const auto types = m_connection.numbersOf(m_type);
        const auto states = m_connection.numbersOf(m_state);
        const auto owner = m_connection.numbersOf(m_owner);
        const auto protocols = m_connection.numbersOf(m_protocols);
        const auto has = [this](const std::vector<uint32_t>& list, const char* atom) {
            return std::find(list.begin(), list.end(), m_connection.atom(atom)) != list.end();
        };
        m_facts.type = typeName(m_connection, types);
        m_facts.isModal = has(states, "_NET_WM_STATE_MODAL");
        m_facts.owner = owner.empty() ? 0 : owner.front();
        m_facts.takesDelete = has(protocols, "WM_DELETE_WINDOW");
        m_facts.takesPing = has(protocols, "_NET_WM_PING");
        m_facts.takesFocus = has(protocols, "WM_TAKE_FOCUS");
    }

    XConnection& m_connection;
    WindowFacts m_facts;
    ProcessQuery m_process;
    xcb_get_window_attributes_cookie_t m_attributes;
    xcb_get_geometry_cookie_t m_geometry;
    xcb_translate_coordinates_cookie_t m_place;
    xcb_get_property_cookie_t m_title, m_oldTitle, m_classes, m_role, m_type, m_state, m_owner,
        m_protocols;
};

/// Whether a person can see it, or get it back.
bool isWindowForPeople(const WindowFacts& facts, const Candidate& candidate) {
    const bool hasSize = facts.geometry.width() > 1 && facts.geometry.height() > 1;
    return hasSize && (facts.isVisible || candidate.isManaged);
}

}  // namespace

Outcome<std::vector<WindowFacts>> listWindows(XConnection& connection, const ProcessTest& isOwn) {
    // 1. All top-level windows.
    const std::vector<Candidate> all = candidates(connection);
    // 2. Those of the application. Its other windows are of the same clients.
    QHash<xcb_window_t, bool> ownClients;
    std::vector<std::pair<xcb_window_t, ProcessQuery>> queries;
    for (const Candidate& candidate : all) {
        const xcb_window_t client = clientOf(connection, candidate.window);
        if (ownClients.contains(client))
            continue;
        ownClients.insert(client, false);
        queries.emplace_back(client, ProcessQuery(connection, candidate.window));
    }
    for (auto& [client, query] : queries) {
        const qint64 process = query.answer();
        ownClients[client] = process < 0 || isOwn(process);
    }
    // 3. Their facts.
    std::vector<std::pair<const Candidate*, FactsQuery>> asked;
    for (const Candidate& candidate : all) {
        if (ownClients.value(clientOf(connection, candidate.window)))
            asked.emplace_back(&candidate,
                               FactsQuery(connection, candidate.window, candidate.frame));
    }
    std::vector<WindowFacts> windows;
    for (auto& [candidate, query] : asked) {
        const std::optional<WindowFacts> facts = query.answer();
        if (facts && isWindowForPeople(*facts, *candidate))
            windows.push_back(*facts);
    }
    if (!connection.isOpen())
        return connection.ended();
    std::sort(windows.begin(), windows.end(),
              [](const WindowFacts& left, const WindowFacts& right) { return left.id < right.id; });
    return windows;
}

std::optional<WindowFacts> factsOf(XConnection& connection, xcb_window_t window) {
    // The frame is the last window below the root.
    xcb_window_t frame = window;
    for (int depth = 0; depth <= mostFrameDepth; ++depth) {
        const auto tree =
            connection.reply(xcb_query_tree(connection.get(), frame), xcb_query_tree_reply);
        if (!tree)
            return std::nullopt;
        if (tree->parent == connection.root() || tree->parent == noWindow)
            break;
        frame = tree->parent;
    }
    return FactsQuery(connection, window, frame).answer();
}

xcb_window_t frameAt(XConnection& connection, const QPoint& point) {
    const auto place = connection.reply(
        xcb_translate_coordinates(connection.get(), connection.root(), connection.root(),
                                  static_cast<int16_t>(point.x()), static_cast<int16_t>(point.y())),
        xcb_translate_coordinates_reply);
    return place ? place->child : noWindow;
}

}  // namespace Tamrix::Display
