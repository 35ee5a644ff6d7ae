#include "model/DetailsFile.h"

#include "base/Log.h"
#include "model/Paths.h"

#include <QSaveFile>

namespace vantry {

void writeDetailsFile(const YouTubeInfo& info, const std::filesystem::path& video)
{
    if (info.title.empty() && info.description.empty())
        return;
    const std::string contents = info.title + "\n\n" + info.description + "\n\nTags: " + info.tags + "\n";
    QSaveFile file(text(std::filesystem::path(video).replace_extension("youtube.txt")));
    const bool written = file.open(QIODevice::WriteOnly) && file.write(QByteArray::fromStdString(contents)) >= 0 && file.commit();
    if (!written)
        qCWarning(logModel) << "no details file:" << file.errorString();
}

} // namespace vantry
