#pragma once

#include "base/Worker.h"
#include "model/Notices.h"
#include "project/Project.h"
#include "render/Exporter.h"

#include <QCoroTask>
#include <QFuture>
#include <QObject>
#include <QTimer>

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>

namespace vantry {

class AppModel;

/// Writes the open project as a video, with its progress in the model's texts. Belongs to the main thread; the video itself is made
/// on threads of its own. Destroying it cancels.
class ExportFlow : public QObject {
    Q_OBJECT

public:
    using Reveal = std::function<void(const std::filesystem::path&)>;
    enum class Outcome { Done, Failed, Cancelled, NothingToExport };

    /// The model outlives the flow. `reveal` shows a finished video to the user and may be empty.
    ExportFlow(AppModel& model, Reveal reveal);
    ~ExportFlow() override;

    /// Exports at the height of the settings. Nothing happens without a project, or while an export runs.
    void start(const std::filesystem::path& file);

    /// The same at another height, in pixels, and waits for the end. Why it failed stands in the model's alert.
    QCoro::Task<Outcome> run(std::filesystem::path file, int height);

    /// What of the clips could not be read and is missing in the video that was made last. Empty when nothing is.
    const QString& damage() const { return m_damage.text(); }

    /// Ends the running export soon; the file of the chosen name stays what it was.
    void cancel();

    /// Waits until no export runs.
    QCoro::Task<> ended();

Q_SIGNALS:
    void runningChanged();

private:
    QCoro::Task<> runWithSettings(std::filesystem::path file);
    ExportOptions optionsFor(const std::filesystem::path& file, int height) const;
    QFuture<ExportResult> makeVideo(ExportOptions options);
    void deliver(const YouTubeInfo& info, const std::filesystem::path& video);
    void clearNotices();
    void fail(const QString& description);
    void begin();
    void end();
    void showProgress();

    AppModel& m_model;
    const Reveal m_reveal;
    QTimer m_poll;
    Notice m_notice;
    Notice m_damage;
    bool m_running = false;
    std::stop_source m_cancel;

    /// Written by the exporting thread, which may outlive an export that nobody waits for.
    const std::shared_ptr<std::atomic<double>> m_fraction = std::make_shared<std::atomic<double>>(0);

    Worker m_worker{ "vantry.export" };
};

} // namespace vantry
