#pragma once

#include "Platform/Service.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace pavonel {

/// This copy of the program as it lies on the disk. Its limitation, when it has one, says why no update can
/// take its place, and who updates it instead.
class Installation : public Service {
public:
    /// The short version text of the running program. Absent when it is not known.
    virtual std::optional<QString> version() const = 0;

    /// The absolute path of the application bundle that the program runs from. Empty when it runs from none.
    virtual QString bundle() const = 0;

    /// The short version text of a bundle of this program as it lies on the disk now. Absent when it does not
    /// say.
    virtual std::optional<QString> versionOf(const QString &bundle) const = 0;

    /// What another process put in the place of this copy since it started: a bundle of another version, or
    /// the program of a new package. Empty while nothing was.
    virtual QString successor() const = 0;

    /// Tells once a package manager has put a successor in place. On the main thread.
    virtual void onSuccessor(std::function<void()> handler) = 0;

    /// The folder for temporary files, which only this user can open; made when it is missing. Empty when it
    /// cannot be had.
    virtual QString temporaryFolder() = 0;

    /// Whether a release came whose image bore a good signature of its own: from then on each must. Kept
    /// beside the store, not in it, for every process that updates has to know and tell it, whoever has the
    /// store.
    virtual bool wereImagesSigned() const = 0;
    virtual void keepThatImagesAreSigned() = 0;

    /// Begins the replacing of this copy, which `script` is to end: the shell runs that when we are gone.
    /// False while an earlier replacing goes on, by this process, by another, or by such a script. It goes on
    /// until it is abandoned or this process ends. On any one thread.
    virtual bool beginReplacing(const QString &script) = 0;
    virtual void abandonReplacing() = 0;
};

/// This system's answer by itself. Needs the application object, but no display.
std::unique_ptr<Installation> makeInstallation();

} // namespace pavonel
