#include "UI/Backgrounds.h"

#include "UI/BackgroundImage.h"
#include "UI/Theme.h"

#include <algorithm>
#include <chrono>
#include <future>

namespace pavonel {

struct Backgrounds::Loading {
    QString path;
    QSize size;
    QImage picture;
    std::promise<void> done;
};

Backgrounds::Backgrounds(const Settings &settings, MainLoop &loop) : settings_(settings), loop_(loop) {}

Backgrounds::~Backgrounds() = default;

const QImage &Backgrounds::image(QSize devicePixels) {
    if (style_ != settings_.backgroundStyle || path_ != settings_.customBackgroundPath.get())
        clear();
    const auto known =
        std::ranges::find_if(entries_, [&](const Entry &entry) { return entry.size == devicePixels; });
    if (known != entries_.end())
        return known->image;
    if (entries_.empty()) {
        style_ = settings_.backgroundStyle;
        path_ = settings_.customBackgroundPath;
        wanted_ = std::make_shared<bool>(true);
    }
    entries_.push_back({devicePixels, gradientImage(Theme::gradient(style_), devicePixels)});
    Entry &entry = entries_.back();
    if (!path_.isEmpty())
        load(entry);
    return entry.image;
}

void Backgrounds::clear() {
    entries_.clear();
    wanted_.reset();
}

void Backgrounds::load(Entry &entry) {
    const auto loading = std::make_shared<Loading>();
    loading->path = path_;
    loading->size = entry.size;
    const auto done = loading->done.get_future();
    loaders_.start([this, loading, wanted = std::weak_ptr(wanted_), &loop = loop_] {
        loading->picture = pictureImage(loading->path, loading->size);
        loading->done.set_value();
        loop.post([this, loading, wanted] {
            if (wanted.lock())
                take(*loading);
        });
    });
    // Most pictures are there so soon that nobody needs to see the gradient first.
    constexpr std::chrono::milliseconds patience{120};
    if (done.wait_for(patience) == std::future_status::ready && !loading->picture.isNull())
        entry.image = loading->picture;
}

void Backgrounds::take(const Loading &loading) {
    if (loading.picture.isNull())
        return;
    for (Entry &entry : entries_) {
        if (entry.size != loading.size || entry.image.cacheKey() == loading.picture.cacheKey())
            continue;
        entry.image = loading.picture;
        if (onLoaded)
            onLoaded();
    }
}

} // namespace pavonel
