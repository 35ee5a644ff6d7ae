#pragma once

#include "project/Project.h"

#include <QString>
#include <QUrl>

#include <filesystem>

namespace vantry {

// Where exported videos go.

/// The video in a folder that is named after the project's title on YouTube, else after the project, if there is one.
QUrl suggestedVideo(const std::filesystem::path& folder, const Project* project);

/// The video of this name in a folder, with its ending even where the name has none. Empty when no file can have the name.
QUrl videoIn(const QUrl& folder, const QString& name);

/// Whether there is something in the file's place.
bool isTaken(const QUrl& file);

} // namespace vantry
