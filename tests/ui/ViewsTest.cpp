#include "model/ModelTest.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <gtest/gtest.h>

#include <memory>

namespace vantry {

using namespace Qt::StringLiterals;

/// What QML can do with the model.
class ViewsTest : public test::ModelTest {
protected:
    /// An object with these members, beside the model.
    std::unique_ptr<QObject> make(const QByteArray& members)
    {
        QQmlComponent component(&m_engine);
        component.setData("import QtQml; import Vantry; QtObject { required property AppModel model; " + members + " }", {});
        std::unique_ptr<QObject> object(component.createWithInitialProperties({ { u"model"_s, QVariant::fromValue(&m_model) } }));
        EXPECT_TRUE(object) << component.errorString().toStdString();
        return object;
    }

    QQmlEngine m_engine;
};

TEST_F(ViewsTest, aControlShowsAndChangesAField)
{
    m_model.open(writeProject("one"));
    const auto control = make(R"(
        readonly property FieldBinding field: model.binding(ProjectField.Name, false)
        readonly property string shown: field.value
        function type(text) { gc(); field.value = text; })");
    EXPECT_EQ(control->property("shown"), u"one"_s);
    QMetaObject::invokeMethod(control.get(), "type", Q_ARG(QVariant, u"two"_s));
    EXPECT_EQ(loadProject(*m_model.folder()).name, "two");
    EXPECT_EQ(control->property("shown"), u"two"_s);
}

TEST_F(ViewsTest, aSelectorShowsAndChangesTheLayout)
{
    m_model.open(writeProject("one"));
    m_model.setPlayhead(5);
    const auto selector = make(R"(
        readonly property bool onScreen: model.liveLayout === LayoutKind.Screen && model.liveCorner === CornerKind.TopLeft
        function choose() { model.setLayout(LayoutKind.Screen); model.setCorner(CornerKind.TopLeft); })");
    EXPECT_EQ(selector->property("onScreen"), false);
    QMetaObject::invokeMethod(selector.get(), "choose");
    EXPECT_EQ(selector->property("onScreen"), true);
    EXPECT_EQ(loadProject(*m_model.folder()).layouts.back(), (LayoutEvent{ 5, Layout::screen, Corner::topLeft }));
}

} // namespace vantry
