#pragma once

#include "project/Project.h"

#include <filesystem>
#include <map>
#include <string>

namespace vantry {

/// Which transcripts of a project a lesser engine wrote, because the wanted one could not be had: kept in a hidden file beside the
/// project, and forgotten as soon as somebody has changed the lines. A value; reading and writing wait for the disk.
class LesserTranscripts {
public:
    /// What is not there, or cannot be understood, is empty.
    static LesserTranscripts read(const std::filesystem::path& folder);

    /// Throws what went wrong.
    void write(const std::filesystem::path& folder) const;

    /// Whether the clip's lines are still those that a lesser engine wrote.
    bool contains(const Clip& clip) const;

    void add(const Clip& clip, const std::vector<Line>& lines);
    void remove(const Clip& clip) { m_digests.erase(clip.id.text()); }

    bool operator==(const LesserTranscripts&) const = default;

private:
    std::map<std::string, std::string> m_digests; ///< Of the lines, by the clip's identifier.
};

} // namespace vantry
