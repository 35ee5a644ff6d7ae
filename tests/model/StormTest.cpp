#include "support/Command.h"

#include <gtest/gtest.h>

namespace vantry {

TEST(StormTest, whateverIsDoneEverythingFitsTogether)
{
    EXPECT_NO_THROW(test::runCommand(COMMAND_STORM " 1 100"));
}

} // namespace vantry
