#include "render/Video.h"

#include "base/AppError.h"
#include "media/TrackInfo.h"
#include "media/VideoReader.h"

#include <algorithm>
#include <map>
#include <system_error>

namespace vantry::Video {

namespace {

/// Longer than any clip; keeps the arithmetic of a nonsensical project in its range.
constexpr double longestKeep = 1e7;

/// A screen's very last picture may be hard to reach; this many seconds before its end is always possible.
constexpr double backFromEnd = 0.1;

using SourceTracks = std::map<TrackKind, TrackInfo>;

/// Tracks have no names: a clip's pictures are told apart by their order, its sounds by their channels. The last sound of a kind
/// wins.
SourceTracks chooseTracks(const std::vector<TrackInfo>& tracks)
{
    SourceTracks chosen;
    for (const auto& track : tracks) {
        if (track.media == TrackMedia::Audio)
            chosen[track.channels == 2 ? TrackKind::system : TrackKind::audio] = track;
        else if (!chosen.contains(TrackKind::screen))
            chosen[TrackKind::screen] = track;
        else if (!chosen.contains(TrackKind::camera))
            chosen[TrackKind::camera] = track;
    }
    return chosen;
}

TimelineTime keptLength(const Clip& clip)
{
    return timelineTime(std::clamp(clip.keep, 0.0, longestKeep));
}

void addClip(CompositionPlan& plan, const std::filesystem::path& file, TimelineTime at, TimelineTime keep)
{
    std::error_code unknown;
    const auto written = std::filesystem::last_write_time(file, unknown);
    for (const auto& [role, track] : chooseTracks(readTracks(file))) {
        const auto start = std::max(track.start, MediaTime(0));
        const auto end = std::min<MediaTime>(track.start + track.duration, keep);
        if (end <= start)
            continue;
        plan.segments.push_back({
            .file = file,
            .role = role,
            .track = track.index,
            .sourceStart = start,
            .length = end - start,
            .outputStart = at + start,
            .written = written,
        });
        plan.duration = std::max(plan.duration, plan.segments.back().outputEnd());
    }
}

struct ClipTime {
    const Clip* clip = nullptr;
    double seconds = 0;
};

/// The clip that plays at a project time, beyond the end the last one. The project has clips.
ClipTime clipAt(const Project& project, double time)
{
    double start = 0;
    for (const auto& clip : project.clips) {
        if (start + clip.keep > time || &clip == &project.clips.back())
            return { &clip, std::max(time - start, 0.0) };
        start += clip.keep;
    }
    return {};
}

std::optional<Picture> screenPicture(const std::filesystem::path& file, double seconds)
{
    const auto tracks = chooseTracks(readTracks(file));
    const auto screen = tracks.find(TrackKind::screen);
    if (screen == tracks.end())
        return std::nullopt;
    const auto& track = screen->second;
    const double latest = std::chrono::duration<double>(track.duration).count() - backFromEnd;
    VideoReader reader(file, track.index);
    reader.seek(track.start + timelineTime(std::min(seconds, std::max(latest, 0.0))));
    auto picture = reader.next();
    return picture ? std::optional(std::move(picture->picture)) : std::nullopt;
}

} // namespace

CompositionPlan build(const Project& project, const std::filesystem::path& folder, PictureSize size)
{
    CompositionPlan plan{ .segments = {}, .size = size, .systemVolume = static_cast<float>(project.systemVolume.value_or(1)) };
    TimelineTime cursor{};
    for (const auto& clip : project.clips) {
        addClip(plan, folder / clip.file, cursor, keptLength(clip));
        cursor += keptLength(clip);
    }
    if (plan.duration <= MediaTime(0))
        throw AppError("Nothing recorded yet");
    return plan;
}

std::optional<Picture> screenFrame(const Project& project, const std::filesystem::path& folder, double time)
{
    if (project.clips.empty())
        return std::nullopt;
    const auto [clip, seconds] = clipAt(project, time);
    try {
        return screenPicture(folder / clip->file, seconds);
    } catch (const AppError&) {
        return std::nullopt;
    }
}

} // namespace vantry::Video
