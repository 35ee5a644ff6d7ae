#include "platform/GlobalKeys.h"

#include "base/AppError.h"
#include "platform/X11Keys.h"

#include <utility>

namespace vantry {

namespace {

/// A desktop without keys for everybody.
class NoGlobalKeys : public GlobalKeys {
public:
    explicit NoGlobalKeys(Handlers handlers)
        : m_handlers(std::move(handlers))
    {
    }

    void grab(std::vector<GlobalKey>) override { m_handlers.onTrouble("Hot keys do not work on this desktop"); }

private:
    const Handlers m_handlers;
};

} // namespace

std::unique_ptr<GlobalKeys> makeGlobalKeys(GlobalKeys::Handlers handlers)
{
    try {
        return std::make_unique<X11Keys>(handlers);
    } catch (const AppError&) {
        return std::make_unique<NoGlobalKeys>(std::move(handlers));
    }
}

} // namespace vantry
