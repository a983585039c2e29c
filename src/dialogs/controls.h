#pragma once
#include <QRect>
#include <functional>
#include <optional>

class QLineEdit;
class QPushButton;
class QString;
class QWidget;

// A push button of an option dialog at its client pixels, its object name the decimal id.
QPushButton* makeButton(QWidget* parent, int id, const QString& text, QRect box);

// The option dialogs' number field: an edit that takes digits only (typed or pasted), with an
// up-down on its right edge. The arrows step the field's number, clamped to 0 to maximum, and
// repeat while held; a number typed past the maximum stays as it is. changed runs at every
// change of the text, by the keyboard, the arrows or the program, but not for the opening value.
// The edit's object name is editId, the up-down's editId + 1; without a value it opens empty.
QLineEdit* makeSpinField(QWidget* parent, int editId, QRect box, std::optional<int> value,
                         int maximum, std::function<void(const QString& text)> changed);
