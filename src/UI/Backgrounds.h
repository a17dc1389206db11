#pragma once

#include "Core/Settings.h"

#include <QImage>
#include <QThreadPool>

#include <functional>
#include <list>
#include <memory>

namespace pavonel {

/// The images behind the break screens, one for all windows of a size, each made once and kept until the
/// settings change or `clear`. The user's picture is loaded aside; the theme's gradient stands in for it
/// meanwhile, and for good where there is no readable picture.
class Backgrounds {
public:
    Backgrounds(const Settings &settings, MainLoop &loop);
    ~Backgrounds();

    /// What to draw now in a window of this size in device pixels. Null when there is no memory for it. Valid
    /// until the next call.
    const QImage &image(QSize devicePixels);

    /// Called when `image` answers anew because a picture has been loaded.
    std::function<void()> onLoaded;

    void clear();

private:
    struct Entry {
        QSize size;
        QImage image;
    };
    struct Loading;

    void load(Entry &entry);
    void take(const Loading &loading);

    const Settings &settings_;
    MainLoop &loop_;
    int style_ = 0; ///< What the entries were made for.
    QString path_;
    std::list<Entry> entries_;
    std::shared_ptr<bool> wanted_; ///< Goes with the entries, so that a late picture finds nobody.
    QThreadPool loaders_;          ///< Waits for its threads when it goes.
};

} // namespace pavonel
