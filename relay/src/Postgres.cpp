#include "Log.h"
#include "Sql.h"

#include <array>
#include <map>
#include <thread>

#include <libpq-fe.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace relay {

namespace {

constexpr const char *channel = "pavonel_relay";

struct Finish {
    void operator()(PGconn *connection) const { PQfinish(connection); }
};
struct Clear {
    void operator()(PGresult *result) const { PQclear(result); }
};
using Connection = std::unique_ptr<PGconn, Finish>;
using Result = std::unique_ptr<PGresult, Clear>;

Connection connected(const std::string &uri) {
    // A server that vanished without a word is noticed within half a minute.
    const std::array names{"dbname",
                           "connect_timeout",
                           "keepalives_idle",
                           "keepalives_interval",
                           "keepalives_count",
                           "tcp_user_timeout",
                           static_cast<const char *>(nullptr)};
    const std::array values{uri.c_str(), "5", "10", "5", "3", "20000", static_cast<const char *>(nullptr)};
    Connection connection(PQconnectdbParams(names.data(), values.data(), 1));
    if (PQstatus(connection.get()) != CONNECTION_OK)
        throw SqlError(PQerrorMessage(connection.get()));
    return connection;
}

void check(PGconn *connection, const Result &result) {
    const auto status = PQresultStatus(result.get());
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK)
        throw SqlError(PQerrorMessage(connection));
}

/// Waits on a connection of its own for what is published, for as long as it lives.
class NotificationThread {
public:
    NotificationThread(std::string uri, Listener listener)
        : uri_(std::move(uri)), listener_(std::move(listener)), end_(eventfd(0, EFD_CLOEXEC)),
          thread_([this] { listen(); }) {}

    ~NotificationThread() {
        eventfd_write(end_, 1);
        thread_.join();
        ::close(end_);
    }
    NotificationThread(const NotificationThread &) = delete;
    NotificationThread &operator=(const NotificationThread &) = delete;

private:
    void listen() {
        constexpr int pause = 250; // milliseconds before another try
        do {
            try {
                hear();
            } catch (const SqlError &error) {
                log("database-lost", {{"reason", error.what()}});
            }
        } while (!isEnding(-1, pause));
    }

    void hear() {
        const Connection connection = connected(uri_);
        check(connection.get(), Result(PQexec(connection.get(), (std::string("LISTEN ") + channel).c_str())));
        listener_.missed();
        while (!isEnding(PQsocket(connection.get()), -1)) {
            if (PQconsumeInput(connection.get()) != 1)
                throw SqlError(PQerrorMessage(connection.get()));
            while (PGnotify *notice = PQnotifies(connection.get())) {
                listener_.published(notice->extra);
                PQfreemem(notice);
            }
        }
    }

    /// Waits for the socket, for the end or for the time.
    bool isEnding(int socket, int milliseconds) const {
        std::array<pollfd, 2> files{{{end_, POLLIN, 0}, {socket, POLLIN, 0}}};
        ::poll(files.data(), files.size(), milliseconds);
        return files[0].revents != 0;
    }

    std::string uri_;
    Listener listener_;
    int end_;
    std::thread thread_;
};

class Postgres final : public Sql {
public:
    Postgres(std::string uri, Listener listener)
        : uri_(std::move(uri)), connection_(connected(uri_)), notifications_(uri_, std::move(listener)) {}

    std::vector<SqlRow> run(const std::string &text, std::initializer_list<SqlValue> values) override {
        const std::string &name = prepared(text);
        std::vector<std::string> texts;
        std::vector<const char *> parameters;
        texts.reserve(values.size());
        for (const SqlValue &value : values)
            parameters.push_back(parameter(value, texts));
        const Result result(PQexecPrepared(connection_.get(), name.c_str(),
                                           static_cast<int>(parameters.size()), parameters.data(), nullptr,
                                           nullptr, 0));
        check(connection_.get(), result);
        return rows(result.get());
    }

    void begin() override { execute("BEGIN"); }
    void commit() override { execute("COMMIT"); }

    void rollBack() override {
        try {
            if (PQstatus(connection_.get()) == CONNECTION_OK)
                return execute("ROLLBACK");
            statements_.clear();
            connection_ = connected(uri_);
        } catch (const SqlError &error) {
            log("database-lost", {{"reason", error.what()}});
        }
    }

    void passAlone() override { run("SELECT pg_advisory_xact_lock(7285663)", {}); }
    void publish(const std::string &text) override {
        run("SELECT pg_notify($1, $2)", {std::string(channel), text});
    }

private:
    void execute(const char *statement) {
        check(connection_.get(), Result(PQexec(connection_.get(), statement)));
    }

    const std::string &prepared(const std::string &text) {
        const auto known = statements_.find(text);
        if (known != statements_.end())
            return known->second;
        const std::string name = "s" + std::to_string(statements_.size());
        check(connection_.get(),
              Result(PQprepare(connection_.get(), name.c_str(), text.c_str(), 0, nullptr)));
        return statements_.emplace(text, name).first->second;
    }

    static const char *parameter(const SqlValue &value, std::vector<std::string> &texts) {
        if (const auto *number = std::get_if<std::int64_t>(&value))
            return texts.emplace_back(std::to_string(*number)).c_str();
        if (const auto *text = std::get_if<std::string>(&value))
            return text->c_str();
        return nullptr;
    }

    static std::vector<SqlRow> rows(const PGresult *result) {
        std::vector<SqlRow> rows(static_cast<std::size_t>(PQntuples(result)));
        for (int index = 0; index < PQntuples(result); ++index) {
            for (int column = 0; column < PQnfields(result); ++column)
                rows[static_cast<std::size_t>(index)].emplace_back(
                    PQgetisnull(result, index, column)
                        ? std::nullopt
                        : std::optional<std::string>(PQgetvalue(result, index, column)));
        }
        return rows;
    }

    std::string uri_;
    Connection connection_;
    std::map<std::string, std::string> statements_; ///< Their names on the server.
    NotificationThread notifications_;
};

} // namespace

std::unique_ptr<Sql> connectPostgres(const std::string &uri, Listener listener) {
    return std::make_unique<Postgres>(uri, std::move(listener));
}

std::unique_ptr<Sql> connectSql(const std::string &database, Listener listener) {
    constexpr std::string_view sqlite = "sqlite:";
    if (database.starts_with(sqlite))
        return connectSqlite(database.substr(sqlite.size()), std::move(listener));
    if (database.starts_with("postgresql://") || database.starts_with("postgres://"))
        return connectPostgres(database, std::move(listener));
    throw SqlError("a database is sqlite:PATH or postgresql://…");
}

} // namespace relay
