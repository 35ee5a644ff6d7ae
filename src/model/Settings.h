#pragma once

// First, or the meta-object compiler stumbles over the standard library's concepts.
#include <QObject>

#include "project/Project.h"
#include "transcribe/SpeechModel.h"

#include <QPoint>
#include <QSettings>
#include <QSize>
#include <QString>
#include <QVariant>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace vantry {

/// A part of a screen as it was chosen, with the size that the screen had then.
struct ChosenArea {
    CropRect crop;
    QSize screen;

    bool operator==(const ChosenArea&) const = default;
};

/// What the user chose for recordings and exports to come, kept in one INI file. Read once when it is made, written back under the
/// same key on every assignment. Belongs to the main thread. A file that cannot be read or written costs the choices, nothing else.
class Settings : public QObject {
    Q_OBJECT
    Q_PROPERTY(quint32 displayID READ displayID WRITE setDisplayID NOTIFY displayIDChanged)
    Q_PROPERTY(QString cameraID READ cameraID WRITE setCameraID NOTIFY cameraIDChanged)
    Q_PROPERTY(QString micID READ micID WRITE setMicID NOTIFY micIDChanged)
    Q_PROPERTY(double setupBubble READ setupBubble WRITE setSetupBubble NOTIFY setupBubbleChanged)
    Q_PROPERTY(int exportHeight READ exportHeight WRITE setExportHeight NOTIFY exportHeightChanged)
    Q_PROPERTY(bool systemAudio READ systemAudio WRITE setSystemAudio NOTIFY systemAudioChanged)
    Q_PROPERTY(bool setupBlur READ setupBlur WRITE setSetupBlur NOTIFY setupBlurChanged)
    Q_PROPERTY(bool reduceMotion READ reduceMotion WRITE setReduceMotion NOTIFY reduceMotionChanged)
    Q_PROPERTY(QVariant setupCrop READ setupCropValue WRITE setSetupCropValue NOTIFY setupCropChanged)
    Q_PROPERTY(QString model READ model WRITE setModel NOTIFY modelChanged)
    Q_PROPERTY(QString tokensPath READ tokensPath WRITE setTokensPath NOTIFY tokensPathChanged)
    Q_PROPERTY(bool panelFolded READ panelFolded WRITE setPanelFolded NOTIFY panelFoldedChanged)
    Q_PROPERTY(QString speechLocale READ speechLocale WRITE setSpeechLocale NOTIFY speechLocaleChanged)

public:
    explicit Settings(const std::filesystem::path& file);

    /// The file in the user's configuration folder.
    static std::filesystem::path defaultFile();

    std::uint32_t displayID() const { return m_displayID; }

    /// What is recorded from.
    QString cameraID() const { return m_cameraID; }
    QString micID() const { return m_micID; }

    /// What the user chose last, be it there or not; empty when that was left to us.
    QString chosenCameraID() const { return m_chosenCameraID; }
    QString chosenMicID() const { return m_chosenMicID; }
    Layout setupLayout() const { return m_setupLayout; }
    Corner setupCorner() const { return m_setupCorner; }

    /// Diameter of the camera bubble as a fraction of the frame's height.
    double setupBubble() const { return m_setupBubble; }

    /// Pixels.
    int exportHeight() const { return m_exportHeight; }
    bool systemAudio() const { return m_systemAudio; }
    bool setupBlur() const { return m_setupBlur; }

    /// The part of the screen that new recordings show; nothing for all of it.
    std::optional<CropRect> setupCrop() const { return m_setupCrop; }

    /// The views move less, whatever the desktop asks for.
    bool reduceMotion() const { return m_reduceMotion; }
    /// The areas of a display that were chosen last, the newest first.
    std::vector<ChosenArea> chosenAreas(std::uint32_t displayID) const;

    /// The AI model that is asked, and a file that may hold the key for it. Empty counts as the default.
    QString model() const { return m_model; }
    QString tokensPath() const { return m_tokensPath; }
    /// The locale of what is said, such as "nb-NO".
    QString speechLocale() const { return m_speechLocale; }
    SpeechModelSize speechModel() const { return m_speechModel; }

    /// The panel that floats over the recording is as small as it can be.
    bool panelFolded() const { return m_panelFolded; }

    /// Where the user put that panel on a display: its upper right corner, from the upper left one of what docks and bars leave
    /// free, in logical pixels. Nothing where it was never moved.
    std::optional<QPoint> panelPlace(std::uint32_t display) const;

    void setDisplayID(std::uint32_t value);
    void setCameraID(const QString& value); ///< The user's choice.
    void setMicID(const QString& value); ///< The same.
    void useCamera(const QString& value); ///< While there is no choice, or not what was chosen.
    void useMic(const QString& value);
    void setSetupLayout(Layout value);
    void setSetupCorner(Corner value);
    void setSetupBubble(double value);
    void setExportHeight(int value);
    void setSystemAudio(bool value);
    void setSetupBlur(bool value);
    void setSetupCrop(const std::optional<CropRect>& value);
    void setReduceMotion(bool value);
    void setChosenAreas(std::uint32_t displayID, const std::vector<ChosenArea>& areas);
    void setModel(const QString& value);
    void setTokensPath(const QString& value);
    void setSpeechLocale(const QString& value);
    void setSpeechModel(SpeechModelSize value);
    void setPanelFolded(bool value);
    void setPanelPlace(std::uint32_t display, QPoint value);

Q_SIGNALS:
    void displayIDChanged();
    void cameraIDChanged();
    void micIDChanged();
    void chosenDevicesChanged();
    void setupLayoutChanged();
    void setupCornerChanged();
    void setupBubbleChanged();
    void exportHeightChanged();
    void systemAudioChanged();
    void setupBlurChanged();
    void setupCropChanged();
    void reduceMotionChanged();
    void modelChanged();
    void tokensPathChanged();
    void speechLocaleChanged();
    void speechModelChanged();
    void panelFoldedChanged();

private:
    QVariant setupCropValue() const;
    void setSetupCropValue(const QVariant& value);

    QSettings m_file;
    std::uint32_t m_displayID;
    QString m_cameraID;
    QString m_micID;
    QString m_chosenCameraID;
    QString m_chosenMicID;
    Layout m_setupLayout;
    Corner m_setupCorner;
    double m_setupBubble;
    int m_exportHeight;
    bool m_systemAudio;
    bool m_setupBlur;
    std::optional<CropRect> m_setupCrop;
    bool m_reduceMotion;
    QString m_model;
    QString m_tokensPath;
    QString m_speechLocale;
    SpeechModelSize m_speechModel;
    bool m_panelFolded;
};

} // namespace vantry
