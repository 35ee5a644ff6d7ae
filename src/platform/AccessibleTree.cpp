#include "platform/AccessibleTree.h"

#include "base/AppError.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusReply>
#include <QDBusVariant>

#include <atomic>
#include <utility>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

constexpr int longestAnswer = 1000; // milliseconds
constexpr auto accessible = "org.a11y.atspi.Accessible"_L1;

QString addressOfBus()
{
    if (const QString given = qEnvironmentVariable("AT_SPI_BUS_ADDRESS"); !given.isEmpty())
        return given;
    const auto call = QDBusMessage::createMethodCall(u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, u"org.a11y.Bus"_s, u"GetAddress"_s);
    return QDBusReply<QString>(QDBusConnection::sessionBus().call(call, QDBus::Block, longestAnswer)).value();
}

QDBusConnection connectToBus()
{
    static std::atomic<int> number = 0;
    const QDBusConnection bus = QDBusConnection::connectToBus(addressOfBus(), u"vantry-accessibility-%1"_s.arg(++number));
    if (!bus.isConnected())
        throw AppError("This desktop does not show what is in other windows");
    return bus;
}

QDBusMessage question(const AccessibleElement& element, const QString& interface, const QString& method)
{
    return QDBusMessage::createMethodCall(element.service, element.path, interface, method);
}

QDBusMessage propertyQuestion(const AccessibleElement& element, const QString& interface, const QString& property)
{
    return question(element, u"org.freedesktop.DBus.Properties"_s, u"Get"_s) << interface << property;
}

/// The first argument of an answer; invalid when there was none.
QVariant answer(const QDBusMessage& reply)
{
    return reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty() ? reply.arguments().first() : QVariant();
}

/// One answer for each question, all of which are under way together.
std::vector<QVariant> ask(const QDBusConnection& bus, const std::vector<QDBusMessage>& questions)
{
    std::vector<QDBusPendingCall> calls;
    calls.reserve(questions.size());
    for (const auto& asked : questions)
        calls.push_back(bus.asyncCall(asked, longestAnswer));
    std::vector<QVariant> answers;
    answers.reserve(calls.size());
    for (auto& call : calls) {
        call.waitForFinished();
        answers.push_back(answer(call.reply()));
    }
    return answers;
}

QVariant askOne(const QDBusConnection& bus, const QDBusMessage& asked)
{
    return answer(bus.call(asked, QDBus::Block, longestAnswer));
}

/// A list of bus names and object paths.
std::vector<AccessibleElement> elementsIn(const QVariant& answer)
{
    std::vector<AccessibleElement> elements;
    if (answer.metaType() != QMetaType::fromType<QDBusArgument>())
        return elements;
    const auto list = answer.value<QDBusArgument>();
    if (list.currentSignature() != "a(so)"_L1)
        return elements;
    for (list.beginArray(); !list.atEnd();) {
        AccessibleElement element;
        QDBusObjectPath path;
        list.beginStructure();
        list >> element.service >> path;
        list.endStructure();
        element.path = path.path();
        elements.push_back(std::move(element));
    }
    list.endArray();
    return elements;
}

} // namespace

AccessibleTree::AccessibleTree()
    : m_bus(connectToBus())
{
}

AccessibleTree::~AccessibleTree()
{
    QDBusConnection::disconnectFromBus(m_bus.name());
}

std::vector<AccessibleElement> AccessibleTree::programsOf(std::uint32_t process) const
{
    const AccessibleElement registry{ u"org.a11y.atspi.Registry"_s, u"/org/a11y/atspi/accessible/root"_s };
    const auto programs = children({ registry }).front();
    std::vector<QDBusMessage> questions;
    for (const auto& program : programs)
        questions.push_back(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                u"org.freedesktop.DBus"_s, u"GetConnectionUnixProcessID"_s)
            << program.service);
    const auto processes = ask(m_bus, questions);
    std::vector<AccessibleElement> found;
    for (std::size_t i = 0; i < programs.size(); ++i)
        if (processes[i].isValid() && processes[i].toUInt() == process)
            found.push_back(programs[i]);
    return found;
}

std::vector<AccessibleRole> AccessibleTree::roles(const std::vector<AccessibleElement>& elements) const
{
    std::vector<QDBusMessage> questions;
    for (const auto& element : elements)
        questions.push_back(question(element, accessible, u"GetRole"_s));
    std::vector<AccessibleRole> roles;
    for (const QVariant& role : ask(m_bus, questions))
        roles.push_back(static_cast<AccessibleRole>(role.toUInt()));
    return roles;
}

std::vector<std::vector<AccessibleElement>> AccessibleTree::children(const std::vector<AccessibleElement>& elements) const
{
    std::vector<QDBusMessage> questions;
    for (const auto& element : elements)
        questions.push_back(question(element, accessible, u"GetChildren"_s));
    std::vector<std::vector<AccessibleElement>> children;
    for (const QVariant& list : ask(m_bus, questions))
        children.push_back(elementsIn(list));
    return children;
}

std::optional<PixelRect> AccessibleTree::extents(const AccessibleElement& element) const
{
    constexpr uint onDesktop = 0;
    const QVariant answer = askOne(m_bus, question(element, u"org.a11y.atspi.Component"_s, u"GetExtents"_s) << onDesktop);
    if (answer.metaType() != QMetaType::fromType<QDBusArgument>())
        return std::nullopt;
    const auto rect = answer.value<QDBusArgument>();
    if (rect.currentSignature() != "(iiii)"_L1)
        return std::nullopt;
    PixelRect place;
    rect.beginStructure();
    rect >> place.x >> place.y >> place.width >> place.height;
    rect.endStructure();
    return place;
}

bool AccessibleTree::isShowing(const AccessibleElement& element) const
{
    constexpr uint showing = 1u << 25;
    const QVariant answer = askOne(m_bus, question(element, accessible, u"GetState"_s));
    if (answer.metaType() != QMetaType::fromType<QDBusArgument>())
        return false;
    const auto words = answer.value<QDBusArgument>();
    if (words.currentSignature() != "au"_L1)
        return false;
    uint first = 0;
    words.beginArray();
    if (!words.atEnd())
        words >> first;
    words.endArray();
    return (first & showing) != 0;
}

QString AccessibleTree::name(const AccessibleElement& element) const
{
    return askOne(m_bus, propertyQuestion(element, accessible, u"Name"_s)).value<QDBusVariant>().variant().toString();
}

QString AccessibleTree::toolkit(const AccessibleElement& program) const
{
    const auto asked = propertyQuestion(program, u"org.a11y.atspi.Application"_s, u"ToolkitName"_s);
    return askOne(m_bus, asked).value<QDBusVariant>().variant().toString();
}

void AccessibleTree::askForDetails(const AccessibleElement& element) const
{
    static_cast<void>(askOne(m_bus, question(element, accessible, u"GetAttributes"_s)));
}

} // namespace vantry
