#include "UI/SettingsWindow/AddField.h"

#include "UI/Controls/Button.h"
#include "UI/Controls/CardRow.h"
#include "UI/Controls/FocusRing.h"
#include "UI/Controls/TextField.h"

#include <QHBoxLayout>

namespace pavonel {

namespace {

class AddFieldWidget final : public CardRow {
public:
    AddFieldWidget(Look &look, const AddField &row)
        : CardRow(look), add_(row.add), field_(new TextField(look, row.prompt, row.prompt)),
          button_(Button::ofSymbol(look, QStringLiteral("plus"), row.button)) {
        layout()->setContentsMargins(margin - FocusRing::room, 3, margin - Button::besideSymbol(look), 3);
        if (row.before)
            CardRow::add(row.before(look));
        CardRow::add(field_);
        CardRow::add(button_);
        field_->onEdit = [this](const QString &) { button_->setEnabled(!entry().isEmpty()); };
        field_->onReturn = [this] { submit(); };
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
    TextField *field_;
    Button *button_;
};

} // namespace

QWidget *AddField::make(Look &look) const {
    return new AddFieldWidget(look, *this);
}

} // namespace pavonel
