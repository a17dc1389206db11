#pragma once

#include <QPointer>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <vector>

class QScrollArea;

namespace pavonel {

/// A column of rows of one height, which can follow from their width. Of a long one only the rows near the
/// visible part exist, and the one with the keyboard. A row stays the same widget for as long as its key is
/// in the list, so that one can be edited while others come and go; those of a `QListView` are pictures.
class RowList : public QWidget {
public:
    using Height = std::function<int(int width)>;
    using Make = std::function<QWidget *(const QString &key)>;

    /// `make` gives a new widget, which the list owns.
    RowList(Height rowHeight, Make make);
    RowList(int rowHeight, Make make) : RowList([rowHeight](int) { return rowHeight; }, std::move(make)) {}

    /// Each key stands for one row; none comes twice.
    void setKeys(const QStringList &keys);
    const QStringList &keys() const { return keys_; }

    /// Null while the row does not exist.
    QWidget *rowAt(std::size_t index) const { return rows_[index]; }

    /// Makes that row where it does not exist, and lets the page grow to where it stands.
    QWidget &reveal(std::size_t index);

    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override; ///< As wide as the widest of the rows that exist needs it.

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    struct Span {
        std::size_t begin;
        std::size_t end;
        bool contains(std::size_t index) const { return index >= begin && index < end; }
    };
    int rowHeight() const { return heightAt_(width()); }
    /// The rows within so many heights of the window's visible part.
    Span nearby(int heights) const;
    void follow();
    void arrange();
    void place(std::size_t index);
    void make(std::size_t index);
    void putInOrder();

    Height heightAt_;
    Make make_;
    QStringList keys_;
    std::vector<QWidget *> rows_; ///< As many as keys; null for those that do not exist.
    QWidget *chainBegin_;         ///< Never seen; where the rows begin in the order of the keyboard.
    QPointer<QScrollArea> area_;  ///< That the list stands in.
};

} // namespace pavonel
