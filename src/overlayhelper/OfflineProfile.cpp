#include "overlayhelper/OfflineProfile.h"

#include <QWebEngineSettings>
#include <QWebEngineUrlRequestInterceptor>

namespace vantry {

namespace {

class BlockEverythingOutside : public QWebEngineUrlRequestInterceptor {
public:
    using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;

    void interceptRequest(QWebEngineUrlRequestInfo& request) override
    {
        if (request.requestUrl().scheme() != QLatin1String("data"))
            request.block(true);
    }
};

} // namespace

// Without a name the profile keeps everything in memory.
OfflineProfile::OfflineProfile()
{
    setHttpCacheType(NoCache);
    setPersistentCookiesPolicy(NoPersistentCookies);
    setUrlRequestInterceptor(new BlockEverythingOutside(this));
    using Settings = QWebEngineSettings;
    for (const auto attribute : { Settings::JavascriptEnabled, Settings::JavascriptCanOpenWindows,
             Settings::JavascriptCanAccessClipboard, Settings::LocalStorageEnabled, Settings::LocalContentCanAccessFileUrls,
             Settings::LocalContentCanAccessRemoteUrls, Settings::PluginsEnabled, Settings::PdfViewerEnabled,
             Settings::ErrorPageEnabled, Settings::ShowScrollBars, Settings::WebGLEnabled, Settings::Accelerated2dCanvasEnabled,
             Settings::DnsPrefetchEnabled, Settings::AutoLoadIconsForPage, Settings::HyperlinkAuditingEnabled,
             Settings::FullScreenSupportEnabled, Settings::FocusOnNavigationEnabled, Settings::NavigateOnDropEnabled })
        settings()->setAttribute(attribute, false);
    settings()->setAttribute(Settings::PlaybackRequiresUserGesture, true);
    // Also where a fragment names no font that there is.
    settings()->setFontFamily(Settings::StandardFont, QStringLiteral("Inter"));
}

} // namespace vantry
