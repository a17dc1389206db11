#include "Platform/Linux/Tray/TrayStatusItem.h"

#include <utility>

namespace pavonel {

namespace {

/// Nobody tells the colour of the menu bar. On a dark desktop it is dark; on a light one it can be either, so
/// there the icon is a grey that reads on both.
QColor iconColour(bool darkDesktop) {
    return darkDesktop ? QColor(0xE8, 0xE8, 0xEA) : QColor(0x86, 0x86, 0x8C);
}

} // namespace

TrayStatusItem::TrayStatusItem(const QDBusConnection &bus, const QString &iconFolder, MainLoop &loop,
                               Appearance &appearance, const std::shared_ptr<X11Connection> &x)
    : appearance_(appearance), notifier_(
                                   bus, iconFolder, loop, [this] { chooseTray(); },
                                   [this](QPoint at) {
                                       const QRect pointer(at, at); // one point, wherever somebody says it is
                                       showMenu({pointer, pointer});
                                   }),
      onAppearance_(appearance.onChange([this] { showIcon(); })) {
    if (x) {
        embedded_ = std::make_unique<EmbeddedTray>(
            x, [this] { chooseTray(); }, [this](const TrayPlace &place) { showMenu(place); });
    }
    chooseTray();
}

void TrayStatusItem::chooseTray() {
    if (embedded_)
        embedded_->setVisible(!notifier_.isPresent());
}

QString TrayStatusItem::limitation() const {
    if (notifier_.isPresent() || (embedded_ && embedded_->isPresent()))
        return {};
    return QStringLiteral("This desktop shows no menu-bar items; start Pavonel again to open its settings.");
}

void TrayStatusItem::setIcon(const QString &name, const std::vector<QImage> &images) {
    iconName_ = name;
    images_ = images;
    showIcon();
}

/// The desktop's colours, and with them those of the menu bar, can change at any time.
void TrayStatusItem::showIcon() {
    std::vector<QImage> coloured;
    coloured.reserve(images_.size());
    for (const QImage &image : images_)
        coloured.push_back(tinted(image, iconColour(appearance_.wishes().dark)));
    notifier_.setIcon(iconName_, coloured);
    if (embedded_)
        embedded_->setIcon(images_);
}

void TrayStatusItem::setTitle(const QString &title) {
    notifier_.setTitle(title);
    if (embedded_)
        embedded_->setTitle(title);
}

void TrayStatusItem::setMenu(std::function<Menu()> makeMenu) {
    makeMenu_ = makeMenu;
    notifier_.setMenu(std::move(makeMenu));
}

void TrayStatusItem::showMenu(const TrayPlace &place) {
    if (!makeMenu_)
        return;
    openMenu_ = std::make_unique<TrayMenu>(makeMenu_());
    openMenu_->openAt(place);
}

} // namespace pavonel
