#include "Platform/Linux/X11/X11Inset.h"

#include <QWindow>

#include <algorithm>
#include <utility>

namespace pavonel {

namespace {

std::int16_t place(double pixels) {
    return static_cast<std::int16_t>(qRound(pixels));
}

std::uint16_t length(int pixels) {
    return static_cast<std::uint16_t>(pixels);
}

/// Whether a pixel of the server's is one of our picture's.
bool isLikeOurs(const xcb_setup_t &setup, std::uint8_t depth) {
    constexpr int bitsOfColour = 24;
    constexpr int bitsOfPixel = 32;
    if (depth != bitsOfColour && depth != bitsOfPixel)
        return false;
    const auto order =
        Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? XCB_IMAGE_ORDER_LSB_FIRST : XCB_IMAGE_ORDER_MSB_FIRST;
    const xcb_format_t *formats = xcb_setup_pixmap_formats(&setup);
    return setup.image_byte_order == order &&
           std::any_of(formats, formats + xcb_setup_pixmap_formats_length(&setup), [&](const auto &format) {
               return format.depth == depth && format.bits_per_pixel == bitsOfPixel;
           });
}

} // namespace

std::unique_ptr<X11Inset> X11Inset::make(std::shared_ptr<X11Connection> connection, QWindow &window,
                                         const QRect &points) {
    xcb_connection_t *xcb = connection->xcb();
    const auto parent = static_cast<xcb_window_t>(window.winId());
    const XReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(xcb, xcb_get_geometry(xcb, parent), nullptr));
    if (!geometry || !isLikeOurs(*xcb_get_setup(xcb), geometry->depth))
        return nullptr;
    return std::unique_ptr<X11Inset>(new X11Inset(std::move(connection), window, points, geometry->depth));
}

X11Inset::X11Inset(std::shared_ptr<X11Connection> connection, QWindow &window, const QRect &points,
                   std::uint8_t depth)
    : Inset(points.size(), window.devicePixelRatio()), connection_(std::move(connection)), depth_(depth),
      window_(xcb_generate_id(connection_->xcb())), stored_(xcb_generate_id(connection_->xcb())),
      context_(xcb_generate_id(connection_->xcb())) {
    xcb_connection_t *xcb = connection_->xcb();
    const double ratio = window.devicePixelRatio();
    const auto parent = static_cast<xcb_window_t>(window.winId());
    const QSize size = picture().size();
    xcb_create_pixmap(xcb, depth_, stored_, parent, length(size.width()), length(size.height()));
    xcb_create_gc(xcb, context_, stored_, 0, nullptr);
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, window_, parent, place(points.x() * ratio),
                      place(points.y() * ratio), length(size.width()), length(size.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
}

X11Inset::~X11Inset() {
    xcb_destroy_window(connection_->xcb(), window_);
    xcb_free_gc(connection_->xcb(), context_);
    xcb_free_pixmap(connection_->xcb(), stored_);
    connection_->flush();
}

void X11Inset::show(const QRect &pixels) {
    const QRect changed = isMapped_ ? pixels & picture().rect() : picture().rect();
    if (changed.isEmpty())
        return;
    send(changed);
    // A server may keep a copy: it is told anew.
    xcb_change_window_attributes(connection_->xcb(), window_, XCB_CW_BACK_PIXMAP, &stored_);
    if (std::exchange(isMapped_, true))
        xcb_clear_area(connection_->xcb(), 0, window_, place(changed.x()), place(changed.y()),
                       length(changed.width()), length(changed.height()));
    else
        xcb_map_window(connection_->xcb(), window_);
    connection_->flush();
}

/// In as many requests as it takes: their size is limited.
void X11Inset::send(const QRect &pixels) {
    const QImage piece = picture().copy(pixels);
    constexpr std::uint32_t header = 64; // and more than that
    const std::uint32_t most = 4 * xcb_get_maximum_request_length(connection_->xcb()) - header;
    const auto line = static_cast<std::uint32_t>(piece.bytesPerLine());
    const int lines = std::max(1, static_cast<int>(most / line));
    for (int y = 0; y < piece.height(); y += lines) {
        const int count = std::min(lines, piece.height() - y);
        xcb_put_image(connection_->xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP, stored_, context_, length(piece.width()),
                      length(count), place(pixels.x()), place(pixels.y() + y), 0, depth_,
                      static_cast<std::uint32_t>(count) * line, piece.constScanLine(y));
    }
}

} // namespace pavonel
