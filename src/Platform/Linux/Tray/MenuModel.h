#pragma once

#include "Platform/StatusItem.h"

#include <QHash>

#include <vector>

namespace pavonel {

/// A menu as the bus speaks of it: every item has a number, 0 is the menu itself. A command keeps its number
/// from one menu to the next, so that a click on a menu that a host read earlier still does what its text
/// says.
class MenuModel {
public:
    static constexpr int rootId = 0;

    struct Node {
        int id = rootId;
        MenuItem item;
        std::vector<Node> children;

        bool hasSameFace(const Node &other) const;
    };

    /// True when what the user sees has changed.
    bool replace(Menu menu);

    const Node &root() const { return root_; }

    /// Null for a number that is not in the menu.
    const Node *find(int id) const { return find(root_, id); }

private:
    static const Node *find(const Node &node, int id);
    void adopt(Node &parent, const QString &path, Menu menu);
    int idOf(const QString &path);

    Node root_;
    QHash<QString, int> ids_;
};

} // namespace pavonel
