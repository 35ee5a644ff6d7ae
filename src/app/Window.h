#pragma once

#include "model/AppModel.h"

#include <memory>

class QQmlApplicationEngine;

namespace vantry {

/// The main window, and the panels that take its place while a clip is recorded. Closing it asks the model to quit. Needs a
/// QGuiApplication.
class Window {
public:
    /// The model outlives the window. Throws AppError when the interface cannot be loaded.
    explicit Window(AppModel& model);
    ~Window();

    /// Throws AppError when there is nothing to show a window on. The toolkit itself would end the process.
    static void requireDesktop();

private:
    std::unique_ptr<QQmlApplicationEngine> m_engine;
};

} // namespace vantry
