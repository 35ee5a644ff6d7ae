#include "overlayhelper/InertPage.h"

#include <QColor>
#include <QUrl>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>

#include <csignal>
#include <utility>

namespace vantry {

InertPage::InertPage(QWebEngineProfile& profile)
    : QWebEnginePage(&profile)
{
    setBackgroundColor(Qt::transparent);
    setAudioMuted(true);
    QWebEngineScript script;
    script.setSourceUrl(QUrl(QStringLiteral("qrc:/stage.js")));
    script.setWorldId(QWebEngineScript::ApplicationWorld);
    script.setInjectionPoint(QWebEngineScript::DocumentCreation);
    scripts().insert(script);
}

void InertPage::show(const QString& document)
{
    m_isOurs = true;
    setHtml(document);
}

void InertPage::run(const QString& script, const std::function<void(const QVariant&)>& then)
{
    runJavaScript(script, QWebEngineScript::ApplicationWorld, then);
}

void InertPage::kill() const
{
    if (const auto process = renderProcessPid(); process > 0)
        ::kill(static_cast<pid_t>(process), SIGKILL);
}

/// The engine turns our document into a data: address. No page may go to such a one by itself.
bool InertPage::acceptNavigationRequest(const QUrl& url, NavigationType, bool isMainFrame)
{
    return isMainFrame && url.scheme() == QLatin1String("data") && std::exchange(m_isOurs, false);
}

} // namespace vantry
