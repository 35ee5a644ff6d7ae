#include "model/Tidying.h"

#include "project/DurableFile.h"
#include "project/ProjectFile.h"
#include "render/PendingFile.h"

#include <pthread.h>
#include <utility>

namespace vantry {

void Tidying::start(std::vector<std::filesystem::path> projects, std::filesystem::path videos)
{
    m_thread = std::jthread([projects = std::move(projects), videos = std::move(videos)](const std::stop_token& stop) {
        pthread_setname_np(pthread_self(), "vantry.tidying");
        for (const auto& folder : projects)
            if (!stop.stop_requested())
                removeLeftovers(folder / projectFileName);
        PendingFile::removeLeftovers(videos);
    });
}

} // namespace vantry
