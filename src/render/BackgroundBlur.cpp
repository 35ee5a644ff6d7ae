#include "render/BackgroundBlur.h"

#include "base/AppError.h"
#include "base/Log.h"

#include <QFile>
#include <QResource>

#include <utility>

namespace vantry {

using namespace Qt::StringLiterals;

BackgroundBlur::BackgroundBlur(std::span<const std::byte> networkFile)
    : m_networkFile(networkFile)
{
}

void BackgroundBlur::build()
{
    if (std::exchange(m_isBuilt, true))
        return;
    try {
        m_finder.emplace(m_networkFile);
        qCDebug(logRender) << "the network that finds people is built";
    } catch (const AppError& error) {
        qCWarning(logRender) << "the background stays sharp:" << error.what();
    }
}

/// Stored within the program.
std::span<const std::byte> BackgroundBlur::ownNetwork()
{
    static const QByteArray file = QResource(u":/render/person.tflite"_s).uncompressedData();
    return std::as_bytes(std::span(file.data(), static_cast<std::size_t>(file.size())));
}

Picture BackgroundBlur::apply(const Picture& picture)
{
    if (!picture)
        return picture;
    build();
    if (!m_finder)
        return picture;
    if (picture != m_source) {
        m_result = blurred(picture);
        m_source = picture;
    }
    return m_result;
}

void BackgroundBlur::prepare(const Picture& picture)
{
    if (m_pool && m_pool->width() == picture.width() && m_pool->height() == picture.height())
        return;
    m_pool.emplace(picture.width(), picture.height());
    m_planes.clear();
    for (const int index : { PlaneY, PlaneCb, PlaneCr }) {
        const Plane plane = picture.plane(index);
        const auto detail = index == PlaneY ? PlaneBlur::Detail::Luma : PlaneBlur::Detail::Chroma;
        m_planes.emplace_back(PlaneBlur::Size{ plane.width, plane.height }, detail, sigma * plane.height,
            PlaneBlur::Size{ m_finder->width(), m_finder->height() });
    }
}

Picture BackgroundBlur::blurred(const Picture& picture)
{
    try {
        prepare(picture);
        const SoftMask& mask = m_finder->find(picture);
        PictureBuffer result = m_pool->make();
        for (const int index : { PlaneY, PlaneCb, PlaneCr })
            m_planes[static_cast<std::size_t>(index)].apply(picture.plane(index), mask, result.plane(index));
        return std::move(result).share();
    } catch (const AppError& error) {
        qCWarning(logRender) << "this picture stays sharp:" << error.what();
        return picture;
    }
}

} // namespace vantry
