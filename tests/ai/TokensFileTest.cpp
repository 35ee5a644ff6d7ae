#include "ai/TokensFile.h"

#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>

#include <sys/stat.h>

namespace vantry {

namespace {

class TokensFileTest : public testing::Test {
protected:
    /// The key in a file with this text; "none" without one.
    std::string keyIn(const std::string& text) const
    {
        std::ofstream(m_file) << text;
        return keyInTokensFile(m_file).value_or(QStringLiteral("none")).toStdString();
    }

    const test::TemporaryFolder m_folder;
    const std::filesystem::path m_file = m_folder / "tokens";
};

} // namespace

TEST_F(TokensFileTest, linesOfAShellGiveTheKey)
{
    for (const auto* line : {
             "OPENROUTER_API_KEY=sk-1",
             "\t\u00a0\u3000export OPENROUTER_API_KEY=\" 'sk-1'\"  ",
             "\xef\xbb\xbfOPENROUTER_API_KEY=sk-1",
             "# tokens\n\nOTHER_KEY=a\nOPENROUTER_API_KEY=sk-1\nOPENROUTER_API_KEY=sk-2\n",
         })
        EXPECT_EQ(keyIn(line), "sk-1") << line;
    for (const auto* lineBreak : { "\r\n", "\r", "\v", "\u0085", "\u2029" })
        EXPECT_EQ(keyIn(std::string("A=1") + lineBreak + "OPENROUTER_API_KEY=sk-1" + lineBreak + "B=2"), "sk-1");
    EXPECT_EQ(keyIn("OPENROUTER_API_KEY=a b\"c"), "a b\"c") << "what is within stays";
}

TEST_F(TokensFileTest, otherLinesGiveNone)
{
    for (const auto* line : {
             "",
             "OPENROUTER_API_KEY =sk-1",
             "export  OPENROUTER_API_KEY=sk-1",
             "exportOPENROUTER_API_KEY=sk-1",
             "A=1 OPENROUTER_API_KEY=sk-1",
             "OPENROUTER_API_KEY=\" ' \"\nOPENROUTER_API_KEY=sk-1",
             "export OPENROUTER_API_KEY=\nOPENROUTER_API_KEY=sk-1",
         })
        EXPECT_EQ(keyIn(line), "none") << line;
}

TEST_F(TokensFileTest, whatIsNoTextFileGivesNone)
{
    EXPECT_EQ(keyIn("OPENROUTER_API_KEY=sk-1\n\xe2\x82"), "none") << "cut within a character";
    EXPECT_EQ(keyInTokensFile(m_folder / "missing"), std::nullopt);
    EXPECT_EQ(keyInTokensFile(m_folder.path()), std::nullopt);
    const auto pipe = m_folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(keyInTokensFile(pipe), std::nullopt) << "and does not wait for a writer";
}

} // namespace vantry
