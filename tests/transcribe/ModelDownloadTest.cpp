#include "transcribe/ModelDownload.h"

#include "base/AppError.h"
#include "support/ModelServer.h"
#include "support/PumpUntil.h"
#include "support/TemporaryFolder.h"

#include <QCryptographicHash>
#include <QFile>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace vantry {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test::ModelServer;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class ModelDownloadTest : public test::EventLoopTest {
protected:
    ModelDownloadTest()
    {
        for (int i = 0; m_published.size() < 3'000'000; ++i)
            m_published += QByteArray::number(i);
    }

    Fetched fetchFrom(const std::string& source)
    {
        return fetch({ .model = { .file = "model.bin",
                           .bytes = m_published.size(),
                           .sha256 = QCryptographicHash::hash(m_published, QCryptographicHash::Sha256).toHex().toStdString() },
                         .folder = m_models,
                         .source = source,
                         .patience = m_patience,
                         .onProgress = [this](double fraction) { m_progress.push_back(fraction); } },
            m_cancel.get_token());
    }

    std::string failureFrom(const std::string& source)
    {
        try {
            fetchFrom(source);
        } catch (const AppError& error) {
            return error.what();
        }
        return {};
    }

    QByteArray stored(const std::string& name = "model.bin") const
    {
        QFile file(QString::fromStdString((m_models / name).string()));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void leavePart(const QByteArray& bytes)
    {
        fs::create_directories(m_models);
        std::ofstream(m_models / "model.bin.part", std::ios::binary).write(bytes.data(), bytes.size());
    }

    QByteArray m_published;
    std::chrono::milliseconds m_patience = 30s;
    const test::TemporaryFolder m_folder;
    const fs::path m_models = m_folder / "data/models";
    std::vector<double> m_progress;
    std::stop_source m_cancel;
    qsizetype m_sent = 0;
    bool m_stays = false;

    /// Sends only so much of a reply, and then breaks off or stays.
    const ModelServer m_limited{ [this](qsizetype from) {
        auto reply = ModelServer::rest(m_published, from);
        reply.sent = m_sent;
        reply.stays = m_stays;
        return reply;
    } };
};

} // namespace

TEST_F(ModelDownloadTest, oneProcessAtATimeFetchesAModelAndStoresItOnceAllOfItIsThere)
{
    const ModelServer server([&](qsizetype from) {
        EXPECT_FALSE(fs::exists(m_models / "model.bin"));
        EXPECT_THAT(failureFrom(server.source()), HasSubstr("Another Vantry"));
        return ModelServer::rest(m_published, from);
    });
    EXPECT_EQ(fetchFrom(server.source()), Fetched::Complete);
    EXPECT_EQ(stored(), m_published);
    EXPECT_FALSE(fs::exists(m_models / "model.bin.part"));
    EXPECT_TRUE(std::ranges::is_sorted(m_progress));
    ASSERT_FALSE(m_progress.empty());
    EXPECT_EQ(m_progress.back(), 1);
}

TEST_F(ModelDownloadTest, aConnectionThatBreaksOffIsTakenUpAgain)
{
    int breaks = 2;
    const ModelServer server([&](qsizetype from) {
        auto reply = ModelServer::rest(m_published, from);
        reply.sent = breaks-- > 0 ? 1'000'000 : -1;
        return reply;
    });
    EXPECT_EQ(fetchFrom(server.source()), Fetched::Complete);
    EXPECT_EQ(stored(), m_published);
    EXPECT_LE(server.requests().size(), 4u);
}

TEST_F(ModelDownloadTest, aServerThatLeadsElsewhereIsFollowed)
{
    const ModelServer store([&](qsizetype from) { return ModelServer::rest(m_published, from); });
    const ModelServer server([&](qsizetype) {
        return ModelServer::Reply{ .status = 302, .location = QByteArray::fromStdString(store.source()) + "other-name" };
    });
    leavePart(m_published.left(1000));
    EXPECT_EQ(fetchFrom(server.source()), Fetched::Complete);
    EXPECT_EQ(stored(), m_published);
    EXPECT_THAT(store.requests(), ElementsAre(1000));

    m_published += "next";
    const ModelServer circle([](qsizetype) { return ModelServer::Reply{ .status = 307, .location = "model.bin" }; });
    EXPECT_THAT(failureFrom(circle.source()), HasSubstr("only leads elsewhere"));
    const ModelServer away([](qsizetype) { return ModelServer::Reply{ .status = 302, .location = "file:///etc/passwd" }; });
    EXPECT_THAT(failureFrom(away.source()), HasSubstr("only leads elsewhere"));
    const ModelServer lost(
        [](qsizetype) { return ModelServer::Reply{ .status = 302, .location = "http://no-such-host.invalid/" }; });
    EXPECT_EQ(fetchFrom(lost.source()), Fetched::Unreachable);
}

