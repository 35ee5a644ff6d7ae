#pragma once

#include "ai/Options.h"
#include "model/LayoutKind.h"
#include "model/Notices.h"
#include "model/Phase.h"
#include "model/ProjectFields.h"
#include "model/ProjectStorage.h"
#include "model/Settings.h"
#include "model/Tidying.h"
#include "platform/Displays.h"
#include "project/Project.h"
#include "render/RenderInstruction.h"
#include "transcribe/Transcriber.h"

#include <QCoroTask>
#include <QFuture>
#include <QObject>
#include <QStringList>
#include <QUrl>
#include <QVariant>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

namespace vantry {

class BrowserPageSearch;
class CaptureDevices;
class EditingCommands;
class ExportFlow;
class FieldBinding;
class MotionSetting;
class OverlayFlow;
class OverlayPictures;
class PreviewFlow;
class ProjectSaver;
class QuitFlow;
class Readiness;
class RecentAreas;
class Recorder;
class RecordingFlow;
class SalvageFlow;
class ScreenPreview;
class TranscriptionFlow;
class YouTubeFlow;

namespace AI {
class Client;
}

/// Whether an edit changes what the preview shows.
enum class Rebuild { No, Yes };

/// Whether clips are transcribed when they are there, or only when that is asked for.
enum class Transcribe { ByItself, OnRequest };

/// The one face that the views see: where the application is, the open project, and the commands. Every change to the project goes
/// through `edit`. Belongs to the main thread; a write of the value that is already held notifies nobody.
class AppModel : public QObject {
    Q_OBJECT
    Q_MOC_INCLUDE("model/BrowserPageSearch.h")
    Q_MOC_INCLUDE("model/CaptureDevices.h")
    Q_MOC_INCLUDE("model/FieldBinding.h")
    Q_MOC_INCLUDE("model/PreviewFlow.h")
    Q_MOC_INCLUDE("model/QuitFlow.h")
    Q_MOC_INCLUDE("model/Readiness.h")
    Q_MOC_INCLUDE("model/RecentAreas.h")
    Q_MOC_INCLUDE("model/ScreenPreview.h")
    Q_PROPERTY(vantry::Phase phase READ phase NOTIFY phaseChanged)
    Q_PROPERTY(QString folder READ folderText NOTIFY folderChanged)
    Q_PROPERTY(QString projectName READ projectName NOTIFY projectChanged)
    Q_PROPERTY(double projectLength READ projectLength NOTIFY projectChanged)
    Q_PROPERTY(int revision READ revision NOTIFY revisionChanged)
    Q_PROPERTY(double liveTime READ liveTime NOTIFY liveTimeChanged)
    Q_PROPERTY(double playhead READ playhead NOTIFY playheadChanged)
    Q_PROPERTY(QString alert READ alertText WRITE setAlertText NOTIFY alertChanged)
    Q_PROPERTY(QString busy READ busyText NOTIFY busyChanged)
    Q_PROPERTY(QString status READ statusText NOTIFY statusChanged)
    Q_PROPERTY(bool statusIsWarning READ statusIsWarning NOTIFY statusChanged)
    Q_PROPERTY(vantry::LayoutKind::Kind liveLayout READ liveLayoutKind NOTIFY liveLayoutChanged)
    Q_PROPERTY(vantry::CornerKind::Kind liveCorner READ liveCornerKind NOTIFY liveLayoutChanged)
    Q_PROPERTY(QVariant exportProgress READ exportProgressValue NOTIFY exportProgressChanged)
    Q_PROPERTY(QStringList recent READ recentFolders NOTIFY recentChanged)
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY reducedMotionChanged)
    Q_PROPERTY(vantry::Settings* settings READ settings CONSTANT)
    Q_PROPERTY(vantry::CaptureDevices* devices READ devices CONSTANT)
    Q_PROPERTY(vantry::PreviewFlow* preview READ preview CONSTANT)
    Q_PROPERTY(vantry::QuitFlow* quitting READ quitting CONSTANT)
    Q_PROPERTY(vantry::Readiness* readiness READ readiness CONSTANT)
    Q_PROPERTY(vantry::ScreenPreview* screenPreview READ screenPreview CONSTANT)
    Q_PROPERTY(vantry::BrowserPageSearch* browserPage READ browserPage CONSTANT)
    Q_PROPERTY(vantry::RecentAreas* recentAreas READ recentAreas CONSTANT)

public:
    struct Options {
        std::filesystem::path root = ProjectStorage::defaultRoot();
        std::filesystem::path settingsFile = Settings::defaultFile();
        /// Shows a finished export to the user, where there is something to show it in.
        std::function<void(const std::filesystem::path&)> reveal;
        Transcribe transcribe = Transcribe::ByItself;
        Transcriber::Options speech{};
        AI::Options ai{};
    };

