#include "model/BrowserPageSearch.h"

#include "base/Background.h"
#include "capture/BrowserPage.h"
#include "model/Coroutines.h"
#include "model/ScreenAreas.h"

#include <QCoroFuture>
#include <QPointer>

namespace vantry {

namespace {

QFuture<CropRect> lookForPage(Worker& worker, const Display& display, const std::stop_token& cancelled)
{
    return inBackground(worker, [display, cancelled] { return browserPageCrop(display, cancelled); });
}

QFuture<void> switchOnFor(Worker& worker, AccessibilitySwitch& accessibility)
{
    return inBackground(worker, [&accessibility] { accessibility.switchOn(); });
}

} // namespace

BrowserPageSearch::BrowserPageSearch(ChosenDisplay display)
    : m_display(std::move(display))
{
}

BrowserPageSearch::~BrowserPageSearch()
{
    m_cancel.request_stop();
}

void BrowserPageSearch::find()
{
    cancel();
    const auto display = m_display();
    if (!display)
        return show({ .note = tr("There is no screen to look at.") });
    m_cancel = std::stop_source();
    show({ .isSearching = true });
    launch(search(*display, m_cancel.get_token()), [self = QPointer(this)](const QString& description) {
        if (self)
            self->show({ .note = description });
    });
}

QCoro::Task<> BrowserPageSearch::search(Display display, std::stop_token cancelled)
{
    const QPointer<BrowserPageSearch> self(this);
    State state;
    std::optional<CropRect> page;
    try {
        const QFuture<CropRect> looking = lookForPage(m_worker, display, cancelled);
        page = co_await looking;
    } catch (const LookingNotAllowed& refusal) {
        state = { .note = describe(refusal), .asksToAllow = true };
    } catch (const std::exception& error) {
        state = { .note = describe(error) };
    }
    if (!self || cancelled.stop_requested())
        co_return;
    show(state);
    if (page)
        Q_EMIT found(cropValue(*page));
}

void BrowserPageSearch::allow()
{
    launch(switchOn(), [self = QPointer(this)](const QString& description) {
        if (self)
            self->show({ .note = description });
    });
}

QCoro::Task<> BrowserPageSearch::switchOn()
{
    const QPointer<BrowserPageSearch> self(this);
    const QFuture<void> switching = switchOnFor(m_worker, m_switch);
    co_await switching;
    if (self)
        show({});
}

void BrowserPageSearch::cancel()
{
    m_cancel.request_stop();
    show({});
}

void BrowserPageSearch::show(const State& state)
{
    m_isSearching = state.isSearching;
    m_note = state.note;
    m_asksToAllow = state.asksToAllow;
    Q_EMIT changed();
}

} // namespace vantry
