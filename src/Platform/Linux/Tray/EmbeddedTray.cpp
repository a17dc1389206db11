#include "Platform/Linux/Tray/EmbeddedTray.h"

#include "Platform/Linux/Tray/IconFiles.h"
#include "Platform/Linux/X11/X11Points.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cstring>
#include <utility>

#include <xcb/xcb_icccm.h>

namespace pavonel {

namespace {

constexpr int gap = 4;          // pixels between the icon and the title, and at the end
constexpr int usualHeight = 22; // until the tray says how high it is

/// In pixels. A tray may say anything, and a larger picture than the server takes would end our connection.
constexpr QSize largest(4096, 256);

QFont titleFont(int height) {
    QFont font;
    font.setPixelSize(std::max(8, height * 11 / 20));
    return font;
}

/// Every digit as wide as the widest, so that the place does not change with each second.
QString widest(QString title) {
    for (QChar &character : title) {
        if (character.isDigit())
            character = u'0';
    }
    return title;
}

QColor inkOn(const QImage &background) {
    const QColor colour = background.pixelColor(background.width() / 2, background.height() / 2);
    return qGray(colour.rgb()) < 128 ? QColor(0xF2, 0xF2, 0xF4) : QColor(0x2A, 0x2A, 0x2E);
}

const QImage &fitting(const std::vector<QImage> &images, int side) {
    const auto found = std::find_if(images.begin(), images.end(),
                                    [side](const QImage &image) { return image.width() >= side; });
    return found == images.end() ? images.back() : *found;
}

} // namespace

EmbeddedTray::EmbeddedTray(std::shared_ptr<X11Connection> x, std::function<void()> presenceChanged,
                           std::function<void(const TrayPlace &)> showMenu)
    : x_(std::move(x)), presenceChanged_(std::move(presenceChanged)), showMenu_(std::move(showMenu)) {
    listening_ = x_->listen([this](const xcb_generic_event_t &event) { handle(event); });
    watchingRoot_ = x_->watch(x_->root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    findManager();
}

EmbeddedTray::~EmbeddedTray() {
    undock();
}

void EmbeddedTray::findManager() {
    const QByteArray name = "_NET_SYSTEM_TRAY_S" + QByteArray::number(x_->screenNumber());
    const XReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        x_->xcb(), xcb_get_selection_owner(x_->xcb(), x_->atom(name.constData())), nullptr));
    manager_ = reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
    watchingManager_ = isPresent() ? x_->watch(manager_, XCB_EVENT_MASK_STRUCTURE_NOTIFY) : nullptr;
}

void EmbeddedTray::setVisible(bool visible) {
    visible_ = visible;
    if (visible_ && isPresent() && window_ == XCB_WINDOW_NONE)
        dock();
    else if (!visible_)
        undock();
}

void EmbeddedTray::setIcon(const std::vector<QImage> &images) {
    images_ = images;
    draw();
}

void EmbeddedTray::setTitle(const QString &title) {
    title_ = title;
    resizeToContent();
    draw();
}

void EmbeddedTray::handle(const xcb_generic_event_t &event) {
    switch (event.response_type & 0x7f) {
    case XCB_CLIENT_MESSAGE:
        if (reinterpret_cast<const xcb_client_message_event_t &>(event).type == x_->atom("MANAGER") &&
            !isPresent()) {
            findManager();
            presenceChanged_();
        }
        break;
    case XCB_DESTROY_NOTIFY: {
        const xcb_window_t gone = reinterpret_cast<const xcb_destroy_notify_event_t &>(event).window;
        if (gone == window_)
            window_ = XCB_WINDOW_NONE;
        if (gone == manager_ && isPresent()) {
            undock();
            findManager(); // another may have taken over already
            presenceChanged_();
        }
        break;
    }
    case XCB_CONFIGURE_NOTIFY: {
        const auto &configured = reinterpret_cast<const xcb_configure_notify_event_t &>(event);
        const QSize given = QSize(configured.width, configured.height).boundedTo(largest);
        if (configured.window == window_ && size_ != given) {
            size_ = given;
            resizeToContent();
            draw();
        }
        break;
    }
    case XCB_EXPOSE:
        if (reinterpret_cast<const xcb_expose_event_t &>(event).window == window_)
            draw();
        break;
    case XCB_BUTTON_PRESS: {
        const auto &press = reinterpret_cast<const xcb_button_press_event_t &>(event);
        if (press.event == window_ &&
            (press.detail == XCB_BUTTON_INDEX_1 || press.detail == XCB_BUTTON_INDEX_3))
            openMenu();
        break;
    }
    }
}

void EmbeddedTray::openMenu() {
    xcb_ungrab_pointer(x_->xcb(),
                       XCB_CURRENT_TIME); // the press holds it for our window, and the menu needs it
    showMenu_(place());
}

/// In the tray, which can be a part of a larger panel; that one is a child of the root window, or of a frame.
TrayPlace EmbeddedTray::place() {
    xcb_window_t panel = window_;
    for (;;) {
        const XReply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(x_->xcb(), xcb_query_tree(x_->xcb(), panel), nullptr));
        if (!tree || tree->parent == x_->root() || tree->parent == XCB_WINDOW_NONE)
            break;
        panel = tree->parent;
    }
    const auto points = [this](xcb_window_t window) {
        return pointsOfPixels(x_->frame(window).value_or(QRect())).toRect();
    };
    return {points(window_), points(panel)};
}

