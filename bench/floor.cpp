#include <QApplication>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

/// In one colour.
class Plain final : public QWidget {
    void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(rect(), Qt::black); }
};

using Windows = std::vector<std::unique_ptr<Plain>>;

Windows coverEveryScreen() {
    Windows windows;
    const auto screens = QGuiApplication::screens();
    for (const QScreen *screen : screens) {
        auto &window = *windows.emplace_back(std::make_unique<Plain>());
        window.setWindowTitle(QStringLiteral("Floor"));
        window.setWindowFlags(Qt::Tool | Qt::FramelessWindowHint);
        window.setGeometry(screen->geometry());
        window.show();
    }
    return windows;
}

} // namespace

/// By name, so that one who traces the program can see when a second has passed.
[[gnu::noinline]] void tick();
void tick() {}

/// The least that a program of Qt's does, to be measured beside Pavonel: it has a timer of one second and
/// says a word when its loop runs. Given SECONDS, it covers every screen for so long three seconds later, and
/// says so.
int main(int argc, char **argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const auto say = [](const char *word) {
        std::puts(word);
        std::fflush(stdout);
    };
    Windows windows;
    QTimer clock;
    QObject::connect(&clock, &QTimer::timeout, &tick);
    clock.start(1000);
    QTimer::singleShot(0, [say] { say("runs"); });
    if (argc > 1) {
        QTimer::singleShot(3000, [&] {
            windows = coverEveryScreen();
            QTimer::singleShot(1000 * std::atoi(argv[1]), [&] {
                windows.clear();
                say("hidden");
            });
        });
    }
    return QApplication::exec();
}
