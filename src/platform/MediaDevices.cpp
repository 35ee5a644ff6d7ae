#include "platform/MediaDevices.h"

#include "platform/PipeWire.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <pipewire/extensions/metadata.h>
#include <spa/utils/json.h>
#include <string_view>

namespace vantry {

namespace {

enum class Kind { Camera, Microphone };

struct Node {
    Kind kind;
    MediaDevice device;
};

std::string_view get(const spa_dict& properties, const char* key)
{
    const char* value = spa_dict_lookup(&properties, key);
    return value ? value : "";
}

std::optional<Kind> kindOf(const spa_dict& properties)
{
    const auto media = get(properties, PW_KEY_MEDIA_CLASS);
    // Some desktops offer a screen that is being shared in the cameras' class.
    if (media == "Video/Source" && get(properties, PW_KEY_MEDIA_ROLE) != "Screen")
        return Kind::Camera;
    if (media == "Audio/Source" || media == "Audio/Source/Virtual")
        return get(properties, PW_KEY_DEVICE_CLASS) == "monitor" ? std::nullopt : std::optional(Kind::Microphone);
    return std::nullopt;
}

std::string nameOf(const spa_dict& properties)
{
    for (const auto* key : { PW_KEY_NODE_DESCRIPTION, PW_KEY_NODE_NICK, PW_KEY_NODE_NAME })
        if (const auto name = get(properties, key); !name.empty())
            return std::string(name);
    return {};
}

/// The name in `{ "name": "…" }`, as the session manager writes its choices.
std::optional<std::string> nameInJson(const char* text)
{
    spa_json document, object;
    spa_json_init(&document, text, std::strlen(text));
    if (spa_json_enter_object(&document, &object) <= 0)
        return std::nullopt;
    char key[64], value[1024];
    while (spa_json_get_string(&object, key, sizeof key) > 0) {
        if (std::string_view(key) == "name")
            return spa_json_get_string(&object, value, sizeof value) > 0 ? std::optional<std::string>(value) : std::nullopt;
        const char* ignored = nullptr;
        if (spa_json_next(&object, &ignored) <= 0)
            break;
    }
    return std::nullopt;
}

/// First come the objects, then what the object with the defaults says.
constexpr int neededAnswers = 2;

bool contains(const std::vector<MediaDevice>& devices, const std::string& id)
{
    return std::ranges::find(devices, id, &MediaDevice::id) != devices.end();
}

} // namespace

bool MediaDeviceList::hasCamera(const std::string& id) const
{
    return contains(cameras, id);
}

bool MediaDeviceList::hasMicrophone(const std::string& id) const
{
    return contains(microphones, id);
}

/// Everything belongs to the loop's thread, or to who has its lock.
class MediaDevices::Impl {
public:
    Impl(PipeWireLoop& loop, ChangeHandler onChange);
    ~Impl();

    std::optional<MediaDeviceList> list() const;

private:
    void finish(std::uint32_t id, int request);
    void add(std::uint32_t id, std::string_view type, const spa_dict* properties);
    void remove(std::uint32_t id);
    void listenToDefaults(std::uint32_t id);
    void setDefault(const char* key, const char* value);
    void update();

    static const pw_core_events coreEvents;
    static const pw_registry_events registryEvents;
    static const pw_metadata_events metadataEvents;

    PipeWireLoop& m_loop;
    ChangeHandler m_onChange;
    int m_request = 0; ///< The latest question whether the server has told everything.
    int m_answers = 0;
    std::map<std::uint32_t, Node> m_nodes; ///< By the server's number.
    std::optional<std::string> m_defaultMicrophone;
    MediaDeviceList m_list;

