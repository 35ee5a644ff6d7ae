#pragma once

#include "media/Picture.h"

namespace vantry {

enum class Activity {
    Typing, ///< Somebody types into an editor while a log scrolls beside it: what screens mostly do.
    Motion, ///< Not a pixel stands still: a moving photograph under windows of text that move and scroll.
};

/// Pictures like those of a busy computer screen, at 30 a second. The same number gives the same picture.
class ScreenContent {
public:
    ScreenContent(int width, int height, Activity activity);

    Picture picture(int number);

private:
    Picture typing(int number);
    Picture motion(int number);

    const int m_width;
    const int m_height;
    const Activity m_activity;
    PicturePool m_pool;
    Picture m_photograph; ///< Larger than the screen, so that the screen can move over it.
};

} // namespace vantry
