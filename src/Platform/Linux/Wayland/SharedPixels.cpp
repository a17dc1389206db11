#include "Platform/Linux/Wayland/SharedPixels.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include <sys/mman.h>
#include <unistd.h>
#include <wayland-client.h>

namespace pavonel {

namespace {

constexpr std::size_t bytesOfPixel = 4;

std::size_t bytesOf(QSize size) {
    return bytesOfPixel * static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height());
}

void copy(const QImage &from, QImage &to, const QRect &pixels) {
    const auto begin = bytesOfPixel * static_cast<std::size_t>(pixels.left());
    const auto length = bytesOfPixel * static_cast<std::size_t>(pixels.width());
    for (int y = pixels.top(); y <= pixels.bottom(); ++y)
        std::memcpy(to.scanLine(y) + begin, from.constScanLine(y) + begin, length);
}

} // namespace

std::unique_ptr<SharedPixels> SharedPixels::make(wl_shm &shm, QSize size, std::function<void()> released) {
    const std::size_t bytes = bytesOf(size);
    const std::size_t all = 2 * bytes;
    const int file = memfd_create("pavonel", MFD_CLOEXEC);
    if (file < 0)
        return nullptr;
    void *memory = MAP_FAILED;
    if (ftruncate(file, static_cast<off_t>(all)) == 0)
        memory = mmap(nullptr, all, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    std::unique_ptr<SharedPixels> shared;
    if (memory != MAP_FAILED) {
        shared.reset(new SharedPixels(memory, size, std::move(released)));
        wl_shm_pool *pool = wl_shm_create_pool(&shm, file, static_cast<std::int32_t>(all));
        for (Picture &picture : shared->pictures_)
            shared->share(picture, *pool);
        wl_shm_pool_destroy(pool);
    }
    close(file);
    return shared;
}

void SharedPixels::share(Picture &picture, wl_shm_pool &pool) {
    static const wl_buffer_listener listener{[](void *released, wl_buffer *) {
        static_cast<Picture *>(released)->isRead = false;
        static_cast<Picture *>(released)->owner->released_();
    }};
    const QImage &pixels = picture.pixels;
    const auto offset = pixels.constBits() - static_cast<const uchar *>(memory_);
    picture.buffer =
        wl_shm_pool_create_buffer(&pool, static_cast<std::int32_t>(offset), pixels.width(), pixels.height(),
                                  static_cast<std::int32_t>(pixels.bytesPerLine()), WL_SHM_FORMAT_XRGB8888);
    wl_buffer_add_listener(picture.buffer, &listener, &picture);
}

SharedPixels::SharedPixels(void *memory, QSize size, std::function<void()> released)
    : memory_(memory), bytes_(2 * bytesOf(size)), released_(std::move(released)) {
    auto *begin = static_cast<uchar *>(memory);
    for (Picture &picture : pictures_) {
        picture.pixels = QImage(begin, size.width(), size.height(), QImage::Format_RGB32);
        picture.outdated = picture.pixels.rect();
        picture.owner = this;
        begin += bytesOf(size);
    }
}

SharedPixels::~SharedPixels() {
    for (Picture &picture : pictures_)
        wl_buffer_destroy(picture.buffer);
    munmap(memory_, bytes_);
}

void SharedPixels::markChanged(const QRect &pixels) {
    for (Picture &picture : pictures_)
        picture.outdated |= pixels;
}

wl_buffer *SharedPixels::copyOf(const QImage &source) {
    const auto free = std::ranges::find(pictures_, false, &Picture::isRead);
    if (free == pictures_.end())
        return nullptr;
    copy(source, free->pixels, std::exchange(free->outdated, QRect()));
    free->isRead = true;
    return free->buffer;
}

} // namespace pavonel
