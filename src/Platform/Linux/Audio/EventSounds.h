#pragma once

#include "Platform/BackgroundTask.h"
#include "Platform/Qt/ProgramFiles.h"
#include "Platform/Sounds.h"

#include <QMap>

namespace pavonel {

/// Our own sounds, then those of the installed sound themes. A small program of ours plays them through
/// libcanberra and ends, so that neither a hanging sound server nor the memory of one is ours; and each
/// sound finds a server that came, went or came back meanwhile. The themes may lie on a disk that stopped
/// answering: then they have no sounds.
class EventSounds final : public Sounds {
public:
    EventSounds(ProgramFiles files, MainLoop &loop) : files_(std::move(files)), loop_(loop) {}

    void play(const QString &name) override;
    QStringList names() override;
    QString limitation() const override;

private:
    void searchThemes();
    void start(const QString &file);

    ProgramFiles files_;
    MainLoop &loop_;
    QMap<QString, QString> themes_; ///< From the names to the paths, as far as they are known.
    BackgroundTask search_;
    BackgroundTask start_;
};

} // namespace pavonel
