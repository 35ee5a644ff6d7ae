#include "support/ScriptedModel.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <stdexcept>

namespace vantry::test {

namespace {

constexpr int vocabulary = 51865; // of the models for many languages
constexpr int blank = 220;
constexpr int endOfText = 50257;
constexpr int firstTime = 50364;
constexpr double timeStep = 0.02;

constexpr int melBands = 80;
constexpr int melBins = 201;
constexpr int soundPositions = 1500;
constexpr int textPositions = 64;
constexpr int size = 32;
constexpr int soundLayers = 4;
constexpr int textLayers = 1;
constexpr int halfFloats = 1;

/// Start, language and task stand before what is said.
constexpr int promptLength = 3;

/// Writes a file in the library's own format.
class Writer {
public:
    void integers(std::initializer_list<int> values)
    {
        for (const std::int32_t value : values)
            m_bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    }

    void text(const std::string& value)
    {
        integers({ static_cast<int>(value.size()) });
        m_bytes.append(value.data(), static_cast<qsizetype>(value.size()));
    }

    /// All weights are nothing, but for those that are named by their index.
    void tensor(const std::string& name, std::vector<int> shape, const std::vector<std::pair<int, float>>& weights = {})
    {
        header(name, shape, 0);
        std::vector<float> values(count(shape));
        for (const auto& [index, weight] : weights)
            values.at(static_cast<std::size_t>(index)) = weight;
        m_bytes.append(reinterpret_cast<const char*>(values.data()), static_cast<qsizetype>(values.size() * sizeof(float)));
    }

    /// The same in half floats, with weights in their representation.
    void halfTensor(const std::string& name, std::vector<int> shape, const std::vector<std::pair<int, std::uint16_t>>& weights = {})
    {
        header(name, shape, halfFloats);
        std::vector<std::uint16_t> values(count(shape));
        for (const auto& [index, weight] : weights)
            values.at(static_cast<std::size_t>(index)) = weight;
        m_bytes.append(reinterpret_cast<const char*>(values.data()), static_cast<qsizetype>(values.size() * sizeof(std::uint16_t)));
    }

    void zeros(int floats) { m_bytes.append(static_cast<qsizetype>(floats) * 4, '\0'); }

    const QByteArray& bytes() const { return m_bytes; }

private:
    void header(const std::string& name, const std::vector<int>& shape, int type)
    {
        integers({ static_cast<int>(shape.size()), static_cast<int>(name.size()), type });
        for (const int extent : shape)
            integers({ extent });
        m_bytes.append(name.data(), static_cast<qsizetype>(name.size()));
    }

    static std::size_t count(const std::vector<int>& shape)
    {
        std::size_t product = 1;
        for (const int extent : shape)
            product *= static_cast<std::size_t>(extent);
        return product;
    }

    QByteArray m_bytes;
};

void writeAttention(Writer& writer, const std::string& block, const std::string& kind)
{
    for (const auto* part : { "_ln.weight", "_ln.bias", ".query.bias", ".value.bias", ".out.bias" })
        writer.tensor(block + kind + part, { size });
    for (const auto* part : { ".query.weight", ".key.weight", ".value.weight", ".out.weight" })
        writer.halfTensor(block + kind + part, { size, size });
}

void writeBlock(Writer& writer, const std::string& block)
{
    writer.tensor(block + "mlp_ln.weight", { size });
    writer.tensor(block + "mlp_ln.bias", { size });
    writer.halfTensor(block + "mlp.0.weight", { size, 4 * size });
    writer.tensor(block + "mlp.0.bias", { 4 * size });
    writer.halfTensor(block + "mlp.2.weight", { 4 * size, size });
    writer.tensor(block + "mlp.2.bias", { size });
    writeAttention(writer, block, "attn");
}

void writeEncoder(Writer& writer)
{
    writer.tensor("encoder.positional_embedding", { size, soundPositions });
    writer.halfTensor("encoder.conv1.weight", { 3, melBands, size });
    writer.tensor("encoder.conv1.bias", { 1, size });
    writer.halfTensor("encoder.conv2.weight", { 3, size, size });
    writer.tensor("encoder.conv2.bias", { 1, size });
    writer.tensor("encoder.ln_post.weight", { size });
    writer.tensor("encoder.ln_post.bias", { size });
    for (int layer = 0; layer < soundLayers; ++layer)
        writeBlock(writer, "encoder.blocks." + std::to_string(layer) + ".");
}

/// Each position points along an axis of its own, and so does the word that is to be said there. The layers between add nothing.
void writeDecoder(Writer& writer, const std::vector<int>& said)
{
    constexpr float loud = 100;
    constexpr std::uint16_t five = 0x4500; // in half floats
    std::vector<std::pair<int, float>> positions;
    std::vector<std::pair<int, std::uint16_t>> words;
    for (int i = 0; i < static_cast<int>(said.size()); ++i) {
        positions.emplace_back((promptLength - 1 + i) * size + i, loud);
        words.emplace_back(said[static_cast<std::size_t>(i)] * size + i, five);
    }
    std::vector<std::pair<int, float>> ones;
    for (int i = 0; i < size; ++i)
        ones.emplace_back(i, 1.0F);
    writer.tensor("decoder.positional_embedding", { size, textPositions }, positions);
    writer.halfTensor("decoder.token_embedding.weight", { size, vocabulary }, words);
    writer.tensor("decoder.ln.weight", { size }, ones);
    writer.tensor("decoder.ln.bias", { size });
    for (int layer = 0; layer < textLayers; ++layer) {
        const std::string block = "decoder.blocks." + std::to_string(layer) + ".";
        writeBlock(writer, block);
        writeAttention(writer, block, "cross_attn");
    }
}

int timeToken(double time)
{
    return firstTime + static_cast<int>(std::lround(time / timeStep));
}

} // namespace

QByteArray scriptedModel(const std::vector<ScriptedLine>& script)
{
    std::vector<std::string> words(blank);
    std::vector<int> said;
    for (const auto& line : script) {
        said.push_back(timeToken(line.start));
        for (const auto& word : line.words) {
            const auto token = static_cast<int>(said.size());
            words.at(static_cast<std::size_t>(token)) = word;
            said.push_back(token);
        }
        said.push_back(timeToken(line.end));
    }
    said.push_back(endOfText);
    if (said.size() > size)
        throw std::runtime_error("The script is too long");

    Writer writer;
    writer.integers({ 0x67676d6c, vocabulary, soundPositions, size, 1, soundLayers, textPositions, size, 1, textLayers, melBands,
        halfFloats, melBands, melBins });
    writer.zeros(melBands * melBins);
    writer.integers({ blank + 1 });
    for (const auto& word : words)
        writer.text(word);
    writer.text(" ");
    writeEncoder(writer);
    writeDecoder(writer, said);
    return writer.bytes();
}

} // namespace vantry::test
