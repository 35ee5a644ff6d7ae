#include "base/HelperProgram.h"

#include <QCoreApplication>
#include <QFile>

namespace vantry {

namespace fs = std::filesystem;

fs::path helperProgram(const std::string& name, const fs::path& built)
{
    const auto beside = fs::path(QFile::encodeName(QCoreApplication::applicationDirPath()).toStdString()) / name;
    std::error_code ignored;
    return fs::exists(beside, ignored) ? beside : built;
}

} // namespace vantry
