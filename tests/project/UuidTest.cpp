#include "project/Uuid.h"

#include <gtest/gtest.h>

namespace vantry {

TEST(Uuid, readsEitherCaseAndWritesUpperCase)
{
    const auto uuid = Uuid::parse("0123abcd-4567-89EF-8123-456789abcdef");
    ASSERT_TRUE(uuid);
    EXPECT_EQ(uuid->text(), "0123ABCD-4567-89EF-8123-456789ABCDEF");
    EXPECT_EQ(Uuid::parse(uuid->text()), uuid);
}

TEST(Uuid, refusesAnyOtherText)
{
    for (const auto* text : { "", "0123ABCD", "0123ABCD-4567-89EF-8123-456789ABCDE", "0123ABCD-4567-89EF-8123-456789ABCDEFF",
             "0123ABCD045670-9EF-8123-456789ABCDEF", "0123ABCD-4567-89EF-8123-456789ABCDEG", "{123ABCD-4567-89EF-8123-456789ABCDE}",
             "0123ABCD-4567-89EF-8123-456789ABC-EF" })
        EXPECT_FALSE(Uuid::parse(text)) << text;
}

TEST(Uuid, randomOnesDifferAndAreMarkedAsRandom)
{
    const auto uuid = Uuid::random();
    EXPECT_NE(uuid, Uuid::random());
    EXPECT_EQ(uuid.text()[14], '4');
    EXPECT_NE(std::string("89AB").find(uuid.text()[19]), std::string::npos);
}

} // namespace vantry
