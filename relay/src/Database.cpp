#include "Database.h"

#include "Log.h"

namespace relay {

Database::Database(std::unique_ptr<Sql> sql, GuessLimits limits)
    : sql_(std::move(sql)), pairings_(*sql_, limits) {
    sql_->begin();
    pairings_.prepare();
    sql_->commit();
    thread_ = std::thread([this] { answer(); });
}

Database::~Database() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    arrived_.notify_one();
    thread_.join();
}

void Database::enqueue(Job job) {
    {
        const std::lock_guard lock(mutex_);
        jobs_.push_back(std::move(job));
    }
    arrived_.notify_one();
}

std::deque<Database::Job> Database::nextJobs() {
    std::unique_lock lock(mutex_);
    arrived_.wait(lock, [this] { return ending_ || !jobs_.empty(); });
    return std::exchange(jobs_, {});
}

void Database::answer() {
    for (auto jobs = nextJobs(); !jobs.empty(); jobs = nextJobs()) {
        const std::exception_ptr failure = tried(jobs);
        for (const Job &job : jobs)
            job.done(failure);
    }
}

/// Twice: a lost connection is made anew, and of two instances in each other's way one gives way.
std::exception_ptr Database::tried(std::deque<Job> &jobs) {
    constexpr int attempts = 3;
    for (int attempt = 1;; ++attempt) {
        try {
            sql_->begin();
            for (const Job &job : jobs)
                job.work(pairings_);
            sql_->commit();
            return nullptr;
        } catch (const SqlError &error) {
            log("database-failed", {{"reason", error.what()}, {"attempt", attempt}});
            sql_->rollBack();
            if (attempt == attempts)
                return std::current_exception();
        }
    }
}

} // namespace relay
