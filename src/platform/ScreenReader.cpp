#include "platform/ScreenReader.h"

#include "base/AppError.h"

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <xcb/composite.h>
#include <xcb/randr.h>
#include <xcb/shape.h>
#include <xcb/shm.h>

namespace vantry {

namespace {

/// Extensions answer only those who said which version they speak.
const xcb::Connection& withExtensions(const xcb::Connection& connection)
{
    const std::pair<xcb_extension_t*, const char*> needed[] = { { &xcb_shm_id, "MIT-SHM" }, { &xcb_damage_id, "DAMAGE" },
        { &xcb_xfixes_id, "XFIXES" }, { &xcb_composite_id, "Composite" }, { &xcb_shape_id, "SHAPE" }, { &xcb_randr_id, "RANDR" } };
    for (const auto& [extension, name] : needed)
        if (!connection.has(*extension))
            throw AppError(std::string("The display server cannot be recorded: it lacks the extension ") + name);
    static_cast<void>(connection.receive(xcb_damage_query_version_reply, xcb_damage_query_version(connection, 1, 1)));
    static_cast<void>(connection.receive(xcb_xfixes_query_version_reply, xcb_xfixes_query_version(connection, 5, 0)));
    static_cast<void>(connection.receive(xcb_composite_query_version_reply, xcb_composite_query_version(connection, 0, 4)));
    static_cast<void>(connection.receive(xcb_randr_query_version_reply, xcb_randr_query_version(connection, 1, 5)));
    return connection;
}

bool hasKnownPixels(const xcb::Connection& connection)
{
    const auto* setup = xcb_get_setup(connection);
    const int depth = connection.screen().root_depth;
    if (depth != 24 && depth != 32)
        return false;
    for (auto formats = xcb_setup_pixmap_formats_iterator(setup); formats.rem > 0; xcb_format_next(&formats))
        if (formats.data->depth == depth && formats.data->bits_per_pixel == 32)
            return setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
    return false;
}

PixelRect evenBounds(const Display& display)
{
    return { display.x, display.y, display.width & ~1, display.height & ~1 };
}

/// Nobody else's requests run while it lives.
class ServerHold {
public:
    explicit ServerHold(const xcb::Connection& connection)
        : m_connection(connection)
    {
        xcb_grab_server(m_connection);
    }
    ~ServerHold()
    {
        xcb_ungrab_server(m_connection);
        xcb_flush(m_connection);
    }
    ServerHold(const ServerHold&) = delete;
    ServerHold& operator=(const ServerHold&) = delete;

private:
    const xcb::Connection& m_connection;
};

} // namespace

ScreenReader::ScreenReader(const Display& display, std::vector<pid_t> leftOut, Cursor cursor)
    : m_compositor(withExtensions(m_connection).atom("_NET_WM_CM_S0"))
    , m_fixesEvents(m_connection.firstEvent(xcb_xfixes_id))
    , m_randrEvents(m_connection.firstEvent(xcb_randr_id))
    , m_display(display)
    , m_cursorWanted(cursor)
    , m_bounds(evenBounds(display))
    , m_changed(m_bounds.width, m_bounds.height)
    , m_windows(m_connection, WindowOwners(m_connection, std::move(leftOut)))
    , m_damage(m_connection)
    , m_cursor(m_connection)
    , m_images(m_connection, m_bounds.width * m_bounds.height)
    , m_uncovering(m_connection, m_bounds.width * m_bounds.height)
{
    if (!hasKnownPixels(m_connection))
        throw AppError("The display server cannot be recorded: its pixels do not have 24 bits of colour");
    prepare();
}

ScreenReader::~ScreenReader() = default;

void ScreenReader::prepare()
{
    const std::uint32_t events =
        XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(m_connection, m_connection.root(), XCB_CW_EVENT_MASK, &events);
    xcb_randr_select_input(m_connection, m_connection.root(),
        XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    xcb_xfixes_select_selection_input(m_connection, m_connection.root(), m_compositor,
        XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY
            | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    // From now on every window keeps its pixels while it is covered.
    xcb_composite_redirect_subwindows(m_connection, m_connection.root(), XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    m_background = std::make_unique<RootBackground>(m_connection);
    watchDamage();
    m_changed.addAll();
}

ScreenReader::Reading ScreenReader::read()
{
    collectChanges();
    // A window that moves while we read would leave its mark. Events come in the order of replies, so we know when one did, and
    // read again; against something that never rests, with everybody else held.
    constexpr int attempts = 4;
    for (int attempt = 1; attempt <= attempts; ++attempt) {
        std::optional<ServerHold> hold;
        if (attempt == attempts) {
            hold.emplace(m_connection);
            collectChanges();
        }
        const auto areas = m_changed.rectangles();
        if (areas.empty())
            return {};
        m_changed.clear();
        auto reading = take(areas);
        if (!windowsMoved() && !reading.blocks.empty())
            return reading;
        for (const auto& area : areas)
            m_changed.add(area);
    }
    return {};
}

void ScreenReader::collectChanges()
{
    // Asking for the cursor comes first: with the answer arrive all events from before.
    collectCursor();
    handleEvents();
    if (m_displayIsStale)
        checkDisplay();
    if (m_compositionIsStale)
        checkComposition();
    if (m_backgroundIsStale) {
        m_backgroundIsStale = false;
        m_background->update(
            m_composition == Composition::Delayed ? RootBackground::Painter::Compositor : RootBackground::Painter::Server);
        for (const auto& area : m_leftOut.within(m_bounds))
            change(area);
    }
    if (m_windows.isStale())
        updateWindows();
    else
        updateLeftOut();
    collectDamage();
}

void ScreenReader::handleEvents()
{
    while (const auto event = m_connection.nextEvent()) {
        m_windows.handle(*event);
        m_damage.handle(*event);
        m_cursor.handle(*event);
        m_backgroundIsStale |= m_background->handle(*event);
        const int type = event->response_type & 0x7F;
        m_compositionIsStale |= type == m_fixesEvents + XCB_XFIXES_SELECTION_NOTIFY;
        m_displayIsStale |= type == m_randrEvents + XCB_RANDR_SCREEN_CHANGE_NOTIFY || type == m_randrEvents + XCB_RANDR_NOTIFY;
        if (type == XCB_CONFIGURE_NOTIFY)
            m_displayIsStale |= reinterpret_cast<const xcb_configure_notify_event_t&>(*event).window == m_connection.root();
    }
    if (m_connection.isLost())
        throw AppError("The connection to the display server was lost");
}

void ScreenReader::checkDisplay()
{
    m_displayIsStale = false;
    const auto present = displays(m_connection);
    const auto same =
        std::find_if(present.begin(), present.end(), [&](const Display& display) { return display.id == m_display.id; });
    if (same == present.end())
        throw AppError("The display " + m_display.name + " is no longer there");
    if (same->width != m_display.width || same->height != m_display.height)
        throw AppError("The display " + m_display.name + " changed its size while it was recorded");
    m_bounds = evenBounds(*same);
    m_background.reset(); // The desktop may have another size.
    m_background = std::make_unique<RootBackground>(m_connection);
    m_backgroundIsStale = true;
    m_changed.addAll();
}

void ScreenReader::checkComposition()
{
    m_compositionIsStale = false;
    const auto owner = m_connection.receive(xcb_get_selection_owner_reply, xcb_get_selection_owner(m_connection, m_compositor));
    m_composition = owner && owner->owner != XCB_NONE ? Composition::Delayed : Composition::Immediate;
    m_backgroundIsStale = true;
    m_changed.addAll();
}

void ScreenReader::updateWindows()
{
    for (const auto& area : m_windows.update())
        change(area);
    updateLeftOut();
    watchDamage();
}

void ScreenReader::updateLeftOut()
{
    const auto areas = m_leftOut.update(m_windows.windows(), m_bounds, m_composition, HostClock::now());
    for (const auto& area : areas)
        change(area);
    if (!areas.empty())
        watchDamage();
}

/// The root tells of everything that is seen. What is drawn in a window beneath one of those that are left out, only that window
/// tells.
void ScreenReader::watchDamage()
{
    std::set<xcb_window_t> watched{ m_connection.root() };
    for (const auto& window : m_windows.windows())
        if (!window.excluded && !m_leftOut.within(window.frame).empty())
            watched.insert(window.id);
    m_damage.watch(watched);
}

void ScreenReader::collectDamage()
{
    auto drawn = m_damage.take();
    for (const auto& area : drawn[m_connection.root()])
        change(area);
    for (const auto& window : m_windows.windows()) {
        const auto found = drawn.find(window.id);
        if (found == drawn.end())
            continue;
        for (const auto& area : found->second)
            for (const auto& beneath : m_leftOut.within(area.moved(window.frame.x + window.border, window.frame.y + window.border)))
                change(beneath);
    }
}

void ScreenReader::collectCursor()
{
    const auto before = m_cursor.area();
    if (!m_cursor.update() || m_cursorWanted == Cursor::LeftOut)
        return;
    change(before);
    change(m_cursor.area());
}

/// Whether what was just taken may show a window where it is not, or lacks one.
bool ScreenReader::windowsMoved()
{
    handleEvents();
    if (!m_windows.isStale())
        return false;
    const bool mayShow = m_windows.sawNewWindow() || !m_leftOut.isEmpty();
    updateWindows();
    return mayShow || !m_leftOut.isEmpty();
}

ScreenReader::Reading ScreenReader::take(const std::vector<PixelRect>& areas)
{
    Reading reading{ .time = HostClock::now() };
    for (const auto& area : areas)
        m_images.request(m_connection.root(), area.moved(m_bounds.x, m_bounds.y), 0, 0);
    reading.blocks = m_images.await();
    for (auto& block : reading.blocks) {
        if (!block.data)
            return {}; // The desktop became smaller; the events will tell.
        for (const auto& hole : m_leftOut.within(block.area))
            m_uncovering.repaint(block, hole, m_windows.windows(), *m_background, m_composition);
        if (m_cursorWanted == Cursor::Drawn)
            m_cursor.draw(block);
    }
    for (auto& block : reading.blocks)
        block.area = block.area.moved(-m_bounds.x, -m_bounds.y);
    return reading;
}

} // namespace vantry
