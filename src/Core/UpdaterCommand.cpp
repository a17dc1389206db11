#include "Core/UpdaterCommand.h"

#include <cstdlib>
#include <utility>
#include <variant>

namespace pavonel {

namespace {

constexpr Seconds pollInterval = 0.5;
constexpr int mostPolls = 241; // two minutes

/// Versions and messages come from elsewhere, and a terminal obeys what it is shown.
QString withoutControls(QString text) {
    for (QChar &character : text) {
        if (character.category() == QChar::Other_Control && character != u'\n')
            character = u' ';
    }
    return text;
}

} // namespace

UpdaterCommand::UpdaterCommand(MainLoop &loop, Updater &updater, Print print)
    : loop_(loop), updater_(updater), print_(std::move(print)) {}

void UpdaterCommand::start() {
    print(QStringLiteral("current version: ") + updater_.currentVersion());
    updater_.check(Updater::CheckKind::interactive);
    polling_ = loop_.every(pollInterval, [this] { poll(); });
}

/// The updater ends the program sooner after the staging than the next look may come.
void UpdaterCommand::finish() {
    const auto *staged = std::get_if<Updater::ReadyToRestart>(&updater_.state.get());
    if (polling_ && staged)
        report(*staged);
}

void UpdaterCommand::poll() {
    ++polls_;
    const Updater::State state = updater_.state; // which installing changes
    std::visit([this](const auto &now) { report(now); }, state);
    if (polling_ && polls_ >= mostPolls) {
        print(QStringLiteral("timed out"));
        end(EXIT_FAILURE);
    }
}

void UpdaterCommand::report(const Updater::Available &offer) {
    const QString version = QString(offer.version).replace(u'\n', u' '); // or it could pass for lines of ours
    print(QStringLiteral("available: %1 — installing").arg(version));
    updater_.install();
}

void UpdaterCommand::report(const Updater::Failed &failure) {
    print(QStringLiteral("failed: ") + failure.message);
    end(EXIT_FAILURE);
}

void UpdaterCommand::report(const Updater::UpToDate &) {
    print(QStringLiteral("up to date"));
    end(EXIT_SUCCESS);
}

/// The updater ends the program, unless the handing over fails.
void UpdaterCommand::report(const Updater::ReadyToRestart &) {
    print(QStringLiteral("verified and staged; replacing on exit"));
    polling_.reset();
    change_ = updater_.observe([this] {
        isToStart_ = true;
        loop_.quit(EXIT_SUCCESS);
    });
}

void UpdaterCommand::print(const QString &line) const {
    print_(withoutControls(line));
}

void UpdaterCommand::end(int status) {
    polling_.reset();
    loop_.quit(status);
}

} // namespace pavonel
