#pragma once

#include "media/Picture.h"
#include "media/PictureSize.h"

#include <memory>

namespace vantry {

/// Fits pictures of any size into one size: as large as possible in their own shape, in the middle of black. A picture that has the
/// size already is passed on as it is. One thread at a time.
class PictureScaler {
public:
    explicit PictureScaler(PictureSize size);
    ~PictureScaler();

    /// Throws AppError when there is no memory.
    Picture fit(const Picture& picture);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantry
