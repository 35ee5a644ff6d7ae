#include "model/AppModel.h"

#include "ai/Client.h"
#include "capture/HotKeys.h"
#include "capture/Recorder.h"
#include "media/MovieSalvage.h"
#include "model/BrowserPageSearch.h"
#include "model/CaptureDevices.h"
#include "model/ChangeTo.h"
#include "model/Coroutines.h"
#include "model/EditingCommands.h"
#include "model/ExportFlow.h"
#include "model/FieldBinding.h"
#include "model/NewProject.h"
#include "model/OverlayFlow.h"
#include "model/OverlayPictures.h"
#include "model/Paths.h"
#include "model/PreviewFlow.h"
#include "model/ProjectSaver.h"
#include "model/QuitFlow.h"
#include "model/Readiness.h"
#include "model/RecentAreas.h"
#include "model/RecordingFlow.h"
#include "model/SalvageFlow.h"
#include "model/ScreenPreview.h"
#include "model/TranscriptionFlow.h"
#include "model/VideoFiles.h"
#include "model/YouTubeFlow.h"
#include "platform/MotionSetting.h"
#include "project/Edits.h"
#include "project/ProjectFile.h"
#include "project/Timeline.h"

#include <QPointer>

#include <algorithm>
#include <cmath>

namespace vantry {

using namespace Qt::StringLiterals;
namespace fs = std::filesystem;

AppModel::AppModel(Options options)
    : m_storage(std::move(options.root))
    , m_settings(options.settingsFile)
    , m_transcribe(options.transcribe)
    , m_motion(std::make_unique<MotionSetting>())
    , m_saver(std::make_unique<ProjectSaver>(m_notices))
    , m_salvage(std::make_unique<SalvageFlow>(*this, *m_saver))
    , m_recorder(std::make_unique<Recorder>())
    , m_devices(std::make_unique<CaptureDevices>(*this, *m_recorder))
    , m_recording(std::make_unique<RecordingFlow>(*this, *m_recorder, *m_devices, *m_salvage))
    , m_overlayPictures(std::make_unique<OverlayPictures>(*this))
    , m_preview(std::make_unique<PreviewFlow>(*this))
    , m_export(std::make_unique<ExportFlow>(*this, std::move(options.reveal)))
    , m_transcription(std::make_unique<TranscriptionFlow>(*this, std::move(options.speech)))
    , m_editing(std::make_unique<EditingCommands>(*this, *m_recorder))
    , m_ai(std::make_unique<AI::Client>(
          [this] {
              return AI::Choices{ m_settings.model(), m_settings.tokensPath() };
          },
          std::move(options.ai)))
    , m_aiOverlay(std::make_unique<OverlayFlow>(*this, *m_ai, m_aiNotice))
    , m_youTube(std::make_unique<YouTubeFlow>(*this, *m_ai, m_aiNotice, [this] { return transcribeAll(); }))
    , m_quit(std::make_unique<QuitFlow>(*this, *m_saver, *m_salvage))
    , m_readiness(std::make_unique<Readiness>(*this))
    , m_screenPreview(std::make_unique<ScreenPreview>())
    , m_browserPage(std::make_unique<BrowserPageSearch>([this] { return screen(); }))
    , m_recentAreas(std::make_unique<RecentAreas>(m_settings, [this] { return screen(); }))
{
    connect(m_saver.get(), &ProjectSaver::failed, this,
        [this](const QString& description) { setAlert("Could not save the project: "_L1 + description); });
    connect(m_motion.get(), &MotionSetting::changed, this, &AppModel::reducedMotionChanged);
    connect(&m_settings, &Settings::reduceMotionChanged, this, &AppModel::reducedMotionChanged);
    connect(&m_notices, &Notices::changed, this, &AppModel::statusChanged);
    connect(this, &AppModel::projectChanged, this, &AppModel::liveLayoutChanged);
    connect(&m_settings, &Settings::setupLayoutChanged, this, &AppModel::liveLayoutChanged);
    connect(&m_settings, &Settings::setupCornerChanged, this, &AppModel::liveLayoutChanged);
}

/// Notices go with those who hold them, and nobody should look then.
AppModel::~AppModel()
{
    m_notices.blockSignals(true);
}

void AppModel::open(const fs::path& folder)
{
    if (!isIdle())
        return;
    try {
        const auto unsaved = m_saver->unsaved(folder);
        setProject(unsaved ? unsaved : std::make_shared<const Project>(loadProject(folder)));
    } catch (const std::exception& error) {
        openCutOff(folder, "Could not open project: "_L1 + describe(error));
        return;
    }
    setFolder(folder);
    m_devices->stopCamera();
    setPendingSeek(0);
    setPhase(Phase::editing());
    countRevisionUp();
    transcribeMissing();
    m_salvage->start({ folder });
}

/// One whose first clip was cut off has no project before that clip is completed.
void AppModel::openCutOff(const fs::path& folder, const QString& failure)
{
    std::error_code unreadable;
    if (fs::exists(folder / projectFileName, unreadable) || cutOffMovies(folder).empty())
        return setAlert(failure);
    launch(completeAndOpen(folder, failure), [self = QPointer(this)](const QString& description) {
        if (self)
            self->setAlert(description);
    });
}

QCoro::Task<> AppModel::completeAndOpen(fs::path folder, QString failure)
{
    const QPointer<AppModel> self(this);
    const std::vector folders{ folder };
    co_await m_salvage->run(folders);
    if (!self)
        co_return;
    if (fs::exists(folder / projectFileName) || m_saver->unsaved(folder))
        open(folder);
    else
        setAlert(failure);
}

void AppModel::open(const QString& folder)
{
    open(toPath(folder));
}

void AppModel::newProject()
{
    const QDateTime now = QDateTime::currentDateTime();
    setFolder(m_storage.createFolder(now));
    setProject(std::make_shared<const Project>(vantry::newProject(m_settings, now)));
}

void AppModel::dropEmptyProject()
{
    if (m_folder) {
        m_saver->drop(*m_folder);
        ProjectStorage::removeIfEmpty(*m_folder);
    }
    setProject(nullptr);
    setFolder(std::nullopt);
}

void AppModel::salvage()
{
    m_salvage->start(m_storage.folders());
    m_tidying.start(m_storage.folders(), root().parent_path());
}

QCoro::Task<> AppModel::salvage(const fs::path& folder)
{
    return m_salvage->run({ folder });
}

QFuture<bool> AppModel::edit(Rebuild rebuild, const std::function<void(Project&)>& change)
{
    return edit(rebuild, change, {});
}

QFuture<bool> AppModel::addClip(Rebuild rebuild, const std::string& file, double length)
{
    return edit(rebuild, [&](Project& project) { append(project, file, length); }, { m_folder.value_or(fs::path()) / file });
}

QFuture<bool> AppModel::edit(Rebuild rebuild, const std::function<void(Project&)>& change, std::vector<fs::path> clips)
{
    if (!m_project)
        return QtFuture::makeReadyFuture(false);
    auto changed = std::make_shared<Project>(*m_project);
    change(*changed);
    setProject(std::move(changed));
    if (rebuild == Rebuild::Yes)
        countRevisionUp();
    return m_folder ? m_saver->save(m_project, *m_folder, std::move(clips)) : QtFuture::makeReadyFuture(false);
}

QFuture<bool> AppModel::saved()
{
    return m_saver->flush();
}

void AppModel::newRecording()
{
    if (!isIdle())
        return;
    setProject(nullptr);
    setFolder(std::nullopt);
    m_preview->clear();
    setPhase(Phase::setup());
    m_devices->startCamera();
}

void AppModel::record(std::optional<double> cutAt)
{
    m_recording->record(cutAt);
}

void AppModel::record()
{
    m_recording->record(std::nullopt);
}

void AppModel::retakeLast(double seconds)
{
    m_recording->record(std::max(0.0, projectLength() - seconds));
}

void AppModel::cancelStart()
{
    m_recording->cancelStart();
}

void AppModel::stop(double back, double age)
{
    m_recording->stop(back, HostClock::now() - std::chrono::round<HostDuration>(std::chrono::duration<double>(std::max(age, 0.0))));
}

void AppModel::hotkey(std::uint32_t id)
{
    switch (static_cast<HotKey>(id)) {
    case HotKey::StartOrStop:
        return m_recording->startOrStop();
    case HotKey::GoBack:
        return m_recording->stop(30);
    case HotKey::LayoutCamera:
        return setLayout(Layout::camera, std::nullopt);
    case HotKey::LayoutBubble:
        return setLayout(Layout::bubble, std::nullopt);
    case HotKey::LayoutScreen:
        return setLayout(Layout::screen, std::nullopt);
    case HotKey::NextCorner:
        return nextCorner();
    }
}

LayoutEvent AppModel::liveLayout() const
{
    return m_editing->liveLayout();
}

void AppModel::setLayout(std::optional<Layout> layout, std::optional<Corner> corner)
{
    m_editing->setLayout(layout, corner);
}

void AppModel::nextCorner()
{
    m_editing->nextCorner();
}

FieldBinding* AppModel::binding(ProjectField::Kind field, bool rebuild)
{
    return new FieldBinding(*this, accessTo(field), rebuild ? Rebuild::Yes : Rebuild::No);
}

FieldBinding* AppModel::overlayBinding(const QString& id, OverlayField::Kind field)
{
    return new FieldBinding(*this, accessTo(field, Uuid::parse(id.toStdString()).value_or(Uuid())), Rebuild::Yes);
}

QCoro::Task<OverlayImages> AppModel::overlayImages(std::stop_token cancel)
{
    return m_overlayPictures->of(m_project ? m_project->overlays : std::vector<Overlay>(), std::move(cancel));
}

QCoro::Task<bool> AppModel::aiOverlay(const QString& instruction)
{
    return m_aiOverlay->suggest(instruction);
}

QCoro::Task<> AppModel::generateYouTube()
{
    return m_youTube->generate();
}

void AppModel::cancelAsking()
{
    m_ai->cancel();
}

void AppModel::refreshPlayer()
{
    m_preview->refresh();
}

void AppModel::seek(double time)
{
    m_preview->seek(time);
}

void AppModel::exportTo(const fs::path& file)
{
    m_export->start(file);
}

void AppModel::exportTo(const QUrl& file)
{
    m_export->start(toPath(file.toLocalFile()));
}

void AppModel::cancelExport()
{
    m_export->cancel();
}

QUrl AppModel::suggestedVideo() const
{
    return vantry::suggestedVideo(root().parent_path(), m_project.get());
}

QUrl AppModel::videoIn(const QUrl& folder, const QString& name) const
{
    return vantry::videoIn(folder, name);
}

bool AppModel::isTaken(const QUrl& file) const
{
    return vantry::isTaken(file);
}

QCoro::Task<> AppModel::transcribeAll()
{
    return m_transcription->transcribeAll();
}

void AppModel::transcribeMissing()
{
    if (m_transcribe == Transcribe::ByItself)
        m_transcription->transcribeMissing();
}

void AppModel::transcribeAgain()
{
    m_transcription->transcribeAgain();
}

bool AppModel::transcribing() const
{
    return m_transcription->isRunning();
}

void AppModel::quit()
{
    m_quit->start();
}

std::optional<Display> AppModel::screen() const
{
    try {
        return m_devices->chosenDisplay();
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

bool AppModel::reducedMotion() const
{
    return m_settings.reduceMotion() || m_motion->isReduced();
}

double AppModel::menuBarFraction() const
{
    return vantry::menuBarFraction(screen());
}

void AppModel::captureScreenPreview()
{
    launch(m_screenPreview->capture(screen()), [](const QString&) {});
}

bool AppModel::hasCamera() const
{
    return m_recorder->hasCamera();
}

double AppModel::bubbleSize() const
{
    return m_project ? m_project->bubbleSize : m_settings.setupBubble();
}

void AppModel::setPhase(Phase phase)
{
    if (!changeTo(m_phase, phase))
        return;
    Q_EMIT phaseChanged();
    if (phase == Phase::setup())
        Q_EMIT recentChanged();
}

void AppModel::setLiveTime(double time)
{
    if (changeTo(m_liveTime, time))
        Q_EMIT liveTimeChanged();
}

void AppModel::setPlayhead(double time)
{
    // Also what is not a number becomes the start.
    if (changeTo(m_playhead, time > 0 ? time : 0))
        Q_EMIT playheadChanged();
}

void AppModel::setAlert(const std::optional<QString>& text)
{
    if (changeTo(m_alert, text))
        Q_EMIT alertChanged();
}

void AppModel::setBusy(const std::optional<QString>& text)
{
    if (changeTo(m_busy, text))
        Q_EMIT busyChanged();
}

void AppModel::setExportProgress(std::optional<double> fraction)
{
    if (changeTo(m_exportProgress, fraction))
        Q_EMIT exportProgressChanged();
}

void AppModel::countRevisionUp()
{
    ++m_revision;
    Q_EMIT revisionChanged();
}

void AppModel::setProject(std::shared_ptr<const Project> project)
{
    if (!m_project && !project)
        return;
    m_project = std::move(project);
    Q_EMIT projectChanged();
}

void AppModel::setFolder(const std::optional<fs::path>& folder)
{
    if (changeTo(m_folder, folder))
        Q_EMIT folderChanged();
}

QString AppModel::folderText() const
{
    return m_folder ? text(*m_folder) : QString();
}

QString AppModel::projectName() const
{
    return m_project ? QString::fromStdString(m_project->name) : QString();
}

double AppModel::projectLength() const
{
    return m_project ? totalLength(*m_project) : 0;
}

QStringList AppModel::recentFolders() const
{
    QStringList folders;
    for (const fs::path& folder : m_storage.recent())
        folders.append(text(folder));
    return folders;
}

} // namespace vantry
