#pragma once

#include "Core/Settings.h"
#include "Platform/BackgroundTask.h"

#include <QImage>

#include <chrono>
#include <functional>
#include <list>
#include <vector>

namespace pavonel {

/// The images behind the break screens, one for all windows of a size, each made once and kept until the
/// settings change or `clear`. The user's picture is loaded aside; the theme's gradient stands in for it
/// meanwhile, and for good where there is no readable picture.
class Backgrounds {
public:
    Backgrounds(const Settings &settings, MainLoop &loop);

    /// Begins to load the user's picture for windows of these sizes in device pixels, unless that is under
    /// way.
    void prepare(const std::vector<QSize> &sizes);

    /// Waits for pictures whose loading began just now: most are there so soon that nobody needs to see the
    /// gradient first.
    void awaitPictures();

    /// What to draw now in a window of this size in device pixels. Null when there is no memory for it. Valid
    /// until the next call.
    const QImage &image(QSize devicePixels);

    /// Called when `image` answers anew because a picture has been loaded.
    std::function<void()> onLoaded;

    void clear();

private:
    struct Entry {
        QSize size;
        QImage picture;
        QImage gradient; ///< Made when it is needed.
    };

    Entry *find(QSize size);
    void load(const std::vector<QSize> &sizes);
    void take(const std::vector<QImage> &pictures);

    const Settings &settings_;
    MainLoop &loop_;
    int style_ = 0; ///< What the entries were made for.
    QString path_;
    std::list<Entry> entries_;
    std::vector<BackgroundTask> loadings_;
    std::chrono::steady_clock::time_point lastLoading_;
};

} // namespace pavonel
