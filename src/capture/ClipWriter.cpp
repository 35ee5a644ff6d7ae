#include "capture/ClipWriter.h"

#include "base/AppError.h"
#include "base/Log.h"
#include "capture/ClipSettings.h"
#include "capture/DiskRoom.h"
#include "capture/EncoderQueue.h"
#include "capture/PictureTrack.h"
#include "capture/SoundTrack.h"
#include "media/MovieSalvage.h"
#include "media/Muxer.h"

#include <algorithm>
#include <mutex>
#include <utility>

namespace vantry {

namespace {

/// Memory for the pictures of a track that wait for their encoder.
constexpr std::int64_t waitingBytes = 100'000'000;

/// About ten seconds of what a sound server hands over at a time.
constexpr int waitingSounds = 256;

/// Sound that is this much later than the rest of the clip is not awaited any longer, but for the last second.
constexpr auto longestSoundDelay = std::chrono::seconds(2);
constexpr auto awaitedSound = std::chrono::seconds(1);

/// A screen that has not changed for so long is written out, for the case that the program dies before it changes again.
constexpr auto longestUnwritten = std::chrono::seconds(2);
constexpr auto longestOnItsWay = std::chrono::seconds(1);

/// A power cut loses no more than this, and what is written within it.
constexpr auto durableInterval = std::chrono::seconds(2);

int waitingPictures(PictureSize size)
{
    const auto bytes = std::int64_t{ size.width } * size.height * 3 / 2;
    return static_cast<int>(std::clamp<std::int64_t>(waitingBytes / bytes, 8, framesPerSecond));
}

/// Either pictures or sound.
struct ClipTrack {
    ClipTrack(std::string name, PictureSize size, const VideoEncoderSettings& settings)
        : pictures(std::in_place, settings)
        , queue(std::move(name), waitingPictures(size))
    {
    }
    ClipTrack(std::string name, const AudioEncoderSettings& settings)
        : sounds(std::in_place, settings)
        , queue(std::move(name), waitingSounds)
    {
    }

    // Belong to the queue's thread.
    std::optional<PictureTrack> pictures;
    std::optional<SoundTrack> sounds;

    std::atomic<std::int64_t> lost =
        0; ///< Samples that were taken and not written: too close to the one before, or after a failure.
    EncoderQueue queue; ///< Last: its jobs use the others.

    bool isEmpty() const { return pictures ? pictures->isEmpty() : sounds->isEmpty(); }

    TrackCounts counts() const { return { .appended = queue.accepted() - lost, .dropped = queue.dropped() + lost }; }
};

enum class Phase { Writing, Finishing };

} // namespace

struct ClipWriter::State {
    State(std::filesystem::path path, HostTime start, ProblemHandler onProblem)
        : file(std::move(path))
        , start(start)
        , onProblem(std::move(onProblem))
        , room(file.parent_path())
    {
        soundUntil.fill(start);
    }
    ~State();

    void addTracks(const ClipTracks& wanted);
    void startMuxer();
    void removeFile();

    ClipTrack* track(TrackKind kind) const { return tracks[static_cast<std::size_t>(kind)].get(); }
    PacketSink sinkOf(TrackKind kind);
    void offer(TrackKind kind, std::function<void(ClipTrack&, const PacketSink&)> write);
    void keepUp(HostTime now);
    bool isLeftOut(TrackKind kind) const;
    void writeOutStillScreen(HostTime now);
    void keepDurable();
    void watchRoom();
    void tell(const std::string& text) const;
    void attempt(const std::function<void()>& work);
    void fail(const std::string& text);
    void finishTrack(TrackKind kind, HostDuration length);
    void complete(HostDuration length, const WhenDone& whenDone);

    const std::filesystem::path file;
    const HostTime start;
    const ProblemHandler onProblem;

    // Belong to the caller's thread.
    Phase phase = Phase::Writing;
    std::array<HostTime, trackKindCount> soundUntil{}; ///< Of each sound, where it ends so far.
    std::optional<HostTime> unwrittenScreen; ///< The latest picture's, unless it was written out.

    // Safe to use from any thread.
    std::atomic<bool> hasFailed = false;
    std::atomic<int> openTracks = 0;
    std::mutex problemMutex;
    std::string problem; ///< The first one; guarded by the mutex.

    // Belong to the writing thread once the first sample has come.
    std::optional<Muxer> muxer;
    std::array<int, trackKindCount> muxerTracks{};
    DiskRoom room;
    bool hasRoom = true;
    HostTime lastDurable = HostClock::now();
    Worker durability{ "clip durability", { .capacity = 1, .whenFull = WhenFull::Drop } };

