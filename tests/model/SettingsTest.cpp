#include "model/Settings.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace vantry {

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

void expectDefaults(const Settings& settings)
{
    EXPECT_EQ(settings.displayID(), 0u);
    EXPECT_EQ(settings.cameraID(), QString());
    EXPECT_EQ(settings.micID(), QString());
    EXPECT_EQ(settings.setupLayout(), Layout::camera);
    EXPECT_EQ(settings.setupCorner(), Corner::bottomRight);
    EXPECT_EQ(settings.setupBubble(), 0.26);
    EXPECT_EQ(settings.exportHeight(), 1080);
    EXPECT_TRUE(settings.systemAudio());
    EXPECT_FALSE(settings.setupBlur());
    EXPECT_EQ(settings.setupCrop(), std::nullopt);
    EXPECT_EQ(settings.model(), QStringLiteral("~deepseek/deepseek-flash-latest"));
    EXPECT_EQ(settings.tokensPath(), QStringLiteral("~/Dropbox/kitbag/tokens"));
    EXPECT_EQ(settings.speechLocale(), QStringLiteral("en-US"));
    EXPECT_EQ(settings.speechModel(), SpeechModelSize::base);
}

} // namespace

TEST_F(SettingsTest, nothingStoredMeansTheDefaults)
{
    expectDefaults(Settings(m_file));
}

TEST_F(SettingsTest, storedValuesOfAnotherKindMeanTheDefaults)
{
    write("displayID=-1\nlayout=Screen\ncorner=middle\nbubble=big\nexportHeight=tall\nsystemAudio=perhaps\nblur=2\ncrop=all of it\n"
          "speechModel=huge\n");
    expectDefaults(Settings(m_file));
    write("displayID=4294967296\nbubble=nan\nexportHeight=1000\ncrop=\n");
    expectDefaults(Settings(m_file));
    write("displayID=right\ncrop=\"{{0, 0}, {0, 1}}\"\n");
    expectDefaults(Settings(m_file));
}

TEST_F(SettingsTest, aCommaNeedsNoQuotes)
{
    write("tokensPath=~/my,own/tokens\nmodel=a,b\n");
    const Settings settings(m_file);
    EXPECT_EQ(settings.tokensPath(), QStringLiteral("~/my,own/tokens"));
    EXPECT_EQ(settings.model(), QStringLiteral("a,b"));
}

TEST_F(SettingsTest, theFileHasTheKnownKeysAndForms)
{
    write("displayID=4294967295\ncameraID=cam\nmicID=mic\nlayout=screen\ncorner=topLeft\nbubble=0.5\nexportHeight=720\n"
          "systemAudio=false\nblur=true\nmodel=~a/b\ntokensPath=~/tokens\nspeechLocale=nb-NO\nspeechModel=small\ncrop=\"{{0, "
          "0.06}, {1, 0.94}}\"\n");
    const Settings settings(m_file);
    EXPECT_EQ(settings.displayID(), 4294967295u);
    EXPECT_EQ(settings.cameraID(), QStringLiteral("cam"));
    EXPECT_EQ(settings.micID(), QStringLiteral("mic"));
    EXPECT_EQ(settings.setupLayout(), Layout::screen);
    EXPECT_EQ(settings.setupCorner(), Corner::topLeft);
    EXPECT_EQ(settings.setupBubble(), 0.5);
    EXPECT_EQ(settings.exportHeight(), 720);
    EXPECT_FALSE(settings.systemAudio());
    EXPECT_TRUE(settings.setupBlur());
    EXPECT_EQ(settings.speechLocale(), QStringLiteral("nb-NO"));
    EXPECT_EQ(settings.speechModel(), SpeechModelSize::small);
    EXPECT_EQ(settings.setupCrop(), (CropRect{ 0, 0.06, 1, 0.94 }));
    EXPECT_EQ(settings.model(), QStringLiteral("~a/b"));
    EXPECT_EQ(settings.tokensPath(), QStringLiteral("~/tokens"));
}

TEST_F(SettingsTest, everyAssignmentIsThereAfterARestart)
{
    const CropRect crop{ 0.1, 1.0 / 3, 0.25, 0.5 };
    {
        Settings settings(m_file);
        settings.setDisplayID(7);
        settings.setCameraID(QStringLiteral("a; b, \"c\""));
        settings.setSetupLayout(Layout::bubble);
        settings.setSetupCorner(Corner::topRight);
        settings.setSetupBubble(0.1 + 0.2);
        settings.setExportHeight(2160);
        settings.setSystemAudio(false);
        settings.setSetupBlur(true);
        settings.setSetupCrop(crop);
        settings.setModel(QStringLiteral("a, b"));
        settings.setTokensPath(QString());
    }
    {
        Settings settings(m_file);
        EXPECT_EQ(settings.displayID(), 7u);
        EXPECT_EQ(settings.cameraID(), QStringLiteral("a; b, \"c\""));
        EXPECT_EQ(settings.setupLayout(), Layout::bubble);
        EXPECT_EQ(settings.setupCorner(), Corner::topRight);
        EXPECT_EQ(settings.setupBubble(), 0.1 + 0.2);
        EXPECT_EQ(settings.exportHeight(), 2160);
        EXPECT_FALSE(settings.systemAudio());
        EXPECT_TRUE(settings.setupBlur());
        EXPECT_EQ(settings.setupCrop(), crop);
        EXPECT_EQ(settings.model(), QStringLiteral("a, b"));
        EXPECT_EQ(settings.tokensPath(), QString()) << "empty, as it was left";
        settings.setSetupCrop(std::nullopt);
    }
    EXPECT_EQ(Settings(m_file).setupCrop(), std::nullopt);
    EXPECT_NE(written().find("crop="), std::string::npos) << "cleared, not forgotten";
}

TEST_F(SettingsTest, onlyAChangeIsHeard)
{
    Settings settings(m_file);
    int heard = 0;
    QObject::connect(&settings, &Settings::exportHeightChanged, &settings, [&] { ++heard; });
    settings.setExportHeight(1080);
    EXPECT_EQ(heard, 0);
    settings.setExportHeight(720);
    EXPECT_EQ(heard, 1);
}

} // namespace vantry
