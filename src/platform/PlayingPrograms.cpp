#include "platform/PlayingPrograms.h"

#include "platform/ServerObject.h"

#include <cstdlib>
#include <map>
#include <string_view>
#include <unistd.h>

namespace vantry {

namespace {

std::string get(const spa_dict* properties, const char* key)
{
    const char* value = properties ? spa_dict_lookup(properties, key) : nullptr;
    return value ? value : "";
}

std::uint32_t number(const std::string& text)
{
    return text.empty() ? PW_ID_ANY : static_cast<std::uint32_t>(std::strtoul(text.c_str(), nullptr, 10));
}

struct Client {
    std::unique_ptr<pw::ServerObject> object;
    std::optional<pid_t> connectedFrom; ///< What the kernel says; for the Pulse server's clients it is that server.
};

struct Player {
    std::unique_ptr<pw::ServerObject> object;
    std::uint32_t client = PW_ID_ANY;
};

struct Port {
    SoundPort port;
    std::uint32_t node;
    bool isOutput;
};

} // namespace

class PlayingPrograms::Impl {
public:
    Impl(PipeWireLoop& loop, std::function<void()> onChange);

    bool isOfOthers(std::uint32_t node) const;

    std::map<std::uint32_t, Port> m_ports; ///< By the server's number, as below.

private:
    void add(std::uint32_t id, std::string_view type, const spa_dict* properties);
    void addClient(std::uint32_t id, const spa_dict* properties);
    void addPlayer(std::uint32_t id, const spa_dict* properties);
    void remove(std::uint32_t id);

    static const pw_registry_events events;

    const std::function<void()> m_onChange;
    pw::ProxyPtr<pw_registry> m_registry;
    pw::Hook m_hook;
    std::map<std::uint32_t, Client> m_clients;
    std::map<std::uint32_t, Player> m_players;
};

const pw_registry_events PlayingPrograms::Impl::events = {
    .version = PW_VERSION_REGISTRY_EVENTS,
    .global = [](void* self, std::uint32_t id, std::uint32_t, const char* type, std::uint32_t,
                  const spa_dict* properties) { static_cast<Impl*>(self)->add(id, type, properties); },
    .global_remove = [](void* self, std::uint32_t id) { static_cast<Impl*>(self)->remove(id); },
};

PlayingPrograms::Impl::Impl(PipeWireLoop& loop, std::function<void()> onChange)
    : m_onChange(std::move(onChange))
    , m_registry(pw_core_get_registry(loop.core(), PW_VERSION_REGISTRY, 0))
{
    if (m_registry)
        pw_registry_add_listener(m_registry.get(), m_hook.get(), &events, this);
}

void PlayingPrograms::Impl::add(std::uint32_t id, std::string_view type, const spa_dict* properties)
{
    if (type == PW_TYPE_INTERFACE_Client)
        addClient(id, properties);
    else if (type == PW_TYPE_INTERFACE_Node && get(properties, PW_KEY_MEDIA_CLASS) == "Stream/Output/Audio")
        addPlayer(id, properties);
    else if (type == PW_TYPE_INTERFACE_Port && get(properties, PW_KEY_PORT_MONITOR) != "true")
        m_ports[id] = { { id, get(properties, PW_KEY_AUDIO_CHANNEL) }, number(get(properties, PW_KEY_NODE_ID)),
            get(properties, PW_KEY_PORT_DIRECTION) == "out" };
    else
        return;
    m_onChange();
}

void PlayingPrograms::Impl::addClient(std::uint32_t id, const spa_dict* properties)
{
    Client& client = m_clients[id];
    client.object = std::make_unique<pw::ServerObject>(m_registry.get(), pw::ServerObject::Kind::Client, id, m_onChange);
    client.connectedFrom = pw::processIn(get(properties, PW_KEY_SEC_PID));
}

void PlayingPrograms::Impl::addPlayer(std::uint32_t id, const spa_dict* properties)
{
    Player& player = m_players[id];
    player.object = std::make_unique<pw::ServerObject>(m_registry.get(), pw::ServerObject::Kind::Node, id, m_onChange);
    player.client = number(get(properties, PW_KEY_CLIENT_ID));
}

void PlayingPrograms::Impl::remove(std::uint32_t id)
{
    if (m_clients.erase(id) + m_players.erase(id) + m_ports.erase(id) > 0)
        m_onChange();
}

/// Not before it is certain whose it is: what the node says counts before what its client says, and that before the connection.
bool PlayingPrograms::Impl::isOfOthers(std::uint32_t node) const
{
    const auto player = m_players.find(node);
    if (player == m_players.end() || !player->second.object->isKnown() || player->second.object->property(PW_KEY_NODE_LINK_GROUP))
        return false;
    if (const auto process = pw::processIn(player->second.object->property(PW_KEY_APP_PROCESS_ID)))
        return *process != getpid();
    const auto client = m_clients.find(player->second.client);
    if (client == m_clients.end())
        return true; // The server's own.
    if (!client->second.object->isKnown())
        return false;
    const auto process = pw::processIn(client->second.object->property(PW_KEY_APP_PROCESS_ID));
    return (process ? process : client->second.connectedFrom) != getpid();
}

PlayingPrograms::PlayingPrograms(PipeWireLoop& loop, std::function<void()> onChange)
    : m_impl(std::make_unique<Impl>(loop, std::move(onChange)))
{
}

PlayingPrograms::~PlayingPrograms() = default;

std::vector<SoundPort> PlayingPrograms::outputs() const
{
    std::vector<SoundPort> outputs;
    for (const auto& [id, port] : m_impl->m_ports)
        if (port.isOutput && m_impl->isOfOthers(port.node))
            outputs.push_back(port.port);
    return outputs;
}

std::vector<SoundPort> PlayingPrograms::inputsOf(std::uint32_t node) const
{
    std::vector<SoundPort> inputs;
    for (const auto& [id, port] : m_impl->m_ports)
        if (!port.isOutput && port.node == node)
            inputs.push_back(port.port);
    return inputs;
}

} // namespace vantry
