#pragma once

#include "model/AppModel.h"

#include <QCoroTask>
#include <QObject>

#include <filesystem>

namespace vantry {

/// Checks on a project folder that a retake which is cancelled before it starts changes nothing. Prints what it finds.
class RetakeCancel : public QObject {
    Q_OBJECT

public:
    /// The model outlives the check.
    RetakeCancel(AppModel& model, std::filesystem::path folder);

    /// Whether the check passed.
    QCoro::Task<bool> run();

private:
    AppModel& m_model;
    const std::filesystem::path m_folder;
};

} // namespace vantry
