#pragma once

#include "Core/BreakRelay.h"
#include "Core/Lifetime.h"
#include "Core/Observable.h"
#include "Platform/HttpClient.h"
#include "Platform/MainLoop.h"
#include "Platform/UserDefaults.h"

#include <QJsonObject>

#include <memory>
#include <optional>
#include <variant>

namespace pavonel {

/// Why a pairing failed, as one sentence for the user.
struct PairingError {
    QString message;

    bool operator==(const PairingError &) const = default;
};

/// Pairs this computer with the phone app through the pairing service, and tells the phone of every break.
/// What fails in a relay is dropped silently; what fails in a pairing ends in `Failed`.
class Phone final : public BreakRelay, public Observable {
public:
    struct Waiting {
        QString code;
        bool operator==(const Waiting &) const = default;
    };
    struct Failed {
        QString message;
        bool operator==(const Failed &) const = default;
    };
    struct Unpaired {
        bool operator==(const Unpaired &) const = default;
    };
    struct Paired {
        bool operator==(const Paired &) const = default;
    };
    using State = std::variant<Waiting, Failed, Unpaired, Paired>;

    /// The service's address: our own, or what PAVONEL_PAIR_HOST holds. Absent when that is no URL.
    static std::optional<QUrl> serviceAddress();

    Phone(HttpClient &http, MainLoop &loop, UserDefaults &defaults, QUrl base);

    static Phone &shared();

    /// Where the service is, as people name it: its host, and the port where it has one. Empty without one.
    QString serviceName() const;

    /// The address of the phone's page that brings the code along; empty without a service or a code yet.
    QString pageFor(const QString &code) const;

    Published<State> state{*this, Unpaired{}};

    /// Asks for a new code and waits for the phone to enter it.
    void startPairing();

    /// Forgets the pairing here at once, and tells the service.
    void unpair();

    /// A duration that is not finite or does not fit 64 bits is a programming fault and aborts.
    void breakStarted(BreakKind kind, const QString &title, Seconds duration) override;
    void breakEnded() override;

    static const QString tokenKey;

private:
    enum class Credentials { none, token };
    using Result = std::variant<QJsonObject, PairingError>;
    using Completion = std::function<void(const Result &)>;

    void request(const char *method, const char *path, Credentials credentials,
                 const std::optional<QJsonObject> &body, Completion completion);
    std::optional<QString> token() const;
    void receiveCode(const Result &result);
    void startPolling();
    void poll(Instant deadline);
    void receiveStatus(const Result &result);

    HttpClient &http_;
    MainLoop &loop_;
    UserDefaults &defaults_;
    QUrl base_;
    TimerHandle poll_; ///< Absent while no code is shown.
    unsigned attempt_ =
        0; ///< Grows with every pairing and unpairing; replies to an earlier one come too late.
    unsigned polling_ = 0; ///< Grows with every start and end of polling, to the same purpose.
    Lifetime lifetime_;
};

} // namespace pavonel
