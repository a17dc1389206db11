#include "Fuzz/Target.h"
#include "Platform/Linux/Tray/DBusMenu.h"

#include <cstring>

namespace pavonel::fuzz {

namespace {

constexpr int lines = 3; // of the menu and of that in it

Menu someMenu() {
    const MenuItem command{MenuItem::Kind::command, QStringLiteral("Pause"), {}, [] {}, {}};
    const Menu inner(lines, command);
    return Menu(lines, MenuItem{MenuItem::Kind::submenu, QStringLiteral("More"), {}, {}, inner});
}

std::vector<int> numbersIn(const QByteArray &input) {
    std::vector<int> numbers(static_cast<std::size_t>(input.size()) / sizeof(int));
    if (!numbers.empty())
        std::memcpy(numbers.data(), input.constData(), numbers.size() * sizeof(int));
    return numbers;
}

/// The parent first, then its layers below.
int depth(const DBusMenuLayout &layout) {
    int deepest = 0;
    for (const DBusMenuLayout &child : layout.children)
        deepest = std::max(deepest, depth(child));
    return deepest + 1;
}

void ask(DBusMenu &menu, int question, int number, const QString &word) {
    switch (question & 3) {
    case 0: {
        const DBusMenuLayout layout = menu.layout(number, question >> 2, {word});
        require(depth(layout) <= lines);
        require(layout.properties.size() <= 1); // no more than was asked for
        break;
    }
    case 1:
        menu.take(number, word);
        break;
    default:
        menu.aboutToShow(number);
    }
}

} // namespace

/// A word, a zero byte, and pairs of numbers: the question, and the item that it is about.
void trayMenu(const QByteArray &input) {
    DBusMenu menu;
    menu.setMaker(someMenu);
    const qsizetype end = std::max<qsizetype>(input.indexOf('\0'), 0);
    const QString word = QString::fromUtf8(input.left(end));
    const std::vector<int> numbers = numbersIn(input.mid(end + 1));
    for (std::size_t at = 0; at + 1 < numbers.size(); at += 2)
        ask(menu, numbers[at], numbers[at + 1], word);
}

} // namespace pavonel::fuzz
