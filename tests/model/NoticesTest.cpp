#include "model/Notices.h"

#include <gtest/gtest.h>

namespace vantry {

using namespace Qt::StringLiterals;

TEST(NoticesTest, theNewestWarningIsShownAndElseTheNewest)
{
    Notices notices;
    Notice first(notices);
    Notice second(notices);
    first.tell(u"10%"_s);
    second.tell(u"kept"_s);
    first.tell(u"20%"_s);
    EXPECT_EQ(notices.shown(), u"kept"_s) << "progress that goes on is no news";
    EXPECT_FALSE(notices.isWarning());

    first.warn(u"failed"_s);
    second.tell(u"done"_s);
    EXPECT_EQ(notices.shown(), u"failed"_s) << "a warning comes first";
    EXPECT_TRUE(notices.isWarning());
    second.warn(u"gone"_s);
    first.warn(u"failed"_s);
    EXPECT_EQ(notices.shown(), u"gone"_s) << "nor are the same words";
    first.warn(u"failed again"_s);
    EXPECT_EQ(notices.shown(), u"failed again"_s);
}

TEST(NoticesTest, eachIsClearedByItsOwnerAlone)
{
    Notices notices;
    int changes = 0;
    QObject::connect(&notices, &Notices::changed, &notices, [&changes] { ++changes; });
    Notice stays(notices);
    stays.tell(u"kept"_s);
    {
        Notice goes(notices);
        goes.warn(u"no microphone"_s);
        goes.clear();
        EXPECT_EQ(notices.shown(), u"kept"_s);
        goes.tell(u"downloading"_s);
        EXPECT_EQ(notices.shown(), u"downloading"_s);
    }
    EXPECT_EQ(notices.shown(), u"kept"_s) << "whoever is gone says nothing";
    stays.warn({});
    EXPECT_EQ(notices.shown(), std::nullopt);
    EXPECT_EQ(changes, 6);
}

} // namespace vantry
