#include "Platform/Linux/Tray/MenuModel.h"

#include <algorithm>
#include <utility>

namespace pavonel {

bool MenuModel::Node::hasSameFace(const Node &other) const {
    return item.kind == other.item.kind && item.title == other.item.title &&
           item.keyEquivalent == other.item.keyEquivalent &&
           std::equal(children.begin(), children.end(), other.children.begin(), other.children.end(),
                      [](const Node &a, const Node &b) { return a.hasSameFace(b); });
}

bool MenuModel::replace(Menu menu) {
    const Node before = std::exchange(root_, Node{});
    adopt(root_, {}, std::move(menu));
    return !root_.hasSameFace(before);
}

void MenuModel::adopt(Node &parent, const QString &path, Menu menu) {
    int place = 0;
    for (MenuItem &item : menu) {
        // A label's text changes all the time, and separators have none: those are known by their place.
        const bool known = item.kind == MenuItem::Kind::command || item.kind == MenuItem::Kind::submenu;
        const QString itemPath = path + u'/' + (known ? item.title : QString::number(place));
        ++place;
        Menu submenu = std::exchange(item.submenu, {});
        Node &child = parent.children.emplace_back(Node{idOf(itemPath), std::move(item), {}});
        adopt(child, itemPath, std::move(submenu));
    }
}

int MenuModel::idOf(const QString &path) {
    const auto found = ids_.constFind(path);
    if (found != ids_.constEnd())
        return *found;
    const int id = rootId + 1 + static_cast<int>(ids_.size());
    ids_.insert(path, id);
    return id;
}

const MenuModel::Node *MenuModel::find(const Node &node, int id) {
    if (node.id == id)
        return &node;
    for (const Node &child : node.children) {
        if (const Node *found = find(child, id))
            return found;
    }
    return nullptr;
}

} // namespace pavonel
