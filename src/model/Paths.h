#pragma once

#include <QFile>
#include <QString>

#include <filesystem>

namespace vantry {

/// File names between the two worlds, in the file system's own encoding.
inline QString text(const std::filesystem::path& path)
{
    return QFile::decodeName(path.c_str());
}

inline std::filesystem::path toPath(const QString& text)
{
    return QFile::encodeName(text).toStdString();
}

} // namespace vantry
