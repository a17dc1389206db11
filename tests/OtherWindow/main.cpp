#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QWidget>

#include <cstdio>
#include <string_view>

namespace {

void tell(const QByteArray &line) {
    std::printf("%s\n", line.constData());
    std::fflush(stdout);
}

/// Tells on its standard output of all that happens to it.
class Window final : public QWidget {
    bool event(QEvent *event) override {
        if (event->type() == QEvent::WindowActivate)
            tell("active");
        else if (event->type() == QEvent::WindowDeactivate)
            tell("inactive");
        return QWidget::event(event);
    }
    void keyPressEvent(QKeyEvent *event) override { tell("key " + QByteArray::number(event->key())); }
    void mousePressEvent(QMouseEvent *) override { tell("click"); }
    void paintEvent(QPaintEvent *) override {
        QPainter(this).fillRect(rect(), Qt::cyan);
        tell("painted " + QByteArray::number(width()) + 'x' + QByteArray::number(height()));
    }
};

} // namespace

/// A program with one cyan window, which tests put beside Pavonel: other-window NAME [fullscreen].
int main(int argc, char **argv) {
    QApplication application(argc, argv);
    const QString name = QString::fromLocal8Bit(argc > 1 ? argv[1] : "other");
    QGuiApplication::setDesktopFileName(name);
    Window window;
    window.setWindowTitle(name);
    window.resize(400, 300);
    if (argc > 2 && std::string_view(argv[2]) == "fullscreen")
        window.showFullScreen();
    else
        window.show();
    return QApplication::exec();
}
