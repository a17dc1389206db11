#include "UI/SettingsWindow/SettingsView.h"

#include "Core/Settings.h"
#include "Platform/Appearance.h"
#include "Platform/UserDefaults.h"
#include "UI/Controls/Accessibility.h"
#include "UI/Controls/Layouts.h"
#include "UI/SettingsWindow/PageView.h"
#include "UI/SettingsWindow/Sidebar.h"

#include <QBackingStore>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QShowEvent>

namespace pavonel {

const QString SettingsView::phonePageSeenKey = QStringLiteral("phonePageSeen");

SettingsView::SettingsView(const PageContext &context, SettingsSelection &selection)
    : context_(context), selection_(selection), visuals_(context.display),
      onSelection_(context.display.loop, {&selection}, [this] { showSelected(); }),
      onSettings_(context.display.loop, {&context.settings},
                  [this] {
                      if (page_)
                          page_->refresh();
                  }),
      onAppearance_(visuals_.appearance().onChange([this] { followAppearance(); })) {
    setAccessibleRole(*this, QAccessible::Window);
    line(this);
    makeSidebar();
    setPalette(visuals_.toolkitPalette());
}

SettingsView::~SettingsView() = default;

void SettingsView::makeSidebar() {
    delete sidebar_;
    sidebar_ = new Sidebar(visuals_);
    sidebar_->onSelect = [this](Page page) {
        selection_.page = page;
        showSelected();
    };
    static_cast<QBoxLayout *>(layout())->insertWidget(0, sidebar_);
}

QSize SettingsView::grown(const QSize &points) const {
    return {visuals_.length(points.width()), visuals_.length(points.height())};
}

void SettingsView::showSelected() {
    const Page wanted = selection_.page;
    if (!isVisible() || (page_ && shown_ == wanted))
        return;
    dropPage();
    sidebar_->select(wanted);
    page_ = new PageView(visuals_, entryOf(wanted), context_);
    shown_ = wanted;
    static_cast<QBoxLayout *>(layout())->addWidget(page_, 1);
    page_->show();
    if (wanted == Page::phone)
        context_.defaults.set(phonePageSeenKey, true);
}

void SettingsView::dropPage() {
    delete page_;
    page_ = nullptr;
}

void SettingsView::followAppearance() {
    visuals_.refresh();
    setPalette(visuals_.toolkitPalette()); // and thereby a repaint of everything
    update();
}

/// What nothing in it wanted: ways to close it, and to scroll from wherever the keyboard is.
void SettingsView::keyPressEvent(QKeyEvent *event) {
    if (event->matches(QKeySequence::Close) || event->key() == Qt::Key_Escape) {
        close();
    } else if (page_ && (event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown)) {
        page_->verticalScrollBar()->triggerAction(
            event->key() == Qt::Key_PageUp ? QScrollBar::SliderPageStepSub : QScrollBar::SliderPageStepAdd);
    } else {
        QWidget::keyPressEvent(event);
    }
}

void SettingsView::showEvent(QShowEvent *event) {
    if (event->spontaneous())
        return;
    if (visuals_.refreshTextSize())
        makeSidebar();
    showSelected();
}

void SettingsView::hideEvent(QHideEvent *event) {
    if (event->spontaneous())
        return; // to the user, minimised is still open
    dropPage();
    giveUpPixels();
}

/// They are most of what a hidden window takes; the next showing makes them anew.
void SettingsView::giveUpPixels() {
    if (QBackingStore *pixels = backingStore())
        pixels->resize(QSize(1, 1));
}

void SettingsView::paintEvent(QPaintEvent *) {
    QPainter(this).fillRect(rect(), visuals_.palette().window);
}

} // namespace pavonel
