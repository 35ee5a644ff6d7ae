#pragma once

#include "platform/PipeWire.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>

namespace vantry::pw {

/// The properties of one client or one node of the server, kept up to date. Belongs to the loop's thread, or to who has its lock.
class ServerObject {
public:
    enum class Kind { Client, Node };

    /// `onChange` is called on the loop's thread.
    ServerObject(pw_registry* registry, Kind kind, std::uint32_t id, std::function<void()> onChange);

    /// Whether the server has told them yet.
    bool isKnown() const { return m_properties.has_value(); }
    std::optional<std::string> property(const std::string& key) const;

private:
    void update(const spa_dict* properties);

    static const pw_client_events clientEvents;
    static const pw_node_events nodeEvents;

    const std::function<void()> m_onChange;
    std::optional<std::map<std::string, std::string>> m_properties;
    ProxyPtr<pw_proxy> m_proxy;
    Hook m_hook;
};

/// The process that one of these numbers stands for.
std::optional<pid_t> processIn(const std::optional<std::string>& property);

} // namespace vantry::pw
