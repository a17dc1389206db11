#pragma once

#include <QString>

class QLineEdit;

namespace pavonel {

/// A line of text to edit. `name` is what a screen reader says; `prompt` is shown while the field is empty.
QLineEdit *lineEdit(const QString &name, const QString &prompt = {});

/// Without a report, and only when the text is another one, so that the cursor of somebody who types stays
/// where it is.
void showText(QLineEdit &field, const QString &text);

} // namespace pavonel
