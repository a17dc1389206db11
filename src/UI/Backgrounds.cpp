#include "UI/Backgrounds.h"

#include "Platform/ForeignFile.h"
#include "UI/BackgroundImage.h"
#include "UI/Theme.h"

#include <algorithm>

namespace pavonel {

namespace {

using Clock = std::chrono::steady_clock;

std::vector<QImage> loadPictures(const QString &path, const std::vector<QSize> &sizes) {
    std::vector<QImage> pictures;
    if (const auto file = readForeignFile(path, largestPictureFile)) {
        for (const QSize size : sizes)
            pictures.push_back(pictureImage(*file, size));
    }
    return pictures;
}

} // namespace

Backgrounds::Backgrounds(const Settings &settings, MainLoop &loop) : settings_(settings), loop_(loop) {}

void Backgrounds::prepare(const std::vector<QSize> &sizes) {
    if (style_ != settings_.backgroundStyle || path_ != settings_.customBackgroundPath.get())
        clear();
    style_ = settings_.backgroundStyle;
    path_ = settings_.customBackgroundPath;
    std::vector<QSize> missing;
    for (const QSize size : sizes) {
        if (find(size))
            continue;
        entries_.push_back({size, {}, {}});
        missing.push_back(size);
    }
    if (!path_.isEmpty() && !missing.empty())
        load(missing);
}

void Backgrounds::load(const std::vector<QSize> &sizes) {
    lastLoading_ = Clock::now();
    loadings_.push_back(BackgroundTask::start(loop_, [this, path = path_, sizes]() -> BackgroundTask::Action {
        return [this, pictures = loadPictures(path, sizes)] { take(pictures); };
    }));
}

void Backgrounds::awaitPictures() {
    constexpr std::chrono::milliseconds timeout{250};
    const auto deadline = lastLoading_ + timeout;
    for (std::size_t i = 0; i < loadings_.size(); ++i) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        loadings_[i].await(std::max(left, std::chrono::milliseconds::zero()));
    }
}

const QImage &Backgrounds::image(QSize devicePixels) {
    prepare({devicePixels});
    Entry &entry = *find(devicePixels);
    if (!entry.picture.isNull())
        return entry.picture;
    if (entry.gradient.isNull())
        entry.gradient = gradientImage(Theme::gradient(style_), devicePixels);
    return entry.gradient;
}

void Backgrounds::clear() {
    entries_.clear();
    loadings_.clear();
}

Backgrounds::Entry *Backgrounds::find(QSize size) {
    const auto found = std::ranges::find(entries_, size, &Entry::size);
    return found == entries_.end() ? nullptr : &*found;
}

void Backgrounds::take(const std::vector<QImage> &pictures) {
    bool isNew = false;
    for (const QImage &picture : pictures) {
        Entry *entry = find(picture.size());
        if (!entry)
            continue;
        *entry = {picture.size(), picture, {}};
        isNew = true;
    }
    if (isNew && onLoaded)
        onLoaded();
}

} // namespace pavonel
