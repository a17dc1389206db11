#include "UI/Controls/LineEdit.h"

#include <QLineEdit>
#include <QSignalBlocker>

namespace pavonel {

QLineEdit *lineEdit(const QString &name, const QString &prompt) {
    auto *field = new QLineEdit;
    field->setAccessibleName(name);
    field->setPlaceholderText(prompt);
    field->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return field;
}

void showText(QLineEdit &field, const QString &text) {
    if (text == field.text())
        return;
    const QSignalBlocker silence(&field);
    field.setText(text);
    if (!field.hasFocus())
        field.setCursorPosition(0);
}

} // namespace pavonel
