#include "UI/SettingsWindow/Rows/AddField.h"

#include "UI/Controls/Button.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/FocusRing.h"
#include "UI/Controls/LineEdit.h"

#include <QHBoxLayout>
#include <QLineEdit>

namespace pavonel {

namespace {

class AddFieldWidget final : public CardRow {
public:
    AddFieldWidget(Visuals &visuals, const AddField &row)
        : CardRow(visuals), add_(row.add), field_(lineEdit(row.prompt, row.prompt)),
          button_(Button::ofSymbol(QStringLiteral("plus"), row.button)) {
        layout()->setContentsMargins(margin - FocusRing::room, 3, margin - Button::besideSymbol(visuals), 3);
        if (row.before)
            CardRow::add(row.before(visuals));
        CardRow::add(field_);
        CardRow::add(button_);
        connect(field_, &QLineEdit::textChanged, this, [this] { button_->setEnabled(!entry().isEmpty()); });
        connect(field_, &QLineEdit::returnPressed, this, [this] { submit(); });
        button_->setEnabled(false);
        connect(button_, &Button::clicked, this, [this] { submit(); });
    }

private:
    QString entry() const { return field_->text().trimmed(); }

    void submit() {
        const QString text = entry();
        field_->setText({});
        field_->setFocus();
        button_->setEnabled(false);
        if (!text.isEmpty())
            add_(text);
    }

    std::function<void(const QString &)> add_;
    QLineEdit *field_;
    Button *button_;
};

} // namespace

QWidget *AddField::make(Visuals &visuals) const {
    return new AddFieldWidget(visuals, *this);
}

} // namespace pavonel
