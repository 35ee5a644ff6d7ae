#include "transcribe/SpeechHelper.h"

#include "base/AppError.h"
#include "support/TemporaryFolder.h"
#include "transcribe/ShellHelper.h"
#include "transcribe/SpeechFile.h"
#include "transcribe/SpeechProtocol.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace vantry {

using namespace std::chrono_literals;
using testing::HasSubstr;

namespace {

/// With programs of the shell in the helper's place.
class SpeechHelperTest : public testing::Test {
protected:
    SpeechHelper helper(const std::string& script) { return test::shellHelper(m_folder / "helper", script); }

    std::string failureOf(const SpeechHelper& helper)
    {
        try {
            helper.recognise({}, m_speech, {});
        } catch (const AppError& error) {
            return error.what();
        }
        return {};
    }

    const test::TemporaryFolder m_folder;
    const SpeechFile m_speech;
};

} // namespace

TEST_F(SpeechHelperTest, whatGoesWrongIsAnError)
{
    EXPECT_EQ(failureOf(helper("printf '%s' '" + encode(SpeechFailure{ "No model" }) + "'; exit 1")), "No model");
    EXPECT_THAT(failureOf(helper("kill -SEGV $$")), HasSubstr("ended unexpectedly"));
    EXPECT_THAT(failureOf(helper("echo '{\"start\": 1, \"text\": \"no end\"}'")), HasSubstr("nonsense"));
    EXPECT_THAT(failureOf({ .program = m_folder / "missing" }), HasSubstr("could not be started"));
    SpeechHelper hanging = helper("exec sleep 1000");
    hanging.patience = 100ms;
    EXPECT_THAT(failureOf(hanging), HasSubstr("hangs"));
}

TEST(SpeechProtocol, whatIsNoTextIsReplaced)
{
    const std::string line = encode(Line{ 0, 1, "half \xc3" });
    EXPECT_EQ(std::get<Line>(decodeSpeechNews(line)).text, "half \xef\xbf\xbd");
}

} // namespace vantry
