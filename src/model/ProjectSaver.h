#pragma once

// First, or the meta-object compiler stumbles over the standard library's concepts.
#include <QObject>

#include "base/Worker.h"
#include "model/Notices.h"
#include "project/Project.h"

#include <QFuture>
#include <QPromise>
#include <QString>
#include <QTimer>

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace vantry {

/// Keeps projects on the disk. What it is given is written by a thread of its own, in order, the newest state of a project winning:
/// disks take their time. What cannot be written is kept and tried again every few seconds, whenever that project is saved, and at
/// the end; a notice tells of it until it is on the disk. Belongs to the main thread.
class ProjectSaver : public QObject {
    Q_OBJECT

public:
    /// The notices outlive the saver.
    explicit ProjectSaver(Notices& notices);

    /// Tries everything once more.
    ~ProjectSaver() override;

    /// Takes the state of the project in a folder, which is newer than all before it. Once it is on the disk, or a newer one is,
    /// the journals of these clips are forgotten. The future says whether that came about at the first attempt; it is done
    /// without the event loop.
    QFuture<bool> save(
        std::shared_ptr<const Project> project, const std::filesystem::path& folder, std::vector<std::filesystem::path> clips = {});

    /// The newest state of the project in a folder, where it is not on the disk yet, else null.
    std::shared_ptr<const Project> unsaved(const std::filesystem::path& folder) const;

    /// Tries everything that is not on the disk, and says whether all of it is there now. Done without the event loop too.
    QFuture<bool> flush();

    /// Why something is not on the disk, in the system's words. Empty when nothing is known to fail.
    QString problem() const;

    /// Forgets what is not written yet of a folder that is given up.
    void drop(const std::filesystem::path& folder);

Q_SIGNALS:
    /// What was just given to be saved could not be, in the system's words.
    void failed(const QString& description);

private:
    enum class Attempt { First, Again };

    struct Unsaved {
        std::shared_ptr<const Project> project;
        std::uint64_t number = 0; ///< Of the state.
        std::vector<std::filesystem::path> clips; ///< Whose journals are forgotten then.
        std::vector<std::shared_ptr<QPromise<bool>>> waiting;
        bool isPosted = false; ///< A job will see to it.
        QString failure; ///< Of the last attempt.
    };
    using States = std::map<std::filesystem::path, Unsaved>;

    States::iterator find(const std::filesystem::path& folder);
    void post(States::iterator state, Attempt attempt);
    void postAll();
    void write(const std::filesystem::path& folder, Attempt attempt);
    bool settle(const std::filesystem::path& folder, Unsaved& written, const QString& failure);
    void report(const std::filesystem::path& folder, const QString& failure, Attempt attempt);

    mutable std::mutex m_mutex;
    States m_states; ///< Of what is not on the disk; guarded by the mutex.

    // Belong to the main thread.
    std::uint64_t m_number = 0;
    Notice m_notice;
    QTimer m_retry;

    Worker m_worker{ "vantry.saving" };
};

} // namespace vantry
