#include "project/Uuid.h"

#include <gtest/gtest.h>

namespace vantry {

TEST(Uuid, readsEitherCaseWritesUpperCaseAndRefusesAnyOtherText)
{
    EXPECT_EQ(Uuid::parse("0123abcd-4567-89EF-8123-456789abcdef")->text(), "0123ABCD-4567-89EF-8123-456789ABCDEF");
    for (const auto* text : { "", "0123ABCD-4567-89EF-8123-456789ABCDE", "0123ABCD-4567-89EF-8123-456789ABCDEFF",
             "0123ABCD04567-89EF-8123-456789ABCDEF", "0123ABCD-4567-89EF-8123-456789ABCDEG" })
        EXPECT_FALSE(Uuid::parse(text)) << text;
}

} // namespace vantry
