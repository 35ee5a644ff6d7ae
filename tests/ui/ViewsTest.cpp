#include "model/ModelTest.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <gtest/gtest.h>

#include <memory>

namespace vantry {

using namespace Qt::StringLiterals;

using ViewsTest = test::ModelTest;

TEST_F(ViewsTest, showAndChangeTheProject)
{
    m_model.open(writeProject("one"));
    m_model.setPlayhead(5);
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData(R"(
        import QtQml
        import Vantry
        QtObject {
            required property AppModel model
            readonly property FieldBinding field: model.binding(ProjectField.Name, false)
            readonly property string shown: field.value
            readonly property bool onScreen: model.liveLayout === LayoutKind.Screen && model.liveCorner === CornerKind.TopLeft
            function type(text) { gc(); field.value = text; }
            function choose() { model.setLayout(LayoutKind.Screen); model.setCorner(CornerKind.TopLeft); }
        })",
        {});
    const std::unique_ptr<QObject> view(component.createWithInitialProperties({ { u"model"_s, QVariant::fromValue(&m_model) } }));
    ASSERT_TRUE(view) << component.errorString().toStdString();
    EXPECT_EQ(view->property("shown"), u"one"_s);
    QMetaObject::invokeMethod(view.get(), "type", Q_ARG(QVariant, u"two"_s));
    EXPECT_EQ(onDisk().name, "two");
    EXPECT_EQ(view->property("shown"), u"two"_s);

    EXPECT_EQ(view->property("onScreen"), false);
    QMetaObject::invokeMethod(view.get(), "choose");
    EXPECT_EQ(view->property("onScreen"), true);
    EXPECT_EQ(onDisk().layouts.back(), (LayoutEvent{ 5, Layout::screen, Corner::topLeft }));
}

} // namespace vantry
