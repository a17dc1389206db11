#include "Sql.h"

#include <map>

#include <sqlite3.h>

namespace relay {

namespace {

struct Finalize {
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};
struct Close {
    void operator()(sqlite3 *database) const { sqlite3_close_v2(database); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

class Sqlite final : public Sql {
public:
    Sqlite(const std::string &path, Listener listener) : listener_(std::move(listener)) {
        sqlite3 *database = nullptr;
        const int result = sqlite3_open(path.c_str(), &database);
        database_.reset(database);
        if (result != SQLITE_OK)
            throw SqlError("cannot open " + path + ": " + sqlite3_errmsg(database));
        constexpr int timeout = 5000; // milliseconds, for a backup that reads
        sqlite3_busy_timeout(database, timeout);
        run("PRAGMA journal_mode = WAL");
        run("PRAGMA synchronous = NORMAL");
    }

    std::vector<SqlRow> run(const std::string &text, std::initializer_list<SqlValue> values) override {
        sqlite3_stmt *statement = prepared(text);
        int index = 0;
        for (const SqlValue &value : values)
            bind(statement, ++index, value);
        std::vector<SqlRow> rows;
        int result = sqlite3_step(statement);
        for (; result == SQLITE_ROW; result = sqlite3_step(statement))
            rows.push_back(row(statement));
        sqlite3_reset(statement);
        sqlite3_clear_bindings(statement);
        if (result != SQLITE_DONE)
            fail();
        return rows;
    }

    void begin() override {
        published_.clear();
        run("BEGIN IMMEDIATE", {});
    }

    void commit() override {
        run("COMMIT", {});
        for (const std::string &text : published_)
            listener_.published(text);
        published_.clear();
    }

    void rollBack() override {
        if (sqlite3_get_autocommit(database_.get()) == 0)
            sqlite3_exec(database_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
    }

    void passAlone() override {} // a transaction that writes is alone anyway
    void publish(const std::string &text) override { published_.push_back(text); }

private:
    void run(const char *text) { run(std::string(text), {}); }

    [[noreturn]] void fail() const { throw SqlError(sqlite3_errmsg(database_.get())); }

    sqlite3_stmt *prepared(const std::string &text) {
        Statement &statement = statements_[text];
        if (!statement) {
            sqlite3_stmt *made = nullptr;
            const int result = sqlite3_prepare_v2(database_.get(), text.c_str(), -1, &made, nullptr);
            statement.reset(made);
            if (result != SQLITE_OK)
                fail();
        }
        return statement.get();
    }

    static void bind(sqlite3_stmt *statement, int index, const SqlValue &value) {
        if (const auto *number = std::get_if<std::int64_t>(&value))
            sqlite3_bind_int64(statement, index, *number);
        else if (const auto *text = std::get_if<std::string>(&value))
            sqlite3_bind_text(statement, index, text->data(), static_cast<int>(text->size()),
                              SQLITE_TRANSIENT);
    }

    static SqlRow row(sqlite3_stmt *statement) {
        SqlRow row;
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            const void *text = sqlite3_column_text(statement, column);
            const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
            row.emplace_back(text ? std::optional(std::string(static_cast<const char *>(text), size))
                                  : std::nullopt);
        }
        return row;
    }

    Listener listener_;
    std::unique_ptr<sqlite3, Close> database_;
    std::map<std::string, Statement> statements_;
    std::vector<std::string> published_;
};

} // namespace

std::unique_ptr<Sql> connectSqlite(const std::string &path, Listener listener) {
    return std::make_unique<Sqlite>(path, std::move(listener));
}

} // namespace relay
