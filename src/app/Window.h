#pragma once

#include "model/AppModel.h"

#include <memory>

class QQmlApplicationEngine;

namespace vantry {

/// The main window, and the panels that take its place while a clip is recorded. Closing it asks the model to quit. Needs a QGuiApplication.
class Window {
public:
    /// The model outlives the window. Throws AppError when the interface cannot be loaded.
    explicit Window(AppModel& model);
    ~Window();

    /// Whether the environment names a desktop. Without one the toolkit would end the process.
    static bool hasDesktop();

private:
    std::unique_ptr<QQmlApplicationEngine> m_engine;
};

} // namespace vantry
