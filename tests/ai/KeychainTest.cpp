#include "ai/Keychain.h"

#include "support/Command.h"
#include "support/Program.h"
#include "support/PumpUntil.h"
#include "support/TemporaryFolder.h"
#include "support/UniqueName.h"

#include <gmock/gmock.h>

#include <fstream>

namespace vantry {

using testing::MatchesRegex;
using testing::StartsWith;

namespace {

class KeychainTest : public test::EventLoopTest {
protected:
    ~KeychainTest() override { write(std::nullopt); }

    std::optional<QString> read()
    {
        const auto reading = m_keychain.openRouterKey();
        EXPECT_TRUE(test::pumpUntil([&] { return reading.isFinished(); }));
        return reading.result();
    }

    void write(const std::optional<QString>& key)
    {
        const auto writing = m_keychain.setOpenRouterKey(key);
        EXPECT_TRUE(test::pumpUntil([&] { return writing.isFinished(); }));
    }

    /// What the key ring holds, asked with another tool.
    std::string stored() const { return test::runCommand("secret-tool lookup server " + m_service + " user openrouter || true"); }

    const std::string m_service = test::uniqueName("test.vantry");
    Keychain m_keychain{ {
        .service = QString::fromStdString(m_service),
        .longestRead = std::chrono::minutes(1), // Busy machines are slow.
    } };
};

/// A message bus of its own, on which nothing is started by itself.
class OwnBus {
public:
    OwnBus()
    {
        std::ofstream(m_folder / "bus.conf") << "<busconfig><type>session</type><listen>unix:path=" << (m_folder / "bus").string()
                                             << "</listen><policy context='default'><allow send_destination='*' eavesdrop='true'/>"
                                                "<allow eavesdrop='true'/><allow own='*'/></policy></busconfig>";
        m_bus.emplace(std::vector<std::string>{ "dbus-daemon", "--nofork", "--config-file=" + (m_folder / "bus.conf").string() });
        EXPECT_TRUE(test::pumpUntil([this] { return std::filesystem::exists(m_folder / "bus"); }));
    }

    /// What the probe says to a list of commands.
    std::string probe(const std::string& commands) const
    {
        return test::runCommand(environment() + " KEY=sk-or-secret timeout 60 " KEYCHAIN_PROBE " test.vantry " + commands);
    }

    const std::filesystem::path& home() const { return m_folder.path(); }

    std::string environment() const
    {
        const std::string home = m_folder.path();
        return "env HOME=" + home + " XDG_DATA_HOME=" + home + "/data XDG_CONFIG_HOME=" + home + "/config XDG_RUNTIME_DIR=" + home
            + " DBUS_SESSION_BUS_ADDRESS=unix:path=" + home + "/bus";
    }

private:
    const test::TemporaryFolder m_folder;
    std::optional<test::Program> m_bus;
};

/// A bus with an unlocked key ring.
class OwnKeyRing : public OwnBus {
public:
    OwnKeyRing() { test::runCommand("until " + call("ReadAlias default") + " | grep -q login; do sleep 0.02; done 2>/dev/null"); }

    std::string pid() const { return std::to_string(m_daemon.pid()); }

    /// A line of the shell that calls the service.
    std::string call(const std::string& method) const
    {
        return environment()
            + " gdbus call --session -d org.freedesktop.secrets -o /org/freedesktop/secrets -m org.freedesktop.Secret.Service."
            + method;
    }

private:
    test::Program m_daemon{ { "sh", "-c",
        "printf test >" + passwordFile() + "; exec " + environment()
            + " gnome-keyring-daemon --foreground --unlock --components=secrets <" + passwordFile() } };

    /// Without a line break, which nobody could type.
    std::string passwordFile() const { return home() / "password"; }
};

class OtherKeyRingsTest : public test::EventLoopTest { };

} // namespace

TEST_F(KeychainTest, keepsOneKeyWithoutWhatSurroundsItAndForgetsItForBlankText)
{
    EXPECT_EQ(read(), std::nullopt);
    for (const auto& blank : { std::optional<QString>(), std::optional(QStringLiteral(" \n")) }) {
        write(QStringLiteral("sk-or-first"));
        write(QStringLiteral(" \t sk-or-sëcond\r\n"));
        EXPECT_EQ(read(), QStringLiteral("sk-or-sëcond"));
        EXPECT_EQ(stored(), "sk-or-sëcond");
        write(blank);
        EXPECT_EQ(read(), std::nullopt);
        EXPECT_EQ(stored(), "");
    }
}

TEST_F(KeychainTest, readsAndWritesKeepTheirOrder)
{
    const auto first = m_keychain.setOpenRouterKey(QStringLiteral("1"));
    const auto second = m_keychain.setOpenRouterKey(QStringLiteral("2"));
    const auto before = m_keychain.openRouterKey();
    const auto third = m_keychain.setOpenRouterKey(QStringLiteral("3"));
    EXPECT_EQ(read(), QStringLiteral("3"));
    EXPECT_EQ(before.result(), QStringLiteral("2"));
}

TEST_F(OtherKeyRingsTest, withoutAKeyRingThereIsNoKeyAndNothingIsKeptElsewhere)
{
    const OwnBus bus;
    EXPECT_THAT(bus.probe("read write read"), MatchesRegex("no key after [0-9]+ rounds\nno key after [0-9]+ rounds\n"));
    EXPECT_EQ(test::runCommand("grep -rl sk-or-secret " + bus.home().string() + " || true"), "");
    EXPECT_THAT(test::runCommand("env DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere " KEYCHAIN_PROBE " test.vantry read"),
        StartsWith("no key"));
}

TEST_F(OtherKeyRingsTest, aLockedKeyRingGivesNoKey)
{
    const OwnKeyRing ring;
    const std::string lock = " '" + ring.call("Lock [\\\"/org/freedesktop/secrets/collection/login\\\"]") + " >/dev/null' ";
    EXPECT_THAT(
        ring.probe("write read" + lock + "read"), MatchesRegex("sk-or-secret after [0-9]+ rounds\nno key after [0-9]+ rounds\n"));
    EXPECT_EQ(test::runCommand("grep -rl sk-or-secret " + ring.home().string() + " || true"), "");
}

TEST_F(OtherKeyRingsTest, aLockedKeyRingIsWaitedForWhileItAsks)
{
    const OwnKeyRing ring;
    const test::Program prompter({ "sh", "-c", "exec " + ring.environment() + " /usr/libexec/gcr-prompter" });
    test::runCommand(ring.environment() + " gdbus wait --session --timeout 60 org.gnome.keyring.SystemPrompter");
    const std::string lock = " '" + ring.call("Lock [\\\"/org/freedesktop/secrets/collection/login\\\"]") + " >/dev/null' ";
    const test::Program user(
        { "sh", "-c", "xdotool search --sync --onlyvisible --class gcr-prompter; sleep 3; xdotool type test; xdotool key Return" });
    EXPECT_THAT(ring.probe("write" + lock + "stop read"),
        MatchesRegex("no key after 2[0-9][0-9] rounds\nsk-or-secret after [0-9]+ rounds\n"));
}

TEST_F(OtherKeyRingsTest, aKeyRingThatDoesNotAnswerHoldsNothingUp)
{
    const OwnKeyRing ring;
    EXPECT_THAT(ring.probe("write 'kill -STOP " + ring.pid() + "' read 'kill -CONT " + ring.pid() + "' read"),
        MatchesRegex("no key after [0-9][0-9]+ rounds\nsk-or-secret after [0-9]+ rounds\n"));
}

} // namespace vantry