void EmbeddedTray::dock() {
    window_ = xcb_generate_id(x_->xcb());
    size_ = {1, usualHeight};
    size_.setWidth(wantedWidth());
    const std::uint32_t background = XCB_BACK_PIXMAP_PARENT_RELATIVE;
    xcb_create_window(x_->xcb(), XCB_COPY_FROM_PARENT, window_, x_->root(), 0, 0,
                      static_cast<std::uint16_t>(size_.width()), usualHeight, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXMAP, &background);
    watchingWindow_ = x_->watch(window_, XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                             XCB_EVENT_MASK_BUTTON_PRESS);
    const std::uint32_t versionAndMapped[] = {0, 1};
    const xcb_atom_t info = x_->atom("_XEMBED_INFO");
    xcb_change_property(x_->xcb(), XCB_PROP_MODE_REPLACE, window_, info, info, 32, 2, versionAndMapped);
    constexpr char windowClass[] = "pavonel\0pavonel";
    xcb_icccm_set_wm_class(x_->xcb(), window_, sizeof windowClass, windowClass);
    constexpr char name[] = "Pavonel";
    xcb_icccm_set_wm_name(x_->xcb(), window_, XCB_ATOM_STRING, 8, sizeof name - 1, name);
    hintSize();

    constexpr std::uint32_t requestDock = 0;
    xcb_client_message_event_t request{};
    request.response_type = XCB_CLIENT_MESSAGE;
    request.format = 32;
    request.window = manager_;
    request.type = x_->atom("_NET_SYSTEM_TRAY_OPCODE");
    request.data.data32[0] = XCB_CURRENT_TIME;
    request.data.data32[1] = requestDock;
    request.data.data32[2] = window_;
    xcb_send_event(x_->xcb(), 0, manager_, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&request));
    x_->flush();
}

void EmbeddedTray::undock() {
    watchingWindow_.reset();
    const xcb_window_t window = std::exchange(window_, xcb_window_t{XCB_WINDOW_NONE});
    if (window == XCB_WINDOW_NONE)
        return;
    xcb_destroy_window(x_->xcb(), window);
    x_->flush();
}

int EmbeddedTray::wantedWidth() const {
    if (title_.isEmpty())
        return size_.height();
    return size_.height() + QFontMetrics(titleFont(size_.height())).horizontalAdvance(widest(title_)) + gap;
}

void EmbeddedTray::resizeToContent() {
    if (window_ == XCB_WINDOW_NONE || size_.width() == wantedWidth())
        return;
    hintSize();
    const auto width = static_cast<std::uint32_t>(wantedWidth());
    xcb_configure_window(x_->xcb(), window_, XCB_CONFIG_WINDOW_WIDTH, &width);
    x_->flush();
}

void EmbeddedTray::hintSize() {
    xcb_size_hints_t hints{};
    xcb_icccm_size_hints_set_min_size(&hints, wantedWidth(), size_.height()); // by which trays go
    xcb_icccm_set_wm_normal_hints(x_->xcb(), window_, &hints);
}

void EmbeddedTray::draw() {
    if (window_ == XCB_WINDOW_NONE || images_.empty())
        return;
    QImage canvas = background();
    if (canvas.isNull())
        return;
    const QColor ink = inkOn(canvas);
    const int side = std::min(canvas.height(), canvas.width());
    const int iconSide = side * 8 / 10;
    const int margin = (side - iconSide) / 2;
    QPainter painter(&canvas);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    QImage icon = tinted(fitting(images_, iconSide), ink);
    icon.setDevicePixelRatio(1);
    painter.drawImage(QRect(margin, (canvas.height() - iconSide) / 2, iconSide, iconSide), icon);
    painter.setPen(ink);
    painter.setFont(titleFont(canvas.height()));
    painter.drawText(QRect(side, 0, canvas.width() - side, canvas.height()), Qt::AlignLeft | Qt::AlignVCenter,
                     title_);
    painter.end();
    put(canvas);
}

/// What the tray shows behind us: our window is cleared to it and read back.
QImage EmbeddedTray::background() {
    const auto width = static_cast<std::uint16_t>(size_.width());
    const auto height = static_cast<std::uint16_t>(size_.height());
    xcb_clear_area(x_->xcb(), 0, window_, 0, 0, width, height);
    const XReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(
        x_->xcb(), xcb_get_image(x_->xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP, window_, 0, 0, width, height, ~0U),
        nullptr));
    if (!reply || xcb_get_image_data_length(reply.get()) < width * height * 4)
        return {};
    QImage image(size_, QImage::Format_RGB32);
    std::memcpy(image.bits(), xcb_get_image_data(reply.get()), static_cast<std::size_t>(image.sizeInBytes()));
    return image;
}

void EmbeddedTray::put(const QImage &image) {
    const XReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(x_->xcb(), xcb_get_geometry(x_->xcb(), window_), nullptr));
    if (!geometry)
        return;
    const xcb_gcontext_t context = xcb_generate_id(x_->xcb());
    xcb_create_gc(x_->xcb(), context, window_, 0, nullptr);
    xcb_put_image(x_->xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP, window_, context,
                  static_cast<std::uint16_t>(image.width()), static_cast<std::uint16_t>(image.height()), 0, 0,
                  0, geometry->depth, static_cast<std::uint32_t>(image.sizeInBytes()), image.constBits());
    xcb_free_gc(x_->xcb(), context);
    x_->flush();
}

} // namespace pavonel
