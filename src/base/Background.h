#pragma once

#include "base/Worker.h"

#include <QFuture>
#include <QPromise>

#include <memory>
#include <type_traits>

namespace vantry {

/// Runs `function` on the worker. The future gives its result, or throws what it threw.
template <typename Function>
auto inBackground(Worker& worker, Function function) -> QFuture<std::invoke_result_t<Function>>
{
    using Result = std::invoke_result_t<Function>;
    const auto promise = std::make_shared<QPromise<Result>>();
    promise->start();
    worker.post([promise, function = std::move(function)]() mutable {
        try {
            if constexpr (std::is_void_v<Result>)
                function();
            else
                promise->addResult(function());
        } catch (...) {
            promise->setException(std::current_exception());
        }
        promise->finish();
    });
    return promise->future();
}

} // namespace vantry