    std::uint32_t m_metadataId = PW_ID_ANY;
    struct Server {
        pw::Hook coreHook;
        pw::ProxyPtr<pw_registry> registry;
        pw::Hook registryHook;
        pw::ProxyPtr<pw_metadata> metadata;
        std::optional<pw::Hook> metadataHook;
    };
    std::optional<Server> m_server;
};

const pw_core_events MediaDevices::Impl::coreEvents = {
    .version = PW_VERSION_CORE_EVENTS,
    .done = [](void* self, std::uint32_t id, int request) { static_cast<Impl*>(self)->finish(id, request); },
};

const pw_registry_events MediaDevices::Impl::registryEvents = {
    .version = PW_VERSION_REGISTRY_EVENTS,
    .global = [](void* self, std::uint32_t id, std::uint32_t, const char* type, std::uint32_t,
                  const spa_dict* properties) { static_cast<Impl*>(self)->add(id, type, properties); },
    .global_remove = [](void* self, std::uint32_t id) { static_cast<Impl*>(self)->remove(id); },
};

const pw_metadata_events MediaDevices::Impl::metadataEvents = {
    .version = PW_VERSION_METADATA_EVENTS,
    .property =
        [](void* self, std::uint32_t, const char* key, const char*, const char* value) {
            static_cast<Impl*>(self)->setDefault(key, value);
            return 0;
        },
};

MediaDevices::Impl::Impl(PipeWireLoop& loop, ChangeHandler onChange)
    : m_loop(loop)
    , m_onChange(std::move(onChange))
{
    const std::lock_guard guard(m_loop);
    m_server.emplace();
    m_server->registry.reset(pw_core_get_registry(m_loop.core(), PW_VERSION_REGISTRY, 0));
    pw_registry_add_listener(m_server->registry.get(), m_server->registryHook.get(), &registryEvents, this);
    pw_core_add_listener(m_loop.core(), m_server->coreHook.get(), &coreEvents, this);
    m_request = pw_core_sync(m_loop.core(), PW_ID_CORE, 0);
}

MediaDevices::Impl::~Impl()
{
    const std::lock_guard guard(m_loop);
    m_server.reset();
}

std::optional<MediaDeviceList> MediaDevices::Impl::list() const
{
    const std::lock_guard guard(m_loop);
    return m_answers < neededAnswers ? std::nullopt : std::optional(m_list);
}

void MediaDevices::Impl::finish(std::uint32_t id, int request)
{
    if (id != PW_ID_CORE || request != m_request || m_answers == neededAnswers)
        return;
    if (++m_answers < neededAnswers)
        m_request = pw_core_sync(m_loop.core(), PW_ID_CORE, 0);
    else if (m_onChange)
        m_onChange(m_list);
}

void MediaDevices::Impl::add(std::uint32_t id, std::string_view type, const spa_dict* properties)
{
    if (!properties)
        return;
    if (type == PW_TYPE_INTERFACE_Metadata && get(*properties, PW_KEY_METADATA_NAME) == "default")
        return listenToDefaults(id);
    const auto kind = kindOf(*properties);
    const auto name = get(*properties, PW_KEY_NODE_NAME);
    if (type != PW_TYPE_INTERFACE_Node || !kind || name.empty())
        return;
    m_nodes[id] = { *kind, { std::string(name), nameOf(*properties) } };
    update();
}

void MediaDevices::Impl::remove(std::uint32_t id)
{
    if (id == m_metadataId) {
        m_server->metadataHook.reset();
        m_server->metadata.reset();
        m_metadataId = PW_ID_ANY;
        m_defaultMicrophone.reset();
    }
    m_nodes.erase(id);
    update();
}

void MediaDevices::Impl::listenToDefaults(std::uint32_t id)
{
    m_server->metadataHook.reset();
    m_server->metadata.reset(static_cast<pw_metadata*>(
        pw_registry_bind(m_server->registry.get(), id, PW_TYPE_INTERFACE_Metadata, PW_VERSION_METADATA, 0)));
    m_metadataId = id;
    m_server->metadataHook.emplace();
    pw_metadata_add_listener(m_server->metadata.get(), m_server->metadataHook->get(), &metadataEvents, this);
}

/// No key means all of them, no value that there is none any more.
void MediaDevices::Impl::setDefault(const char* key, const char* value)
{
    if (key && std::string_view(key) != "default.audio.source")
        return;
    m_defaultMicrophone = key && value ? nameInJson(value) : std::nullopt;
    update();
}

void MediaDevices::Impl::update()
{
    MediaDeviceList list;
    for (const auto& [id, node] : m_nodes) {
        auto& devices = node.kind == Kind::Camera ? list.cameras : list.microphones;
        if (!contains(devices, node.device.id))
            devices.push_back(node.device);
    }
    if (m_defaultMicrophone && list.hasMicrophone(*m_defaultMicrophone))
        list.defaultMicrophone = m_defaultMicrophone;
    if (list == m_list)
        return;
    m_list = list;
    if (m_answers == neededAnswers && m_onChange)
        m_onChange(m_list);
}

MediaDevices::MediaDevices(PipeWireLoop& loop, ChangeHandler onChange)
    : m_impl(std::make_unique<Impl>(loop, std::move(onChange)))
{
}

MediaDevices::~MediaDevices() = default;

std::optional<MediaDeviceList> MediaDevices::list() const
{
    return m_impl->list();
}

} // namespace vantry
