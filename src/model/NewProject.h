#pragma once

#include "project/Project.h"

#include <QDateTime>

namespace vantry {

class Settings;

/// A project without clips, as the settings want it, that was made at this time.
Project newProject(const Settings& settings, const QDateTime& time);

} // namespace vantry
