#include "Pairings.h"

#include "Clock.h"

namespace relay {

namespace {

constexpr std::int64_t longSilence = std::int64_t{400} * 24 * 3600 * 1000;

PhoneState stateFrom(const SqlRow &row, std::size_t version, std::size_t current) {
    return {std::stoll(row[version].value()), breakFrom(row[current].value_or(std::string()))};
}

} // namespace

void Pairings::prepare() {
    sql_.passAlone(); // instances that start together must not all make the tables
    sql_.run("CREATE TABLE IF NOT EXISTS pairings ("
             "computer TEXT PRIMARY KEY, phone TEXT UNIQUE, code TEXT UNIQUE, code_until BIGINT NOT NULL,"
             "current TEXT NOT NULL DEFAULT '', version BIGINT NOT NULL DEFAULT 1, seen BIGINT NOT NULL)");
    sql_.run("CREATE TABLE IF NOT EXISTS guesses (address TEXT NOT NULL, at BIGINT NOT NULL)");
}

bool Pairings::start(const std::string &computer, const std::string &code) {
    const std::int64_t now = nowMilliseconds();
    return !sql_.run("INSERT INTO pairings (computer, code, code_until, seen) VALUES ($1, $2, $3, $4) "
                     "ON CONFLICT (code) DO NOTHING RETURNING computer",
                     {computer, code, now + codeLife, now})
                .empty();
}

std::optional<bool> Pairings::isPaired(const std::string &computer) {
    const auto rows = sql_.run("SELECT phone FROM pairings WHERE computer = $1", {computer});
    return rows.empty() ? std::nullopt : std::optional(rows[0][0].has_value());
}

bool Pairings::isGuessingTooMuch(const std::string &address) {
    const auto rows = sql_.run("SELECT count(*), coalesce(sum(CASE WHEN address = $1 THEN 1 ELSE 0 END), 0) "
                               "FROM guesses WHERE at > $2",
                               {address, nowMilliseconds() - codeLife});
    return std::stoll(rows[0][0].value()) >= limits_.overall ||
           std::stoll(rows[0][1].value()) >= limits_.perAddress;
}

Pairings::Claim Pairings::claim(const std::string &code, const std::string &phone,
                                const std::string &address) {
    sql_.passAlone(); // or each instance would let the last guess through
    if (isGuessingTooMuch(address))
        return Claim::tooMany;
    const std::int64_t now = nowMilliseconds();
    const auto rows =
        sql_.run("UPDATE pairings SET phone = $1, code = NULL, version = version + 1, seen = $2 "
                 "WHERE code = $3 AND code_until > $2 RETURNING computer",
                 {phone, now, code});
    if (!rows.empty())
        return Claim::paired;
    sql_.run("INSERT INTO guesses (address, at) VALUES ($1, $2)", {address, now});
    return Claim::wrong;
}

bool Pairings::setBreak(const std::string &computer, const std::optional<Break> &current) {
    const auto rows = sql_.run("UPDATE pairings SET current = $1, version = version + 1, seen = $2 "
                               "WHERE computer = $3 RETURNING phone, version",
                               {toText(current), nowMilliseconds(), computer});
    if (rows.empty())
        return false;
    if (rows[0][0])
        sql_.publish(toText(Change{*rows[0][0], {std::stoll(rows[0][1].value()), current}}));
    return true;
}

bool Pairings::publishForgotten(const std::vector<SqlRow> &rows) {
    for (const SqlRow &row : rows) {
        if (row[0])
            sql_.publish(toText(Change{*row[0], {PhoneState::unpaired, {}}}));
    }
    return !rows.empty();
}

bool Pairings::forgetComputer(const std::string &computer) {
    return publishForgotten(sql_.run("DELETE FROM pairings WHERE computer = $1 RETURNING phone", {computer}));
}

bool Pairings::forgetPhone(const std::string &phone) {
    return publishForgotten(sql_.run("DELETE FROM pairings WHERE phone = $1 RETURNING phone", {phone}));
}

std::optional<PhoneState> Pairings::stateOf(const std::string &phone) {
    const auto rows = sql_.run("SELECT version, current FROM pairings WHERE phone = $1", {phone});
    return rows.empty() ? std::nullopt : std::optional(stateFrom(rows[0], 0, 1));
}

void Pairings::clean() {
    const std::int64_t now = nowMilliseconds();
    sql_.run("DELETE FROM pairings WHERE phone IS NULL AND code_until <= $1", {now});
    sql_.run("DELETE FROM guesses WHERE at <= $1", {now - codeLife});
    publishForgotten(sql_.run("DELETE FROM pairings WHERE seen <= $1 RETURNING phone", {now - longSilence}));
}

} // namespace relay
