#include "media/PictureScaler.h"

#include "media/Libav.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vantry {

namespace {

constexpr const char* failure = "Cannot scale the pictures";

/// Halfway between its luma samples; the same on both sides, so that colours stay where they are.
constexpr int centredChroma = 128;

struct Placement {
    int left = 0; ///< Everything is even, for the chroma planes have half the size.
    int top = 0;
    PictureSize size;
};

int toEven(double length)
{
    return 2 * static_cast<int>(std::lround(length / 2));
}

Placement fitted(PictureSize from, PictureSize into)
{
    const double scale = std::min(double(into.width) / from.width, double(into.height) / from.height);
    const PictureSize size{ std::clamp(toEven(from.width * scale), 2, into.width),
        std::clamp(toEven(from.height * scale), 2, into.height) };
    return { (into.width - size.width) / 4 * 2, (into.height - size.height) / 4 * 2, size };
}

libav::ScalerPtr makeScaler(PictureSize from, PictureSize to)
{
    libav::ScalerPtr scaler(sws_alloc_context());
    if (!scaler)
        throw std::bad_alloc();
    const auto set = [&](const char* option, std::int64_t value) {
        libav::check(av_opt_set_int(scaler.get(), option, value, 0), failure);
    };
    set("srcw", from.width);
    set("srch", from.height);
    set("src_format", AV_PIX_FMT_YUV420P);
    set("dstw", to.width);
    set("dsth", to.height);
    set("dst_format", AV_PIX_FMT_YUV420P);
    for (const auto* position : { "src_h_chr_pos", "src_v_chr_pos", "dst_h_chr_pos", "dst_v_chr_pos" })
        set(position, centredChroma);
    set("sws_flags", SWS_BILINEAR);
    libav::check(sws_init_context(scaler.get(), nullptr, nullptr), failure);
    return scaler;
}

} // namespace

struct PictureScaler::State {
    explicit State(PictureSize size)
        : size(size)
        , pool(size.width, size.height)
    {
    }

    PictureSize size;
    PicturePool pool;
    PictureSize source; ///< What the scaler is made for.
    Placement placement;
    libav::ScalerPtr scaler;
};

PictureScaler::PictureScaler(PictureSize size)
    : m_state(std::make_unique<State>(size))
{
}

PictureScaler::~PictureScaler() = default;

Picture PictureScaler::fit(const Picture& picture)
{
    auto& state = *m_state;
    const PictureSize source{ picture.width(), picture.height() };
    if (source == state.size)
        return picture;
    if (!state.scaler || source != state.source) {
        state.placement = fitted(source, state.size);
        state.scaler = makeScaler(source, state.placement.size);
        state.source = source;
    }
    auto target = state.pool.make();
    if (state.placement.size != state.size)
        target.fill(16, 128, 128);
    std::array<const std::uint8_t*, 3> from{};
    std::array<std::uint8_t*, 3> to{};
    std::array<int, 3> fromStrides{};
    std::array<int, 3> toStrides{};
    for (int index : { PlaneY, PlaneCb, PlaneCr }) {
        const int shift = index == PlaneY ? 0 : 1;
        from[index] = picture.plane(index).data;
        fromStrides[index] = static_cast<int>(picture.plane(index).stride);
        to[index] = target.plane(index).row(state.placement.top >> shift) + (state.placement.left >> shift);
        toStrides[index] = static_cast<int>(target.plane(index).stride);
    }
    libav::check(
        sws_scale(state.scaler.get(), from.data(), fromStrides.data(), 0, source.height, to.data(), toStrides.data()), failure);
    return std::move(target).share();
}

} // namespace vantry
