#pragma once

#include "Platform/Errand.h"
#include "UI/Controls/Look.h"

#include <QImage>
#include <QWidget>

#include <functional>

namespace pavonel {

/// A picture of the user's in small, as the break screen shows it; loaded aside, since a file can be huge or
/// far away.
class PictureThumbnail : public QWidget {
public:
    explicit PictureThumbnail(Look &look);

    /// Reads the file anew, also when it is the same one.
    void setPath(const QString &path);

    enum class State { none, loading, shown, unreadable };
    State state() const { return state_; }
    std::function<void()> onState;

    QSize sizeHint() const override { return {64, 40}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void take(const QImage &picture);

    Look &look_;
    State state_ = State::none;
    QImage picture_;
    Errand loading_;
};

} // namespace pavonel
