#pragma once

#include "platform/Xcb.h"

#include <map>
#include <optional>
#include <sys/types.h>
#include <vector>

namespace vantry {

/// Tells which top-level windows belong to given processes: those that such a process made or signed with its process id, and a
/// window manager's frames around them. Answers are kept until a window is forgotten.
class WindowOwners {
public:
    WindowOwners(const xcb::Connection&, std::vector<pid_t> processes);

    bool owns(xcb_window_t topLevel);

    void forget(xcb_window_t topLevel) { m_known.erase(topLevel); }
    void forgetAll() { m_known.clear(); }

private:
    bool madeByOwner(xcb_window_t) const;
    bool framesOwned(xcb_window_t topLevel) const;
    bool fillsFrame(xcb_window_t child, xcb_window_t topLevel) const;
    std::vector<xcb_window_t> children(xcb_window_t) const;
    std::optional<std::uint32_t> clientProcess(std::uint32_t resource) const;
    std::optional<std::uint32_t> signedProcess(xcb_window_t) const;
    bool sameClient(std::uint32_t a, std::uint32_t b) const;

    const xcb::Connection& m_connection;
    const xcb_atom_t m_processAtom;
    std::vector<std::uint32_t> m_signatures; ///< Process ids as the processes themselves know them.
    std::vector<std::uint32_t> m_clients; ///< The same as the server knows them: a container may number differently.
    std::map<xcb_window_t, bool> m_known;
};

} // namespace vantry
