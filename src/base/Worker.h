#pragma once

#include "base/BoundedQueue.h"

#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <type_traits>

namespace vantry {

/// A named thread that runs jobs one after the other, in the order they were posted. Destroying it runs what was posted and joins.
/// A job must not throw, except through `sync` and `async`. Posting is safe from any thread.
class Worker {
public:
    using Job = std::function<void()>;

    struct Options {
        std::size_t capacity = 4096;
        WhenFull whenFull = WhenFull::Block;
    };

    /// `name` is what a debugger and `top -H` show: at most 15 characters.
    explicit Worker(std::string name)
        : Worker(std::move(name), Options())
    {
    }
    Worker(std::string name, Options options);
    ~Worker();

    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// False when the job was not taken (the worker is full and dropping, or closed).
    [[nodiscard]] bool tryPost(Job job) { return m_jobs.push(std::move(job)); }

    /// For a worker that blocks when full and outlives its callers.
    void post(Job job) { static_cast<void>(tryPost(std::move(job))); }

    /// Runs `function` on the worker. The future gives its result, or throws what it threw; it does not wait when it is dropped.
    template <typename Function>
    auto async(Function function) -> std::future<std::invoke_result_t<Function>>
    {
        const auto task = std::make_shared<std::packaged_task<std::invoke_result_t<Function>()>>(std::move(function));
        auto result = task->get_future();
        post([task] { (*task)(); });
        return result;
    }

    /// The same, and waits for it. Never call it from the worker itself.
    template <typename Function>
    auto sync(Function function) -> std::invoke_result_t<Function>
    {
        return async(std::move(function)).get();
    }

    /// No more jobs; waits until those that were posted have run. Called by the destructor too.
    void finish();

private:
    BoundedQueue<Job> m_jobs;
    std::thread m_thread;
};

} // namespace vantry