    std::optional<Worker> writing;
    std::array<std::unique_ptr<ClipTrack>, trackKindCount> tracks;
};

ClipWriter::State::~State()
{
    // Nobody waits for a clip that was never finished.
    if (phase == Phase::Writing)
        hasFailed = true;
    // The encoders hand to the writing thread, whose last job looks at all of them.
    for (const auto& track : tracks)
        if (track)
            track->queue.finish();
    if (writing)
        writing->finish();
}

void ClipWriter::State::addTracks(const ClipTracks& wanted)
{
    const auto slot = [this](TrackKind kind) -> auto&
    {
        return tracks[static_cast<std::size_t>(kind)];
    };
    slot(TrackKind::screen) = std::make_unique<ClipTrack>("clip screen", wanted.screen, clip::screenSettings(wanted.screen));
    if (wanted.camera)
        slot(TrackKind::camera) = std::make_unique<ClipTrack>("clip camera", *wanted.camera, clip::cameraSettings(*wanted.camera));
    if (wanted.audio)
        slot(TrackKind::audio) = std::make_unique<ClipTrack>("clip microphone", clip::microphoneSettings);
    if (wanted.system)
        slot(TrackKind::system) = std::make_unique<ClipTrack>("clip system", clip::systemSoundSettings);
}

void ClipWriter::State::startMuxer()
{
    muxer.emplace(file, MovieFormat::Clip);
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        if (!tracks[i])
            continue;
        muxerTracks[i] =
            tracks[i]->pictures ? muxer->addTrack(tracks[i]->pictures->encoder()) : muxer->addTrack(tracks[i]->sounds->encoder());
        ++openTracks;
    }
    muxer->start();
    room.checkForClip();
    writing.emplace("clip file");
}

/// What is no file, as a device, is not ours to remove.
void ClipWriter::State::removeFile()
{
    muxer.reset();
    std::error_code error;
    if (std::filesystem::is_regular_file(file, error))
        std::filesystem::remove(file, error);
    forgetJournal(file);
}

/// Runs on the track's thread; what it is given goes on to the writing thread.
PacketSink ClipWriter::State::sinkOf(TrackKind kind)
{
    return [this, index = muxerTracks[static_cast<std::size_t>(kind)]](Packet packet) {
        // A job can be copied, a packet cannot.
        writing->post([this, index, shared = std::make_shared<Packet>(std::move(packet))] {
            attempt([&] { muxer->write(index, std::move(*shared)); });
            watchRoom();
            keepDurable();
        });
    };
}

void ClipWriter::State::watchRoom()
{
    if (!hasRoom || !room.isRunningOut())
        return;
    hasRoom = false;
    tell(DiskRoom::runsOut);
}

/// On a thread of its own, for disks take their time. One at a time.
void ClipWriter::State::keepDurable()
{
    const HostTime now = HostClock::now();
    if (now - lastDurable < durableInterval)
        return;
    lastDurable = now;
    static_cast<void>(durability.tryPost([file = file] {
        try {
            makeClipDurable(file);
        } catch (const std::exception& error) {
            qCWarning(logCapture, "%s", error.what()); // Writing goes on, and tells when that fails.
        }
    }));
}

void ClipWriter::State::tell(const std::string& text) const
{
    qCWarning(logCapture, "%s", text.c_str());
    if (onProblem)
        onProblem(text);
}

void ClipWriter::State::offer(TrackKind kind, std::function<void(ClipTrack&, const PacketSink&)> write)
{
    ClipTrack& target = *track(kind);
    if (hasFailed)
        return target.queue.countDropped();
    target.queue.offer([this, &target, sink = sinkOf(kind), write = std::move(write)] {
        if (hasFailed)
            ++target.lost;
        else
            attempt([&] { write(target, sink); });
    });
}

/// A microphone that is gone leaves silence, and not all of it for the clip's end: an hour of it takes a while to encode. One that
/// was never heard leaves no track.
void ClipWriter::State::keepUp(HostTime now)
{
    for (const auto kind : { TrackKind::audio, TrackKind::system }) {
        HostTime& until = soundUntil[static_cast<std::size_t>(kind)];
        ClipTrack* sound = track(kind);
        if (!sound || now - until < longestSoundDelay || !sound->queue.hasRoom())
            continue;
        until = now - awaitedSound;
        sound->queue.post([this, kind, sound, sink = sinkOf(kind), end = std::chrono::round<SampleCount>(until - start)] {
            if (!isLeftOut(kind))
                attempt([&] { sound->sounds->fillUntil(end, sink); });
        });
    }
}

/// On the track's thread.
bool ClipWriter::State::isLeftOut(TrackKind kind) const
{
    return (kind == TrackKind::camera || kind == TrackKind::audio) && track(kind)->isEmpty();
}

void ClipWriter::State::writeOutStillScreen(HostTime now)
{
    ClipTrack& screen = *track(TrackKind::screen);
    if (!unwrittenScreen || now - *unwrittenScreen < longestUnwritten || !screen.queue.hasRoom())
        return;
    // As late as whatever is still on its way from the screen.
    const MediaTime time = mediaTime(*std::exchange(unwrittenScreen, std::nullopt) + longestOnItsWay - start);
    screen.queue.post(
        [this, &screen, sink = sinkOf(TrackKind::screen), time] { attempt([&] { screen.pictures->writeOut(time, sink); }); });
}

