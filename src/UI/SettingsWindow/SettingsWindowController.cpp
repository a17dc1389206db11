#include "UI/SettingsWindow/SettingsWindowController.h"

#include "Core/Settings.h"
#include "Platform/Appearance.h"
#include "Platform/DesktopExtension.h"
#include "Platform/UserDefaults.h"
#include "UI/Controls/Accessibility.h"
#include "UI/Controls/Layouts.h"
#include "UI/Controls/ScrollArea.h"
#include "UI/Refresher.h"
#include "UI/SettingsWindow/Rows/Rows.h"
#include "UI/SettingsWindow/Sidebar.h"
#include "UI/Style/Visuals.h"
#include "UI/Symbol.h"

#include <QBackingStore>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QScrollBar>
#include <QShowEvent>

#include <algorithm>

namespace pavonel {

namespace {

constexpr QColor brandColour(0x16, 0x8F, 0x9A); // on light and on dark title bars

/// The window's root: the sidebar and the selected page. Only that page's widgets exist, and only while the
/// window is shown.
class SettingsView final : public QWidget {
public:
    SettingsView(const PageContext &context, SettingsSelection &selection)
        : context_(context), selection_(selection),
          onSelection_(context.display.loop, {&selection}, [this] { showSelected(); }),
          onSettings_(context.display.loop, {&context.settings}, [this] { refreshPage(); }),
          onAppearance_(visuals().appearance().onChange([this] { followAppearance(); })) {
        context_.desktopExtension.onChange([this] { refreshPage(); });
        setAccessibleRole(*this, QAccessible::Window);
        line(this);
        setPalette(visuals().toolkitPalette());
    }

    ~SettingsView() override { context_.desktopExtension.onChange({}); }

protected:
    void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(rect(), visuals().palette().window); }

    /// What nothing in it wanted: ways to close it, and to scroll from wherever the keyboard is.
    void keyPressEvent(QKeyEvent *event) override {
        if (event->matches(QKeySequence::Close) || event->key() == Qt::Key_Escape) {
            close();
        } else if (page_ && (event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown)) {
            QCoreApplication::sendEvent(page_->verticalScrollBar(), event);
        } else {
            QWidget::keyPressEvent(event);
        }
    }
    void showEvent(QShowEvent *event) override {
        if (!event->spontaneous())
            build();
    }
    /// Rebuilt from the loop, since all that stands in it is being told of the new size.
    bool event(QEvent *event) override {
        if (event->type() == QEvent::ApplicationFontChange)
            QMetaObject::invokeMethod(
                this, [this] { build(); }, Qt::QueuedConnection);
        return QWidget::event(event);
    }
    void hideEvent(QHideEvent *event) override {
        if (event->spontaneous())
            return; // to the user, minimised is still open
        dropPage();
        // They are most of what a hidden window takes; the next showing makes them anew.
        if (QBackingStore *pixels = backingStore())
            pixels->resize(QSize(1, 1));
    }

private:
    /// With the user's text as large as it is now.
    void build() {
        if (!isVisible())
            return;
        dropPage();
        delete sidebar_;
        sidebar_ = new Sidebar;
        sidebar_->onSelect = [this](Page page) {
            selection_.page = page;
            showSelected();
        };
        static_cast<QBoxLayout *>(layout())->insertWidget(0, sidebar_);
        sidebar_->show();
        showSelected();
    }

    void showSelected() {
        const Page wanted = selection_.page;
        if (!isVisible() || (page_ && shown_ == wanted))
            return;
        dropPage();
        sidebar_->select(wanted);
        page_ = makePage(wanted, context_);
        shown_ = wanted;
        static_cast<QBoxLayout *>(layout())->addWidget(page_, 1);
        page_->show();
        if (wanted == Page::phone) // the user has seen it
            context_.defaults.set(QStringLiteral("phonePageSeen"), true);
    }

    void refreshPage() {
        const auto children = page_ ? page_->findChildren<QObject *>() : QObjectList();
        for (QObject *child : children) {
            if (auto *follower = dynamic_cast<Follower *>(child))
                follower->refresh();
        }
    }

    void dropPage() {
        delete page_;
        page_ = nullptr;
    }

    void followAppearance() {
        setPalette(visuals().toolkitPalette()); // and thereby a repaint of everything
        update();
    }

    PageContext context_;
    SettingsSelection &selection_;
    Sidebar *sidebar_ = nullptr;
    ScrollArea *page_ = nullptr;
    Page shown_ = Page::breaks; ///< What `page_` is.
    Refresher onSelection_;
    Refresher onSettings_;
    Appearance::Listening onAppearance_;
};

/// Larger with a larger text, as far as the screen goes, and in its middle.
void fit(QWidget &window) {
    const QScreen *screen = QGuiApplication::primaryScreen();
    const QRect free = screen ? screen->availableGeometry() : QRect();
    const auto fitting = [&](const QSize &points) {
        const QSize grown(visuals().length(points.width()), visuals().length(points.height()));
        return windowPlace(free, grown.boundedTo(free.size() * 0.9).expandedTo(points));
    };
    window.setMinimumSize(fitting({660, 400}).size());
    window.setGeometry(fitting({800, 560}));
}

} // namespace

QRect windowPlace(const QRect &free, const QSize &wanted) {
    constexpr int titleBar = 40; // at most, and the frame
    const QRect room = free.adjusted(0, titleBar, 0, 0);
    QRect place({}, wanted.boundedTo(room.size()));
    place.moveCenter(free.center());
    place.moveTop(std::max(place.top(), room.top()));
    return place;
}

SettingsWindowController::SettingsWindowController(const PageContext &context) : context_(context) {}

SettingsWindowController::~SettingsWindowController() = default;

void SettingsWindowController::show(std::optional<Page> page) {
    if (page)
        selection.page = *page;
    if (!window_) {
        auto window = std::make_unique<SettingsView>(context_, selection);
        window->setWindowTitle(QStringLiteral("Pavonel"));
        window->setWindowIcon(QPixmap::fromImage(Symbol::mark(brandColour, 2)));
        fit(*window);
        window_ = std::move(window);
    }
    window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    window_->show();
    window_->raise();
    window_->activateWindow();
}

} // namespace pavonel
