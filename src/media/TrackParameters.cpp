#include "media/TrackParameters.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <new>

namespace vantry::libav {

namespace {

using Value = std::int64_t;

/// Whatever describes a track, apart from its channels and its extra data.
template <typename Parameters, typename Visit>
void visitFields(Parameters& parameters, Visit visit)
{
    visit(parameters.codec_type);
    visit(parameters.codec_id);
    visit(parameters.codec_tag);
    visit(parameters.format);
    visit(parameters.bit_rate);
    visit(parameters.bits_per_coded_sample);
    visit(parameters.bits_per_raw_sample);
    visit(parameters.profile);
    visit(parameters.level);
    visit(parameters.width);
    visit(parameters.height);
    visit(parameters.sample_aspect_ratio.num);
    visit(parameters.sample_aspect_ratio.den);
    visit(parameters.field_order);
    visit(parameters.color_range);
    visit(parameters.color_primaries);
    visit(parameters.color_trc);
    visit(parameters.color_space);
    visit(parameters.chroma_location);
    visit(parameters.video_delay);
    visit(parameters.sample_rate);
    visit(parameters.block_align);
    visit(parameters.frame_size);
    visit(parameters.initial_padding);
    visit(parameters.trailing_padding);
    visit(parameters.seek_preroll);
}

void append(std::string& bytes, Value value)
{
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

/// Takes values from the front, as long as there are any that fit.
class Values {
public:
    explicit Values(std::string_view bytes)
        : m_bytes(bytes)
    {
    }

    template <typename Field>
    void take(Field& field)
    {
        Value value = 0;
        if (m_bytes.size() < sizeof value) {
            m_areWhole = false;
            return;
        }
        std::memcpy(&value, m_bytes.data(), sizeof value);
        m_bytes.remove_prefix(sizeof value);
        field = static_cast<Field>(value);
        m_areWhole = m_areWhole && static_cast<Value>(field) == value;
    }

    bool areWhole() const { return m_areWhole; }
    std::string_view rest() const { return m_bytes; }

private:
    std::string_view m_bytes;
    bool m_areWhole = true;
};

/// Ours are mono and stereo, which are numbers of a list that all of them share.
bool setChannels(AVChannelLayout& layout, int channels, std::uint64_t mask)
{
    if (mask)
        return av_channel_layout_from_mask(&layout, mask) == 0 && layout.nb_channels == channels;
    layout.nb_channels = channels;
    return channels >= 0;
}

void setExtraData(AVCodecParameters& parameters, std::string_view bytes)
{
    parameters.extradata = static_cast<std::uint8_t*>(av_mallocz(bytes.size() + AV_INPUT_BUFFER_PADDING_SIZE));
    if (!parameters.extradata)
        throw std::bad_alloc();
    std::memcpy(parameters.extradata, bytes.data(), bytes.size());
    parameters.extradata_size = static_cast<int>(bytes.size());
}

} // namespace

std::string packed(const AVCodecParameters& parameters)
{
    std::string bytes;
    visitFields(parameters, [&bytes](auto field) { append(bytes, static_cast<Value>(field)); });
    const AVChannelLayout& channels = parameters.ch_layout;
    append(bytes, channels.nb_channels);
    append(bytes, channels.order == AV_CHANNEL_ORDER_NATIVE ? static_cast<Value>(channels.u.mask) : 0);
    bytes.append(reinterpret_cast<const char*>(parameters.extradata), static_cast<std::size_t>(parameters.extradata_size));
    return bytes;
}

ParametersPtr unpacked(std::string_view bytes)
{
    auto parameters = makeParameters();
    Values values(bytes);
    visitFields(*parameters, [&values](auto& field) { values.take(field); });
    int channels = 0;
    std::uint64_t mask = 0;
    values.take(channels);
    values.take(mask);
    if (!values.areWhole() || values.rest().size() > std::numeric_limits<int>::max() - AV_INPUT_BUFFER_PADDING_SIZE
        || !setChannels(parameters->ch_layout, channels, mask))
        return nullptr;
    setExtraData(*parameters, values.rest());
    return parameters;
}

} // namespace vantry::libav
