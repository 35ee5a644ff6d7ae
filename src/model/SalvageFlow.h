#pragma once

#include "base/Worker.h"
#include "model/Notices.h"
#include "project/Project.h"

#include <QCoroTask>
#include <QFuture>
#include <QObject>
#include <QTimer>

#include <exception>
#include <filesystem>
#include <optional>
#include <set>
#include <vector>

namespace vantry {

class AppModel;
class ProjectSaver;

/// Takes care of recordings whose files could not be completed, because the program crashed, was killed, the power went or the disk
/// was full: completes their last clips and adds them to their projects, as if they had been stopped then. Projects are changed
/// while nothing is recorded. Belongs to the main thread; clips are completed on a thread of its own.
class SalvageFlow : public QObject {
    Q_OBJECT

public:
    /// Both outlive the flow.
    SalvageFlow(AppModel& model, ProjectSaver& saver);
    ~SalvageFlow() override;

    /// Looks through these folders, and says in the model's status what was found.
    void start(const std::vector<std::filesystem::path>& folders);

    /// The same, and waits until the clips are in their projects.
    QCoro::Task<> run(std::vector<std::filesystem::path> folders);

    /// Completes a clip of this session, and gives its length in seconds; nothing when it holds nothing. Throws why it cannot be
    /// completed now; then it is tried again every few seconds, and put into its project.
    QCoro::Task<std::optional<double>> complete(std::filesystem::path movie);

    /// Something is left to be tried again.
    bool isUnfinished() const { return !m_unfinished.empty(); }

    /// Tries that at once, and says whether nothing is left to try.
    QCoro::Task<bool> retry();

private:
    struct CutOff {
        std::filesystem::path movie;
        std::optional<double> length; ///< Seconds, now that it is complete; none where it holds nothing.
        std::exception_ptr problem; ///< Why it is not.
    };

    QCoro::Task<> keep(CutOff clip);
    QFuture<std::vector<CutOff>> completeAll(const std::vector<std::filesystem::path>& folders);
    QFuture<CutOff> completeOne(const std::filesystem::path& movie);
    static CutOff completed(const std::filesystem::path& movie);
    QFuture<bool> put(const CutOff& clip);
    Project closedProject(const CutOff& clip) const;
    QFuture<bool> addToClosedProject(const CutOff& clip);
    std::vector<std::filesystem::path> unfinishedFolders();
    bool isOpen(const std::filesystem::path& folder) const;

    AppModel& m_model;
    ProjectSaver& m_saver;
    Notice m_notice;
    std::set<std::filesystem::path> m_unfinished; ///< Movies of this session.
    QTimer m_retry;
    Worker m_worker{ "vantry.salvage" };
};

} // namespace vantry
