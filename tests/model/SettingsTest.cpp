#include "model/Settings.h"
#include "project/EnumNames.h"
#include "support/TemporaryFolder.h"

#include <QMetaProperty>

#include <gmock/gmock.h>

#include <fstream>
#include <iomanip>
#include <sstream>

namespace vantry {

using testing::HasSubstr;

namespace {

class SettingsTest : public testing::Test {
protected:
    void write(const std::string& lines) { std::ofstream(m_file) << "[General]\n" << lines; }

    std::string written() const
    {
        std::ostringstream text;
        text << std::ifstream(m_file).rdbuf();
        return text.str();
    }

    const test::TemporaryFolder m_folder;
    const std::filesystem::path m_file = m_folder / "settings.ini";
};

/// All of them, a line for each.
std::string valuesOf(const Settings& settings)
{
    std::ostringstream text;
    const QMetaObject& names = Settings::staticMetaObject;
    for (int i = names.propertyOffset(); i < names.propertyCount(); ++i)
        text << names.property(i).name() << '=' << names.property(i).read(&settings).toString().toStdString() << '\n';
    text << nameOf(settings.setupLayout()) << ' ' << nameOf(settings.setupCorner()) << ' ' << nameOf(settings.speechModel());
    if (const auto crop = settings.setupCrop())
        text << std::setprecision(17) << ' ' << crop->x << ' ' << crop->y << ' ' << crop->width << ' ' << crop->height;
    return text.str();
}

} // namespace

TEST_F(SettingsTest, storedValuesOfAnotherKindMeanTheDefaults)
{
    const std::string defaults = valuesOf(Settings(m_folder / "missing.ini"));
    for (const char* lines :
        { "displayID=-1\nlayout=Screen\ncorner=middle\nbubble=big\nexportHeight=tall\nsystemAudio=perhaps\nblur=2\n"
          "crop=all of it\nspeechModel=huge\n",
            "displayID=4294967296\nbubble=nan\nexportHeight=1000\ncrop=\n", "displayID=right\ncrop=\"{{0, 0}, {0, 1}}\"\n" }) {
        write(lines);
        EXPECT_EQ(valuesOf(Settings(m_file)), defaults);
    }
}

TEST_F(SettingsTest, theFileHasTheKnownKeysAndFormsAndACommaNeedsNoQuotes)
{
    write("displayID=4294967295\ncameraID=cam\nmicID=mic\nlayout=screen\ncorner=topLeft\nbubble=0.5\nexportHeight=720\n"
          "systemAudio=false\nblur=true\nreduceMotion=true\nmodel=a,b\ntokensPath=~/my,own/tokens\n"
          "panelFolded=true\nspeechLocale=nb-NO\nspeechModel=small\ncrop=\"{{0, 0.25}, {1, 0.75}}\"\n");
    EXPECT_EQ(valuesOf(Settings(m_file)),
        "displayID=4294967295\ncameraID=cam\nmicID=mic\nsetupBubble=0.5\nexportHeight=720\nsystemAudio=false\nsetupBlur=true\n"
        "reduceMotion=true\nsetupCrop=\nmodel=a,b\ntokensPath=~/my,own/tokens\npanelFolded=true\nspeechLocale=nb-NO\n"
        "screen topLeft small 0 0.25 1 0.75");
}

TEST_F(SettingsTest, whatIsUsedInsteadOfAChoiceIsNoChoice)
{
    write("cameraID=cam\nmicID=mic\n");
    {
        Settings settings(m_file);
        settings.useCamera(QStringLiteral("other"));
        settings.setMicID(QStringLiteral("headset"));
        settings.useMic({});
    }
    const Settings settings(m_file);
    EXPECT_EQ(settings.cameraID(), QStringLiteral("other"));
    EXPECT_EQ(settings.chosenCameraID(), QStringLiteral("cam"));
    EXPECT_EQ(settings.micID(), QString());
    EXPECT_EQ(settings.chosenMicID(), QStringLiteral("headset"));
}

TEST_F(SettingsTest, everyAssignmentIsThereAfterARestart)
{
    std::string assigned;
    {
        Settings settings(m_file);
        settings.setDisplayID(7);
        settings.setCameraID(QStringLiteral("a; b, \"c\""));
        settings.setMicID(QStringLiteral("mic"));
        settings.setSetupLayout(Layout::bubble);
        settings.setSetupCorner(Corner::topRight);
        settings.setSetupBubble(0.1 + 0.2);
        settings.setExportHeight(2160);
        settings.setSystemAudio(false);
        settings.setSetupBlur(true);
        settings.setSetupCrop(CropRect{ 0.1, 1.0 / 3, 0.25, 0.5 });
        settings.setModel(QStringLiteral("a, b"));
        settings.setTokensPath(QString());
        settings.setSpeechLocale(QStringLiteral("nb-NO"));
        settings.setSpeechModel(SpeechModelSize::small);
        settings.setPanelFolded(true);
        assigned = valuesOf(settings);
        EXPECT_THAT(assigned, HasSubstr("tokensPath=\n")) << "empty, as it was left";
    }
    Settings settings(m_file);
    EXPECT_EQ(valuesOf(settings), assigned);
    settings.setSetupCrop(std::nullopt);
    EXPECT_EQ(Settings(m_file).setupCrop(), std::nullopt);
    EXPECT_THAT(written(), HasSubstr("crop=")) << "cleared, not forgotten";
}

TEST_F(SettingsTest, rememberWhereThePanelWasOnEachDisplay)
{
    Settings(m_file).setPanelPlace(4'000'000'000, QPoint(-20, 7));
    Settings settings(m_file);
    EXPECT_EQ(settings.panelPlace(4'000'000'000), QPoint(-20, 7));
    EXPECT_EQ(settings.panelPlace(1), std::nullopt);
}

} // namespace vantry
