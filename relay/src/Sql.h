#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace relay {

struct SqlError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

using SqlValue = std::variant<std::monostate, std::int64_t, std::string>;
using SqlRow = std::vector<std::optional<std::string>>; ///< Absent for NULL.

/// A connection to a database: both kinds understand the same statements, with $1, $2 … in the order of their
/// first use. Used by one thread.
class Sql {
public:
    virtual ~Sql() = default;

    virtual std::vector<SqlRow> run(const std::string &statement,
                                    std::initializer_list<SqlValue> values = {}) = 0;

    virtual void begin() = 0;
    virtual void commit() = 0;
    virtual void rollBack() = 0; ///< Also after a lost connection, which it makes anew. Never throws.

    /// Until the transaction ends, no other instance passes here.
    virtual void passAlone() = 0;

    /// Hands a text to every instance once the transaction is committed.
    virtual void publish(const std::string &text) = 0;
};

/// What becomes of published texts, on any thread.
struct Listener {
    std::function<void(const std::string &)> published;
    std::function<void()> missed; ///< Some texts may have been lost.
};

/// Of "sqlite:PATH" or "postgresql://…". Throws SqlError.
std::unique_ptr<Sql> connectSql(const std::string &database, Listener listener);
std::unique_ptr<Sql> connectSqlite(const std::string &path, Listener listener);
std::unique_ptr<Sql> connectPostgres(const std::string &uri, Listener listener);

} // namespace relay
