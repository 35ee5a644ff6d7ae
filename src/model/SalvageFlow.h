#pragma once

#include "base/Worker.h"
#include "model/Notices.h"

#include <QCoroTask>
#include <QFuture>
#include <QObject>

#include <exception>
#include <filesystem>
#include <optional>
#include <vector>

namespace vantry {

class AppModel;

/// Takes care of recordings that ended with the program, because it crashed, was killed, or the power went: completes their last
/// clips and adds them to their projects, as if they had been stopped then. Belongs to the main thread; clips are completed on a
/// thread of its own.
class SalvageFlow : public QObject {
    Q_OBJECT

public:
    /// The model outlives the flow.
    explicit SalvageFlow(AppModel& model);
    ~SalvageFlow() override;

    /// Looks through these folders, and says in the model's status what was found.
    void start(const std::vector<std::filesystem::path>& folders);

private:
    struct CutOff {
        std::filesystem::path movie;
        double length = 0; ///< Seconds, now that it is complete.
        std::exception_ptr problem; ///< Why it is not.
    };

    QCoro::Task<> run(std::vector<std::filesystem::path> folders);
    QFuture<std::vector<CutOff>> complete(const std::vector<std::filesystem::path>& folders);
    static std::optional<CutOff> completed(const std::filesystem::path& movie);
    void keep(const CutOff& clip);
    bool isOpen(const std::filesystem::path& folder) const;
    void addToProject(const CutOff& clip);

    AppModel& m_model;
    Notice m_notice;
    Worker m_worker{ "vantry.salvage" };
};

} // namespace vantry
