#include "base/Claim.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <optional>

namespace vantry {

namespace fs = std::filesystem;

TEST(Claim, whatNobodyClaimsIsRemovedAndNothingElse)
{
    const test::TemporaryFolder folder;
    const auto file = folder / "file", tree = folder / "tree", precious = folder / "precious", link = folder / "link";
    fs::create_directories(tree / "deeper");
    for (const auto& path : { file, tree / "deeper/file", precious })
        std::ofstream(path) << "text";
    fs::create_symlink(precious, link);
    fs::create_symlink(precious, tree / "link");
    auto onFile = Claim::on(file), onTree = Claim::on(tree);
    ASSERT_TRUE(onFile && onTree);
    const auto tidyUp = [&] {
        for (const auto& path : { file, tree, link, folder / "missing" })
            removeUnclaimed(path);
    };
    tidyUp();
    EXPECT_TRUE(fs::exists(file));
    EXPECT_TRUE(fs::exists(tree / "deeper/file"));
    onFile.reset();
    tidyUp();
    EXPECT_FALSE(fs::exists(file));
    EXPECT_TRUE(fs::exists(tree));
    onTree.reset();
    tidyUp();
    EXPECT_FALSE(fs::exists(tree));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_TRUE(fs::exists(precious));
    EXPECT_FALSE(Claim::on(file)) << "it is gone";
}

} // namespace vantry
