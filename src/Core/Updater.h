#pragma once

#include "Core/Lifetime.h"
#include "Core/Observable.h"
#include "Core/UpdaterInstall.h"
#include "Platform/HeadlessPlatform.h"

#include <QUrl>

#include <memory>
#include <optional>
#include <variant>

namespace pavonel {

/// Keeps the application current: asks a feed for the latest release and, when told to, fetches it, verifies
/// it and has it take our place. Used on the main thread.
class Updater final : public Observable {
public:
    using Failure = UpdateFailure;

    struct Available {
        QString version;
        QString notes;
        bool operator==(const Available &) const = default;
    };
    struct Downloading {
        double progress = 0; ///< From 0 to 1.
        bool operator==(const Downloading &) const = default;
    };
    struct Failed {
        QString message;
        bool operator==(const Failed &) const = default;
    };
    struct Idle {
        bool operator==(const Idle &) const = default;
    };
    struct Checking {
        bool operator==(const Checking &) const = default;
    };
    /// An explicit check found nothing newer.
    struct UpToDate {
        bool operator==(const UpToDate &) const = default;
    };
    /// A new version is staged, and the application is about to quit.
    struct ReadyToRestart {
        bool operator==(const ReadyToRestart &) const = default;
    };
    using State = std::variant<Available, Downloading, Failed, Idle, Checking, UpToDate, ReadyToRestart>;

    enum class CheckKind {
        silent,     ///< Tells only of something newer.
        interactive ///< Tells of everything.
    };

    /// The feed's address: our own, or what PAVONEL_UPDATE_FEED holds. Absent when that is no URL.
    static std::optional<QUrl> feedAddress();

    Updater(const HeadlessPlatform &platform, QUrl manifest);

    static Updater &shared();

    Published<State> state{*this, Idle{}};

    /// When the feed was last answered, or failed to be.
    Published<std::optional<Instant>> lastCheck{*this, std::nullopt};

    /// Whether to check at the start, once a day. The settings window writes it in the store, under the key.
    bool automatic() const;

    /// The short version text of the running program; "0" when it is not known.
    QString currentVersion() const;

    /// Does nothing during a download.
    void check(CheckKind kind);

    /// Checks silently, unless that is switched off or was done less than a day ago.
    void checkInBackground();

    /// See `isNewerVersion`.
    static bool isNewer(const QString &a, const QString &b) { return isNewerVersion(a, b); }

    /// Installs the release of the last feed that was understood; without one, or without an address in it,
    /// does nothing. Once it is staged, the program quits and the new version starts in its place.
    void install();

    /// Whether another process put something else in this copy's place meanwhile.
    bool isReplaced() const;

    /// To what is there in this copy's place: ends the program, and that starts. False when there is nothing
    /// to give way to.
    bool giveWay(Opening opening);

    static const QString automaticKey;
    static const QString lastCheckKey;

    /// The team that signs our releases.
    static const QString teamID;

private:
    using Poster = std::function<void(MainLoop::Action)>;

    /// Takes an action from any thread to the main thread, where it is dropped if this is gone by then.
    Poster poster() const;
    void receive(CheckKind kind, const std::optional<HttpResponse> &response);
    State outcome(CheckKind kind, const std::optional<Release> &offered) const;
    void quitSoon();

    const HeadlessPlatform &platform_;
    QUrl manifest_;
    std::optional<Release> release_; ///< The last that the feed described.
    TimerHandle quitting_;
    Lifetime lifetime_;
};

} // namespace pavonel
