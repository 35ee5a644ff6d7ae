#include "model/Coroutines.h"

#include "support/PumpUntil.h"

namespace vantry {

namespace {

class CoroutinesTest : public test::EventLoopTest {
protected:
    QCoro::Task<> follow(std::optional<std::chrono::milliseconds> longest)
    {
        co_await nextEmission(m_object.get(), &QObject::objectNameChanged, longest);
        ++m_resumed;
    }

    std::unique_ptr<QObject> m_object = std::make_unique<QObject>();
    int m_resumed = 0;
};

} // namespace

TEST_F(CoroutinesTest, goOnOnceAfterASignalHoweverOftenItIsEmitted)
{
    const auto task = follow({});
    for (const char* name : { "one", "two", "three" })
        m_object->setObjectName(QString::fromLatin1(name));
    EXPECT_EQ(m_resumed, 0);
    EXPECT_TRUE(test::pumpUntil([&] { return m_resumed > 0; }));
    QCoreApplication::processEvents();
    EXPECT_EQ(m_resumed, 1);
}

TEST_F(CoroutinesTest, goOnWithoutTheSignalWhenItTakesLongOrCannotComeAnyMore)
{
    const auto late = follow(std::chrono::milliseconds(10));
    EXPECT_TRUE(test::pumpUntil([&] { return m_resumed == 1; }));
    const auto orphan = follow({});
    m_object.reset();
    EXPECT_TRUE(test::pumpUntil([&] { return m_resumed == 2; }));
}

} // namespace vantry
