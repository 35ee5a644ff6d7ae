#pragma once

#include "platform/PixelRect.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"
#include "support/TestDesktop.h"

#include <cstdint>
#include <memory>
#include <string>

namespace vantry::test {

/// A real web browser with one window, which shows one page in one colour. It counts in pixels of the given scale.
class WebBrowser {
public:
    enum class Kind { Chromium, Firefox };

    struct Page {
        std::uint32_t colour = 0; ///< 0xRRGGBB.
        int elements = 0; ///< Invisible ones.
    };

    WebBrowser(Kind kind, int scale, const Page& page);

    /// What can be seen of the page, looked for by its colour. Empty while there is nothing.
    static PixelRect place(TestDesktop& desktop, std::uint32_t colour);

private:
    std::string writePage(const Page& page) const;
    std::string command(Kind kind, int scale) const;

    const TemporaryFolder m_folder;
    std::unique_ptr<Program> m_program;
};

} // namespace vantry::test
