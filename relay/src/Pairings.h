#pragma once

#include "Sql.h"
#include "State.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace relay {

/// How many wrong codes are let through within the life of a code.
struct GuessLimits {
    int perAddress = 5;
    int overall = 60;
};

/// What is known of pairs of a computer and a phone. Tokens are stored and asked for by their hashes only.
/// Called on the database's thread, within a transaction, perhaps again when that fails.
class Pairings {
public:
    static constexpr std::int64_t codeLife = 15 * 60 * 1000; ///< Milliseconds.

    Pairings(Sql &sql, GuessLimits limits) : sql_(sql), limits_(limits) {}

    /// Its tables, where they do not yet stand.
    void prepare();

    /// A new pairing for a computer; false when the code is another's, which may happen to a random one.
    bool start(const std::string &computer, const std::string &code);

    /// Whether the computer has a phone; absent for an unknown one.
    std::optional<bool> isPaired(const std::string &computer);

    enum class Claim { paired, wrong, tooMany };
    /// A phone enters a code, which works once.
    Claim claim(const std::string &code, const std::string &phone, const std::string &address);

    /// Replaces the computer's break, or ends it; false for an unknown computer.
    bool setBreak(const std::string &computer, const std::optional<Break> &current);

    bool forgetComputer(const std::string &computer);
    bool forgetPhone(const std::string &phone);

    /// Absent for an unknown phone.
    std::optional<PhoneState> stateOf(const std::string &phone);

    /// Drops codes that nobody entered, old guesses, and pairs whose computer has long been silent.
    void clean();

private:
    bool isGuessingTooMuch(const std::string &address);
    bool publishForgotten(const std::vector<SqlRow> &rows);

    Sql &sql_;
    GuessLimits limits_;
};

} // namespace relay