    explicit AppModel(Options options);
    ~AppModel() override;

    // What the views watch.
    Phase phase() const { return m_phase; }

    /// No recording is under way, nor about to be.
    bool isIdle() const { return m_phase == Phase::setup() || m_phase == Phase::editing(); }
    const std::shared_ptr<const Project>& project() const { return m_project; }
    const std::optional<std::filesystem::path>& folder() const { return m_folder; }

    /// Counted up whenever a preview of the project must be rebuilt.
    int revision() const { return m_revision; }

    /// Seconds recorded so far, the clip in progress included.
    double liveTime() const { return m_liveTime; }

    /// Project seconds.
    double playhead() const { return m_playhead; }
    const std::optional<QString>& alert() const { return m_alert; }
    const std::optional<QString>& busy() const { return m_busy; }

    /// What goes on, or does not work, in the background: the notice that matters.
    std::optional<QString> status() const { return m_notices.shown(); }
    bool statusIsWarning() const { return m_notices.isWarning(); }

    /// The layout at the end of the recording, or the one that the next recording starts with.
    LayoutEvent liveLayout() const;

    /// From 0 to 1 while an export runs.
    std::optional<double> exportProgress() const { return m_exportProgress; }

    /// The chosen display as it is now, else the first. Nothing where there is none.
    std::optional<Display> screen() const;

    /// Whether there is a camera to be seen by: one was chosen, and it is not refused.
    bool hasCamera() const;

    /// Diameter of the bubble as a fraction of the frame's height: the project's, else the next recording's.
    double bubbleSize() const;

    /// The desktop, or the user, asks for less motion.
    bool reducedMotion() const;

    /// Whoever has something to say of what goes on holds a notice here.
    Notices& notices() { return m_notices; }

    Settings* settings() { return &m_settings; }
    CaptureDevices* devices() { return m_devices.get(); }
    PreviewFlow* preview() { return m_preview.get(); }
    QuitFlow* quitting() { return m_quit.get(); }
    Readiness* readiness() { return m_readiness.get(); }
    ScreenPreview* screenPreview() { return m_screenPreview.get(); }
    BrowserPageSearch* browserPage() { return m_browserPage.get(); }
    RecentAreas* recentAreas() { return m_recentAreas.get(); }
    Recorder& recorder() { return *m_recorder; }
    RecordingFlow& recording() { return *m_recording; }
    ExportFlow& exporting() { return *m_export; }
    TranscriptionFlow& transcription() { return *m_transcription; }

    // Storage.
    const std::filesystem::path& root() const { return m_storage.root(); }
    std::vector<std::filesystem::path> recent() const { return m_storage.recent(); }

    /// Opens the project of a folder for editing, or says why not and changes nothing. A recording that was cut off before it had a
    /// project is completed first. Ignored while a recording is under way.
    void open(const std::filesystem::path& folder);
    Q_INVOKABLE void open(const QString& folder);

    /// Makes a project of the settings, and its folder. Nothing is saved before the first edit.
    void newProject();

    /// Forgets the project, and deletes its folder if nothing was put into it.
    void dropEmptyProject();

    /// Completes recordings that a crash cut off, and says in the status which: those of all folders, or of one, for which it
    /// waits. With those of all, whatever else killed programs left is removed.
    void salvage();
    QCoro::Task<> salvage(const std::filesystem::path& folder);

    /// Changes a copy of the project, stores it and has it saved, which nobody waits for; the future says whether it is on the disk
    /// then. Nothing happens without a project. What cannot be saved stays in memory, the alert says why, and it is tried again.
    QFuture<bool> edit(Rebuild rebuild, const std::function<void(Project&)>& change);

