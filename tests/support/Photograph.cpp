#include "support/Photograph.h"

#include "support/Command.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

namespace vantry::test {

namespace {

constexpr const char* file = "/usr/share/matplotlib/mpl-data/sample_data/grace_hopper.jpg";

} // namespace

Picture photograph(int width, int height)
{
    const std::string size = std::to_string(width) + ":" + std::to_string(height);
    const std::string samples = runCommand(std::string("ffmpeg -v error -i ") + file + " -vf scale=" + size
        + ":force_original_aspect_ratio=increase:flags=bicubic:out_color_matrix=bt709:out_range=tv,crop=" + size
        + ":0:0 -pix_fmt yuv420p -f rawvideo -");
    PictureBuffer picture(width, height);
    const char* from = samples.data();
    for (const int index : { PlaneY, PlaneCb, PlaneCr }) {
        const MutablePlane plane = picture.plane(index);
        for (int y = 0; y < plane.height; ++y, from += plane.width)
            std::copy(from, from + plane.width, plane.row(y));
    }
    return std::move(picture).share();
}

Picture noisy(const Picture& picture, double levels, unsigned seed)
{
    std::mt19937 random(seed);
    std::normal_distribution<double> noise(0, levels);
    PictureBuffer result(picture.width(), picture.height());
    for (const int index : { PlaneY, PlaneCb, PlaneCr }) {
        const Plane from = picture.plane(index);
        const MutablePlane to = result.plane(index);
        for (int y = 0; y < from.height; ++y)
            for (int x = 0; x < from.width; ++x)
                to.row(y)[x] = static_cast<std::uint8_t>(std::clamp(std::lround(from.row(y)[x] + noise(random)), 16L, 235L));
    }
    return std::move(result).share();
}

} // namespace vantry::test
