#pragma once

#include "base/OverlayProtocol.h"
#include "overlayhelper/OfflineProfile.h"

#include <QImage>
#include <QTimer>
#include <QWebEngineView>

#include <functional>
#include <memory>

namespace vantry {

class InertPage;

struct Rendering {
    overlays::Outcome outcome = overlays::Outcome::Failed;
    QImage image; ///< Premultiplied, of exactly the bitmap's size. Null unless it was rendered.
};

/// Lays fragments out and takes their picture, one at a time, within the limits of the protocol.
///
/// A fragment is laid out twice: once in a frame one pixel high, which tells its height, and once in a frame of that height. Layers
/// that are resized in place lack parts for a few frames, while the first frame of a new document is whole. Nothing says when that
/// frame has reached the view, so a strip in a colour of this rendering alone is put below the content, where nothing of the
/// fragment reaches, and the picture is taken when it is seen.
class FragmentRenderer {
public:
    using Done = std::function<void(const Rendering&)>;

    FragmentRenderer();
    ~FragmentRenderer();

    FragmentRenderer(const FragmentRenderer&) = delete;
    FragmentRenderer& operator=(const FragmentRenderer&) = delete;

    /// Calls `done` once the engine's processes run, which takes as long as the disk and the machine need. To be called before all
    /// else.
    void start(std::function<void()> done);

    /// Calls `done` later, in any case. Not while another one is rendered.
    void render(const QString& fragment, double cssWidth, Done done);

private:
    using Step = void (FragmentRenderer::*)();

    void makePage();
    void started();
    void load(Step next);
    void show();
    void lookWhetherReady();
    void awaitLayout(const QString& script);
    void measure();
    void measured(int height);
    void awaitSize();
    void layOutAgain();
    void placeMarker();
    void lookForMarker();
    bool isMarked(const QImage& strip) const;
    void refuse();
    void giveUp();
    void ask(const QString& script, const std::function<void(const QVariant&)>& then);
    void soon(Step step);
    void finish(overlays::Outcome outcome, QImage image = {});

    OfflineProfile m_profile;
    QWebEngineView m_view;
    std::unique_ptr<InertPage> m_page; ///< A new one after every fragment that was not rendered.
    bool m_isFresh = true; ///< The page has no stage yet.
    QTimer m_deadline;
    QTimer m_look;

    std::function<void()> m_started;
    Done m_done; ///< Empty when nothing is rendered.
    Step m_afterLoad = nullptr;
    Step m_afterLayout = nullptr;
    QString m_document; ///< As a literal.
    double m_cssWidth = 0;
    int m_width = 0; ///< Of the frame, in CSS pixels.
    int m_height = 1; ///< Of the content, in CSS pixels; 1 until that is known.
    quint32 m_number = 0; ///< Of this rendering: answers to earlier ones are dropped.
    QRgb m_marker = 0;
};

} // namespace vantry
