#include "transcribe/SpeechModel.h"

#include <QFile>
#include <QStandardPaths>

#include <array>

namespace vantry {

const SpeechModel& speechModel(SpeechModelSize size)
{
    // As the server tells them of each file: https://huggingface.co/ggerganov/whisper.cpp/blob/main/ggml-base.bin and so on.
    static const std::array<SpeechModel, 3> models{ {
        { .file = "ggml-tiny.bin",
            .bytes = 77'691'713,
            .sha256 = "be07e048e1e599ad46341c8d2a135645097a538221678b7acdd1b1919c6e1b21" },
        { .file = "ggml-base.bin",
            .bytes = 147'951'465,
            .sha256 = "60ed5bc3dd14eea856493d334349b405782ddcaf0028d4b5df4088345fba2efe" },
        { .file = "ggml-small.bin",
            .bytes = 487'601'967,
            .sha256 = "1be3a9b2063867b937e64e2ec7483364a79917e157fa98c5d94b5c1fffea987b" },
    } };
    return models.at(static_cast<std::size_t>(size));
}

const std::string& speechModelSource()
{
    // At a fixed revision: a file that is replaced there would not pass its check any more.
    static const std::string source =
        "https://huggingface.co/ggerganov/whisper.cpp/resolve/5359861c739e955e79d9a303bcbc70fb988958b1/";
    return source;
}

std::filesystem::path speechModelFolder()
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return std::filesystem::path(QFile::encodeName(data).toStdString()) / "vantry" / "models";
}

} // namespace vantry
