#pragma once

#include <QImage>

#include <array>
#include <functional>
#include <memory>

struct wl_buffer;
struct wl_shm;
struct wl_shm_pool;

namespace pavonel {

/// Two pictures in memory that the compositor reads too: while it reads one, the other can be written.
class SharedPixels {
public:
    /// Null when there is no memory to be had. `released` is called whenever a picture may be written again.
    static std::unique_ptr<SharedPixels> make(wl_shm &shm, QSize size, std::function<void()> released);
    SharedPixels(const SharedPixels &) = delete;
    SharedPixels &operator=(const SharedPixels &) = delete;
    ~SharedPixels();

    /// Tells of pixels that differ from now on.
    void markChanged(const QRect &pixels);

    /// A picture that is like the source in all that was ever marked as changed, for the compositor to read;
    /// null while it reads both.
    wl_buffer *copyOf(const QImage &source);

private:
    SharedPixels(void *memory, QSize size, std::function<void()> released);

    struct Picture {
        wl_buffer *buffer = nullptr;
        QImage pixels;
        QRect outdated;
        bool isRead = false;
        SharedPixels *owner = nullptr;
    };

    void share(Picture &picture, wl_shm_pool &pool);

    void *memory_;
    std::size_t bytes_;
    std::function<void()> released_;
    std::array<Picture, 2> pictures_;
};

} // namespace pavonel