/// Does nothing after a failure; a failure of its own is the clip's.
void ClipWriter::State::attempt(const std::function<void()>& work)
{
    if (hasFailed)
        return;
    try {
        work();
    } catch (const std::exception& error) {
        fail(error.what());
    }
}

void ClipWriter::State::fail(const std::string& text)
{
    {
        const std::lock_guard lock(problemMutex);
        if (hasFailed.exchange(true))
            return;
        problem = text;
    }
    tell(text);
}

void ClipWriter::State::finishTrack(TrackKind kind, HostDuration length)
{
    attempt([&] {
        ClipTrack& target = *track(kind);
        const auto sink = sinkOf(kind);
        if (isLeftOut(kind))
            return;
        if (kind == TrackKind::screen && target.pictures->isEmpty())
            target.pictures->writeBlack(MediaTime::zero(), sink);
        if (target.pictures)
            target.pictures->finish(sink);
        else
            target.sounds->finish(std::chrono::round<SampleCount>(length), sink);
    });
}

void ClipWriter::State::complete(HostDuration length, const WhenDone& whenDone)
{
    attempt([&] { muxer->finish(mediaTime(length)); });
    muxer.reset();
    durability.finish();
    ClipOutcome outcome;
    for (std::size_t i = 0; i < tracks.size(); ++i)
        if (tracks[i])
            outcome.counts[i] = tracks[i]->counts();
    if (!hasFailed)
        outcome.duration = seconds(length);
    {
        const std::lock_guard lock(problemMutex);
        outcome.problem = problem;
    }
    whenDone(outcome);
}

ClipWriter::ClipWriter(const std::filesystem::path& file, const ClipTracks& tracks, HostTime start, ProblemHandler onProblem)
    : m_state(std::make_unique<State>(file, start, std::move(onProblem)))
{
    m_state->addTracks(tracks);
    try {
        m_state->startMuxer();
    } catch (const AppError&) {
        m_state->removeFile();
        throw;
    } catch (const std::exception&) {
        m_state->removeFile();
        throw AppError("Could not start writing " + file.filename().string());
    }
}

ClipWriter::~ClipWriter() = default;

void ClipWriter::append(const PictureSample& sample, TrackKind kind)
{
    const auto* track = m_state->track(kind);
    if (!track || !track->pictures || sample.time < m_state->start || m_state->phase != Phase::Writing)
        return;
    m_state->offer(kind,
        [picture = sample.picture, time = mediaTime(sample.time - m_state->start)](ClipTrack& target, const PacketSink& sink) {
            if (!target.pictures->write(picture, time, sink))
                ++target.lost;
        });
    // A camera's stamps are its own.
    if (kind != TrackKind::screen)
        return m_state->writeOutStillScreen(sample.time);
    m_state->unwrittenScreen = sample.time;
    m_state->keepUp(sample.time);
}

void ClipWriter::append(SoundSample sample, TrackKind kind)
{
    const auto* track = m_state->track(kind);
    const auto end = sample.time + std::chrono::round<HostDuration>(sample.sound.length());
    if (!track || !track->sounds || end <= m_state->start || m_state->phase != Phase::Writing)
        return;
    m_state->offer(
        kind, [sound = std::move(sample.sound), at = sample.time - m_state->start](ClipTrack& target, const PacketSink& sink) {
            target.sounds->write(sound, at, sink);
        });
    m_state->soundUntil[static_cast<std::size_t>(kind)] = end;
    m_state->keepUp(end);
    m_state->writeOutStillScreen(end);
}

bool ClipWriter::isReady(TrackKind kind) const
{
    const auto* track = m_state->track(kind);
    return track && m_state->phase == Phase::Writing && !m_state->hasFailed && track->queue.hasRoom();
}

void ClipWriter::finish(HostTime end, WhenDone whenDone)
{
    auto& state = *m_state;
    if (state.phase != Phase::Writing)
        return state.writing->post([whenDone = std::move(whenDone)] { whenDone({ .duration = {}, .counts = {}, .problem = {} }); });
    state.phase = Phase::Finishing;
    const HostDuration length = std::max(end - state.start, HostDuration::zero());
    for (std::size_t i = 0; i < state.tracks.size(); ++i) {
        if (!state.tracks[i])
            continue;
        state.tracks[i]->queue.post([&state, kind = static_cast<TrackKind>(i), length, whenDone] {
            state.finishTrack(kind, length);
            if (--state.openTracks == 0)
                state.writing->post([&state, length, whenDone] { state.complete(length, whenDone); });
        });
    }
}

} // namespace vantry
