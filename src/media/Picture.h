#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

struct AVFrame;
struct AVBufferPool;

namespace vantry {

/// One plane of a picture in memory. `stride` is the distance between rows in bytes.
template <typename Byte>
struct BasicPlane {
    Byte* data = nullptr;
    std::ptrdiff_t stride = 0;
    int width = 0;
    int height = 0;

    Byte* row(int y) const { return data + y * stride; }
    operator BasicPlane<const Byte>() const { return { data, stride, width, height }; }
};
using Plane = BasicPlane<const std::uint8_t>;
using MutablePlane = BasicPlane<std::uint8_t>;

/// The planes of a 4:2:0 picture, in this order.
enum PlaneIndex { PlaneY = 0, PlaneCb = 1, PlaneCr = 2 };

/// One 8-bit 4:2:0 picture: BT.709, limited range, chroma centred between its luma samples. Rows are 64-byte aligned where we made
/// the picture ourselves. Immutable and shared: a copy refers to the same pixels, and any thread may read it.
class Picture {
public:
    Picture() = default;

    /// Takes a decoded or filled frame, which nobody may write to from then on. For the media room.
    explicit Picture(std::shared_ptr<const AVFrame> frame);

    explicit operator bool() const { return m_frame != nullptr; }
    int width() const;
    int height() const;
    Plane plane(int index) const;

    /// The same pixels in the same memory, not merely equal ones.
    bool operator==(const Picture&) const = default;

    /// For the media room.
    const AVFrame* frame() const { return m_frame.get(); }

private:
    std::shared_ptr<const AVFrame> m_frame;
};

/// A picture that is being made: one owner, writable. Sizes must be even.
class PictureBuffer {
public:
    PictureBuffer(int width, int height);
    explicit PictureBuffer(std::shared_ptr<AVFrame> frame);

    int width() const;
    int height() const;
    MutablePlane plane(int index);
    Plane plane(int index) const;

    void fill(std::uint8_t y, std::uint8_t cb, std::uint8_t cr);
    void copyFrom(const Picture& picture);

    /// Ends the writing.
    Picture share() &&;

private:
    std::shared_ptr<AVFrame> m_frame;
};

/// Makes picture buffers of one size and uses their memory again once nobody holds the picture any more. A used buffer still has
/// the pixels it had, which `plane(PlaneY).data` identifies. Safe to use from any thread; pictures may outlive the pool.
class PicturePool {
public:
    PicturePool(int width, int height);
    ~PicturePool();

    PicturePool(const PicturePool&) = delete;
    PicturePool& operator=(const PicturePool&) = delete;

    int width() const { return m_width; }
    int height() const { return m_height; }
    PictureBuffer make();

private:
    const int m_width;
    const int m_height;
    AVBufferPool* m_pool;
};

} // namespace vantry
