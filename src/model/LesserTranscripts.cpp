#include "model/LesserTranscripts.h"

#include "project/DurableFile.h"

#include <QCryptographicHash>

#include <nlohmann/json.hpp>

namespace vantry {

namespace {

constexpr auto fileName = ".transcripts.json";
constexpr std::size_t largestFile = 1 << 20;

std::string digestOf(const std::vector<Line>& lines)
{
    nlohmann::json all = nlohmann::json::array();
    for (const Line& line : lines)
        all.push_back({ line.start, line.end, line.text });
    const auto bytes = QByteArray::fromStdString(all.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().toStdString();
}

} // namespace

LesserTranscripts LesserTranscripts::read(const std::filesystem::path& folder)
{
    LesserTranscripts transcripts;
    try {
        transcripts.m_digests =
            nlohmann::json::parse(readFile(folder / fileName, largestFile)).get<std::map<std::string, std::string>>();
    } catch (const std::exception&) {
        transcripts.m_digests.clear(); // Nothing is lost but a second attempt.
    }
    return transcripts;
}

void LesserTranscripts::write(const std::filesystem::path& folder) const
{
    replaceFile(folder / fileName, nlohmann::json(m_digests).dump(2));
}

bool LesserTranscripts::contains(const Clip& clip) const
{
    const auto found = m_digests.find(clip.id.text());
    return found != m_digests.end() && clip.transcript && found->second == digestOf(*clip.transcript);
}

void LesserTranscripts::add(const Clip& clip, const std::vector<Line>& lines)
{
    m_digests.insert_or_assign(clip.id.text(), digestOf(lines));
}

} // namespace vantry
