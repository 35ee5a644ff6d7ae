#include "transcribe/SpeechHelper.h"

#include "base/AppError.h"
#include "support/TemporaryFolder.h"
#include "transcribe/ShellHelper.h"
#include "transcribe/SpeechFile.h"
#include "transcribe/SpeechProtocol.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace vantry {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::ElementsAre;
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

TEST_F(SpeechHelperTest, linesComeInOrder)
{
    const auto lines = helper("cat <<'END'\n" + encode(Line{ 0.5, 2, "a \"b\"\n" }) + encode(Line{ 2.25, 3, "ø" }) + "END")
                           .recognise({}, m_speech, {});
    EXPECT_THAT(*lines, ElementsAre(Line{ 0.5, 2, "a \"b\"\n" }, Line{ 2.25, 3, "ø" }));
}

TEST_F(SpeechHelperTest, itGetsTheSpeechAndTheCommand)
{
    const auto echo = helper("printf '{\"start\": 0, \"end\": '; wc -c | tr -d '\\n'; printf ', \"text\": \"%s\"}\\n' \"$1 $2\"");
    SpeechFile speech;
    speech.write(SampleCount(0), std::vector<float>(10));
    EXPECT_THAT(*echo.recognise({ "x y", "z" }, speech, {}), ElementsAre(Line{ 0, 68 + 40, "x y z" }))
        << "a header and ten samples";
}

TEST_F(SpeechHelperTest, whatGoesWrongIsAnError)
{
    EXPECT_EQ(failureOf(helper("printf '%s' '" + encode(SpeechFailure{ "No model" }) + "'; exit 1")), "No model");
    EXPECT_THAT(failureOf(helper("kill -SEGV $$")), HasSubstr("ended unexpectedly"));
    EXPECT_THAT(failureOf(helper("exit 3")), HasSubstr("ended unexpectedly"));
    EXPECT_THAT(failureOf(helper("echo nonsense")), HasSubstr("nonsense"));
    EXPECT_THAT(failureOf(helper("echo '{\"start\": 1, \"text\": \"no end\"}'")), HasSubstr("nonsense"));
    EXPECT_THAT(failureOf({ .program = m_folder / "missing" }), HasSubstr("could not be started"));
    SpeechHelper hanging = helper("exec sleep 1000");
    hanging.patience = 100ms;
    EXPECT_THAT(failureOf(hanging), HasSubstr("hangs"));
}

TEST_F(SpeechHelperTest, cancellingEndsItAtOnce)
{
    const auto sleeping =
        helper("printf '%s' '" + encode(Line{ 0, 1, "a" }) + "'; touch " + (m_folder / "started").string() + "; exec sleep 1000");
    std::stop_source cancel;
    const std::jthread canceller([&](const std::stop_token& end) {
        while (!fs::exists(m_folder / "started") && !end.stop_requested())
            std::this_thread::sleep_for(1ms);
        cancel.request_stop();
    });
    EXPECT_EQ(sleeping.recognise({}, m_speech, cancel.get_token()), std::nullopt);
    EXPECT_EQ(sleeping.recognise({}, m_speech, cancel.get_token()), std::nullopt) << "also before it begins";
}

TEST(SpeechProtocol, whatIsNoTextIsReplaced)
{
    const std::string line = encode(Line{ 0, 1, "half \xc3" });
    EXPECT_EQ(std::get<Line>(decodeSpeechNews(line)).text, "half \xef\xbf\xbd");
}

} // namespace vantry
