#pragma once

#include "UI/Controls/Visuals.h"
#include "UI/Refresher.h"
#include "UI/SettingsWindow/Page.h"

#include <QWidget>

namespace pavonel {

class PageView;
class Sidebar;

/// Which page the settings window shows; outlives its opening and closing.
class SettingsSelection final : public Observable {
public:
    Published<Page> page{*this, Page::breaks};
};

/// The settings window's root: the sidebar and the selected page. Only that page's widgets exist, and only
/// while the window is shown.
class SettingsView : public QWidget {
public:
    SettingsView(const PageContext &context, SettingsSelection &selection);
    ~SettingsView() override;

    /// Where it is kept that the user has seen the page of the phone.
    static const QString phonePageSeenKey;

    /// These points at the ordinary text size, as larger as the user's text is.
    QSize grown(const QSize &points) const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void makeSidebar();
    void showSelected();
    void dropPage();
    void giveUpPixels();
    void followAppearance();

    PageContext context_;
    SettingsSelection &selection_;
    Visuals visuals_;
    Sidebar *sidebar_ = nullptr;
    PageView *page_ = nullptr;
    Page shown_ = Page::breaks; ///< What `page_` is.
    Refresher onSelection_;
    Refresher onSettings_;
    Appearance::Listening onAppearance_;
};

} // namespace pavonel