TEST_F(ModelDownloadTest, aPartThatIsOfNoUseIsFetchedAgain)
{
    const ModelServer withoutRanges([&](qsizetype) { return ModelServer::whole(m_published); });
    leavePart(m_published.left(2'500'000));
    EXPECT_EQ(fetchFrom(withoutRanges.source()), Fetched::Complete);
    EXPECT_EQ(stored(), m_published);

    const ModelServer server([&](qsizetype from) { return ModelServer::rest(m_published, from); });
    for (const QByteArray& part : { m_published.left(1000) + QByteArray(1000, 'x'), QByteArray(m_published.size() + 1, 'x') }) {
        leavePart(part);
        EXPECT_EQ(fetchFrom(server.source()), Fetched::Complete);
        EXPECT_EQ(stored(), m_published);
    }
    EXPECT_THAT(server.requests(), ElementsAre(2000, 0, 0));
}

TEST_F(ModelDownloadTest, whatIsNotThePublishedModelIsNotKept)
{
    QByteArray other = m_published;
    other[1'234'567] = 'x';
    const ModelServer damaging([&](qsizetype from) { return ModelServer::rest(other, from); });
    EXPECT_THAT(failureFrom(damaging.source()), HasSubstr("damaged"));
    EXPECT_FALSE(fs::exists(m_models / "model.bin"));

    const ModelServer longer([&](qsizetype) { return ModelServer::whole(m_published + "more"); });
    EXPECT_THAT(failureFrom(longer.source()), HasSubstr("not the published one"));

    const ModelServer elsewhere([&](qsizetype) {
        return ModelServer::Reply{ .status = 206, .body = m_published.mid(7), .contentRange = "bytes 7-2999999/3000000" };
    });
    EXPECT_THAT(failureFrom(elsewhere.source()), HasSubstr("another part"));

    const ModelServer server([&](qsizetype from) { return ModelServer::rest(m_published, from); });
    EXPECT_EQ(fetchFrom(server.source()), Fetched::Complete) << "nothing of it is in the way";
    EXPECT_THAT(server.requests(), ElementsAre(0));
}

TEST_F(ModelDownloadTest, aServerThatRefusesOrStopsIsNamedInTheError)
{
    const ModelServer missing([](qsizetype) { return ModelServer::Reply{ .status = 404, .body = "nothing here" }; });
    EXPECT_THAT(failureFrom(missing.source()), HasSubstr("could not be downloaded"));
    EXPECT_EQ(stored("model.bin.part"), QByteArray()) << "an error's page is no part of a model";

    m_sent = 10;
    EXPECT_THAT(failureFrom(m_limited.source()), HasSubstr("could not be downloaded"));
    const QByteArray part = stored("model.bin.part");
    EXPECT_GT(part.size(), 10) << "it was asked again";
    EXPECT_EQ(part, m_published.left(part.size()));
}

TEST_F(ModelDownloadTest, noNetworkIsFoundOutSoon)
{
    std::string closed;
    {
        const ModelServer server([](qsizetype) { return ModelServer::Reply{}; });
        closed = server.source();
    }
    EXPECT_EQ(fetchFrom(closed), Fetched::Unreachable);
    EXPECT_EQ(fetchFrom("http://no-such-host.invalid/"), Fetched::Unreachable);
    const ModelServer silent([](qsizetype) { return ModelServer::Reply{ .isSilent = true }; });
    m_patience = 200ms;
    EXPECT_EQ(fetchFrom(silent.source()), Fetched::Unreachable);
}

TEST_F(ModelDownloadTest, aServerThatFallsSilentLeavesWhatItSent)
{
    m_sent = 1000;
    m_stays = true;
    m_patience = 500ms;
    EXPECT_THAT(failureFrom(m_limited.source()), HasSubstr("could not be downloaded"));
    const QByteArray part = stored("model.bin.part");
    EXPECT_GE(part.size(), 1000);
    EXPECT_EQ(part, m_published.left(part.size()));
}

TEST_F(ModelDownloadTest, cancellingKeepsWhatIsThere)
{
    m_sent = 1'000'000;
    m_stays = true;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (!m_progress.empty() && m_progress.back() > 0.3)
            m_cancel.request_stop();
    });
    poll.start(5);
    EXPECT_EQ(fetchFrom(m_limited.source()), Fetched::Cancelled);
    EXPECT_EQ(stored("model.bin.part"), m_published.left(1'000'000));

    EXPECT_EQ(fetchFrom(m_limited.source()), Fetched::Cancelled) << "also before it begins";
}

TEST_F(ModelDownloadTest, aFolderThatCannotBeMadeIsNamedInTheError)
{
    std::ofstream(m_folder / "data") << "in the way";
    EXPECT_THAT(failureFrom("http://127.0.0.1:1/"), HasSubstr("Could not write model.bin: "));
}

} // namespace vantry
