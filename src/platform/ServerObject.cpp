#include "platform/ServerObject.h"

#include <charconv>
#include <utility>

namespace vantry::pw {

const pw_client_events ServerObject::clientEvents = {
    .version = PW_VERSION_CLIENT_EVENTS,
    .info = [](void* self, const pw_client_info* info) { static_cast<ServerObject*>(self)->update(info->props); },
};

const pw_node_events ServerObject::nodeEvents = {
    .version = PW_VERSION_NODE_EVENTS,
    .info = [](void* self, const pw_node_info* info) { static_cast<ServerObject*>(self)->update(info->props); },
};

ServerObject::ServerObject(pw_registry* registry, Kind kind, std::uint32_t id, std::function<void()> onChange)
    : m_onChange(std::move(onChange))
{
    const auto [type, version] = kind == Kind::Client ? std::pair(PW_TYPE_INTERFACE_Client, PW_VERSION_CLIENT)
                                                      : std::pair(PW_TYPE_INTERFACE_Node, PW_VERSION_NODE);
    m_proxy.reset(static_cast<pw_proxy*>(pw_registry_bind(registry, id, type, version, 0)));
    if (!m_proxy)
        return;
    const void* events = kind == Kind::Client ? static_cast<const void*>(&clientEvents) : &nodeEvents;
    pw_proxy_add_object_listener(m_proxy.get(), m_hook.get(), events, this);
}

std::optional<std::string> ServerObject::property(const std::string& key) const
{
    if (!m_properties)
        return std::nullopt;
    const auto found = m_properties->find(key);
    return found == m_properties->end() ? std::nullopt : std::optional(found->second);
}

/// The server tells all of them every time, or none.
void ServerObject::update(const spa_dict* properties)
{
    if (!properties)
        return;
    m_properties.emplace();
    const spa_dict_item* item = nullptr;
    spa_dict_for_each(item, properties) m_properties->emplace(item->key, item->value);
    m_onChange();
}

std::optional<pid_t> processIn(const std::optional<std::string>& property)
{
    pid_t process = 0;
    if (!property || std::from_chars(property->data(), property->data() + property->size(), process).ec != std::errc())
        return std::nullopt;
    return process;
}

} // namespace vantry::pw