    /// Puts a finished clip at the project's end, unless it is there. Its journal is forgotten once that is on the disk.
    QFuture<bool> addClip(Rebuild rebuild, const std::string& file, double length);

    /// Says whether everything is on the disk, when it is or cannot be.
    QFuture<bool> saved();

    // Choosing what is recorded.

    /// What the panel at the top of the screen takes of its height; 0.03 where there is no screen.
    double menuBarFraction() const;

    /// Refreshes `screenPreview`. What goes wrong leaves the picture before.
    Q_INVOKABLE void captureScreenPreview();

    // Recording.
    Q_INVOKABLE void newRecording();

    /// Counts down and records a clip at the project's end. With a time, what comes after that time is cut off first. Ignored while
    /// a recording is under way.
    void record(std::optional<double> cutAt);
    Q_INVOKABLE void record();

    /// Records the last seconds of the project again.
    Q_INVOKABLE void retakeLast(double seconds);
    Q_INVOKABLE void cancelStart();

    /// Ends the clip and edits, with the playhead `back` seconds before the end. `age`: how many seconds ago the user asked for
    /// that, which is where the clip ends.
    Q_INVOKABLE void stop(double back, double age = 0);

    /// What a hot key asks for, by its id. Ids of no key do nothing.
    void hotkey(std::uint32_t id);

    // Editing.

    /// Changes the layout, the bubble's corner or both, now: at the playhead while editing, at the live time while recording. In
    /// setup they are those of the next recording.
    void setLayout(std::optional<Layout> layout, std::optional<Corner> corner);
    Q_INVOKABLE void setLayout(vantry::LayoutKind::Kind layout) { setLayout(static_cast<Layout>(layout), std::nullopt); }
    Q_INVOKABLE void setCorner(vantry::CornerKind::Kind corner) { setLayout(std::nullopt, static_cast<Corner>(corner)); }
    Q_INVOKABLE void nextCorner();

    /// A field of the open project to bind a control to. Belongs to the caller.
    Q_INVOKABLE vantry::FieldBinding* binding(vantry::ProjectField::Kind field, bool rebuild);

    /// The same of an overlay, which changes the preview.
    Q_INVOKABLE vantry::FieldBinding* overlayBinding(const QString& id, vantry::OverlayField::Kind field);

    /// The bitmaps of the open project's overlays; what cannot be rendered has none. Those that are not made yet when `cancel` is
    /// asked to stop are left out.
    QCoro::Task<OverlayImages> overlayImages(std::stop_token cancel = {});

    // Assistants. Both work on the project that is open now; what they have to say stands in the texts.

    /// Adds an overlay as the AI designs it after an instruction, and says whether there is one now.
    QCoro::Task<bool> aiOverlay(const QString& instruction);

    /// Has the AI write title, description, tags and chapters. What is not transcribed yet is transcribed before.
    QCoro::Task<> generateYouTube();

    /// Ends what is being asked, also while the key ring waits to be unlocked. Nobody is told.
    Q_INVOKABLE void cancelAsking();

    // Preview.

    /// Shows the project as it is now: at the pending seek, else at the playhead. Why that cannot be done is told; what was shown
    /// stays then.
    Q_INVOKABLE void refreshPlayer();

    /// Moves the playhead and the preview to a project time. A negative one, and what is no number, is the start.
    Q_INVOKABLE void seek(double time);

    // Exporting.
    void exportTo(const std::filesystem::path& file);
    Q_INVOKABLE void exportTo(const QUrl& file);
    Q_INVOKABLE void cancelExport();

    /// Where the project's video could go: in the folder of movies, under the project's title or name.
    Q_INVOKABLE QUrl suggestedVideo() const;

    /// The video of this name in a folder, with its ending even where the name has none. Empty when no file can have the name.
    Q_INVOKABLE QUrl videoIn(const QUrl& folder, const QString& name) const;

    /// Whether exporting to this file would replace something.
    Q_INVOKABLE bool isTaken(const QUrl& file) const;

    // Transcribing.

    /// Gives every clip of the project its transcript and waits for that; what goes wrong stands in the status. While that is under
    /// way already, it waits for its end only.
    QCoro::Task<> transcribeAll();

    /// Starts the same, if the model transcribes by itself. A run that is under way comes first.
    void transcribeMissing();
    bool transcribing() const;

