#pragma once

#include "Platform/Linux/DetachedLauncher.h"
#include "Platform/Sounds.h"

#include <future>

namespace pavonel {

/// Our own sounds, then those of the installed sound themes. A small program of ours plays them through
/// libcanberra and ends, so that neither a hanging sound server nor the memory of one is ours; and each
/// sound finds a server that came, went or came back meanwhile.
class EventSounds final : public Sounds {
public:
    explicit EventSounds(const ProgramFiles &files) : files_(files), launcher_(files) {}

    void play(const QString &name) override;
    QStringList names() override;
    QString limitation() const override;

private:
    ProgramFiles files_;
    DetachedLauncher launcher_;
    std::future<void> playing_; ///< The player has not been started yet while this is not ready.
};

} // namespace pavonel
