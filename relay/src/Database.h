#pragma once

#include "Pairings.h"

#include <boost/asio/awaitable.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace relay {

namespace net = boost::asio;

/// The thread that asks the database. All questions that wait are answered in one transaction, so that a busy
/// service writes to the disk no more often than an idle one.
class Database {
public:
    Database(std::unique_ptr<Sql> sql, GuessLimits limits);
    ~Database(); ///< Answers first what waits.
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    /// What the question yields, on the caller's executor. Throws SqlError when the database is away.
    /// The question is asked again when its transaction failed.
    template <class Answer, class Question> net::awaitable<Answer> ask(const Question &question) {
        const auto executor = co_await net::this_coro::executor;
        // Named, as is every question: GCC 12 destroys twice what a closure holds that is made within
        // co_await.
        auto initiate = [this, executor, &question](auto handler) {
            auto answer = std::make_shared<Answer>();
            auto reply = std::make_shared<decltype(handler)>(std::move(handler));
            auto guard = net::make_work_guard(executor);
            enqueue({[answer, question](Pairings &pairings) { *answer = question(pairings); },
                     [executor, answer, reply, guard](std::exception_ptr failure) {
                         net::post(executor, [answer, reply, failure] {
                             std::move (*reply)(failure, std::move(*answer));
                         });
                     }});
        };
        using Signature = void(std::exception_ptr, Answer);
        co_return co_await net::async_initiate<const net::use_awaitable_t<> &, Signature>(initiate,
                                                                                          net::use_awaitable);
    }

private:
    struct Job {
        std::function<void(Pairings &)> work;
        std::function<void(std::exception_ptr)> done;
    };

    void enqueue(Job job);
    void answer();
    std::deque<Job> nextJobs();
    std::exception_ptr tried(std::deque<Job> &jobs);

    std::unique_ptr<Sql> sql_;
    Pairings pairings_;
    std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<Job> jobs_;
    bool ending_ = false;
    std::thread thread_;
};

} // namespace relay