    /// Transcribes all clips of the project again, with the engine that there is now.
    Q_INVOKABLE void transcribeAgain();

    /// Finishes what must not be lost and then says `readyToQuit`, or what would be lost (`quitting`).
    Q_INVOKABLE void quit();

    // For the flows.
    void setPhase(Phase phase);
    void setLiveTime(double time);
    void setPlayhead(double time);
    void setPendingSeek(std::optional<double> time) { m_pendingSeek = time; }
    std::optional<double> pendingSeek() const { return m_pendingSeek; }
    void setAlert(const std::optional<QString>& text);
    void setBusy(const std::optional<QString>& text);
    void setExportProgress(std::optional<double> fraction);
    void countRevisionUp();

Q_SIGNALS:
    void phaseChanged();
    void projectChanged();
    void folderChanged();
    void revisionChanged();
    void liveTimeChanged();
    void playheadChanged();
    void alertChanged();
    void busyChanged();
    void statusChanged();
    void liveLayoutChanged();
    void reducedMotionChanged();
    void exportProgressChanged();
    void recentChanged();
    void readyToQuit();

    /// The user, who may be working in another program, should see what the window says.
    void attentionWanted();

private:
    // As the views' bindings want them: absent is empty.
    QString folderText() const;
    QString projectName() const;
    double projectLength() const;
    QString alertText() const { return m_alert.value_or(QString()); }
    void setAlertText(const QString& text) { setAlert(text.isEmpty() ? std::nullopt : std::optional(text)); }
    QString busyText() const { return m_busy.value_or(QString()); }
    QString statusText() const { return status().value_or(QString()); }
    LayoutKind::Kind liveLayoutKind() const { return static_cast<LayoutKind::Kind>(liveLayout().layout); }
    CornerKind::Kind liveCornerKind() const { return static_cast<CornerKind::Kind>(liveLayout().corner); }
    QVariant exportProgressValue() const { return m_exportProgress ? QVariant(*m_exportProgress) : QVariant(); }
    QStringList recentFolders() const;

    QFuture<bool> edit(Rebuild rebuild, const std::function<void(Project&)>& change, std::vector<std::filesystem::path> clips);
    void openCutOff(const std::filesystem::path& folder, const QString& failure);
    QCoro::Task<> completeAndOpen(std::filesystem::path folder, QString failure);
    void setProject(std::shared_ptr<const Project> project);
    void setFolder(const std::optional<std::filesystem::path>& folder);

    ProjectStorage m_storage;
    Settings m_settings;
    const Transcribe m_transcribe;
    Notices m_notices; ///< Outlives the flows, which hold them.
    Notice m_aiNotice{ m_notices };

    Phase m_phase;
    std::shared_ptr<const Project> m_project;
    std::optional<std::filesystem::path> m_folder;
    int m_revision = 0;
    double m_liveTime = 0;
    double m_playhead = 0;
    std::optional<QString> m_alert;
    std::optional<QString> m_busy;
    std::optional<double> m_exportProgress;
    std::optional<double> m_pendingSeek;

    std::unique_ptr<MotionSetting> m_motion;
    std::unique_ptr<ProjectSaver> m_saver;
    std::unique_ptr<SalvageFlow> m_salvage;
    std::unique_ptr<Recorder> m_recorder;
    std::unique_ptr<CaptureDevices> m_devices;
    std::unique_ptr<RecordingFlow> m_recording;
    std::unique_ptr<OverlayPictures> m_overlayPictures;
    std::unique_ptr<PreviewFlow> m_preview;
    std::unique_ptr<ExportFlow> m_export;
    std::unique_ptr<TranscriptionFlow> m_transcription;
    std::unique_ptr<EditingCommands> m_editing;
    std::unique_ptr<AI::Client> m_ai;
    std::unique_ptr<OverlayFlow> m_aiOverlay;
    std::unique_ptr<YouTubeFlow> m_youTube;
    std::unique_ptr<QuitFlow> m_quit;
    std::unique_ptr<Readiness> m_readiness;
    std::unique_ptr<ScreenPreview> m_screenPreview;
    std::unique_ptr<BrowserPageSearch> m_browserPage;
    std::unique_ptr<RecentAreas> m_recentAreas;
    Tidying m_tidying;
};

} // namespace vantry
