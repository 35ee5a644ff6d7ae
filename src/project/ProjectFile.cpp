#include "project/ProjectFile.h"

#include "project/DurableFile.h"
#include "project/ProjectLimits.h"

namespace vantry {

Project loadProject(const std::filesystem::path& folder)
{
    return decodeProject(readFile(folder / projectFileName, largestProjectFile));
}

void saveProject(const Project& project, const std::filesystem::path& folder)
{
    replaceFile(folder / projectFileName, encodeProject(project));
}

} // namespace vantry
