#pragma once

#include <QPushButton>

namespace pavonel {

class Visuals;

/// A push button of a certain role, with a symbol where it has one; `Style` draws it by these. `clicked`
/// tells.
class Button : public QPushButton {
public:
    enum class Role {
        plain,
        prominent, ///< What most people want to do here; at most one a page.
        bare,      ///< Only its symbol, until the pointer or the keyboard is there.
        disc,      ///< Round, for a letter; one that can be checked shows it by its colour.
        entry,     ///< Of the sidebar: as wide as that, with its symbol at the left.
        notice,    ///< On a notice, which never has the keyboard and has one size.
        noticeProminent,
        noticeClose,
    };

    /// `symbol` is drawn before the text.
    explicit Button(const QString &text, Role role = Role::plain, const QString &symbol = {});

    /// A small round one without a text; `name` is what a screen reader says.
    static Button *ofSymbol(const QString &symbol, const QString &name, Role role = Role::bare);

    /// From the right edge of a round one to that of its symbol.
    static int besideSymbol(const Visuals &visuals);

    Role role() const { return role_; }
    const QString &symbol() const { return symbol_; }
    double symbolSide(const Visuals &visuals) const;
    static int roundDiameter(const Visuals &visuals);

    bool isNotice() const { return role_ >= Role::notice; }
    QSize noticeSize() const;

    QSize minimumSizeHint() const override { return sizeHint(); }

private:
    Role role_;
    QString symbol_;
};

} // namespace pavonel
