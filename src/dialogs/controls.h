#pragma once
#include <QRect>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QString;
class QWidget;

// A push button of an option dialog at its client pixels, its object name the decimal id.
QPushButton* makeButton(QWidget* parent, int id, const QString& text, QRect box);
// A one-line text box likewise.
QLineEdit* makeTextBox(QWidget* parent, int id, const QString& text, QRect box);

// Work that holds the user-interface thread (a rebuild, a station's connection): the wait cursor
// shows, and the clicks made meanwhile reach a disabled window and are dropped, so that an
// impatient second click does not run the work again. The window may have been closed by the
// end, and is enabled and repainted only if it is still there.
void runBlocked(QWidget& window, const std::function<void()>& work);

// A check box that ticks and clears itself when clicked, and a drop-down list that cannot be
// typed into, at their client pixels, each named by its decimal id.
QCheckBox* makeCheckBox(QWidget* parent, int id, const QString& text, QRect box);
QComboBox* makeDropDown(QWidget* parent, int id, QRect box);
// A list of rows in the order given, no sorting; replaces the rows of one made before.
QListWidget* makeList(QWidget* parent, int id, QRect box);
void fillList(QListWidget& list, const std::vector<std::string>& rows);

// The option dialogs' number field: an edit that takes digits only (typed or pasted), with an
// up-down on its right edge. The arrows step the field's number, clamped to 0 to maximum, and
// repeat while held; a number typed past the maximum stays as it is. changed runs at every
// change of the text, by the keyboard, the arrows or the program, but not for the opening value.
// The edit's object name is editId, the up-down's editId + 1; without a value it opens empty.
QLineEdit* makeSpinField(QWidget* parent, int editId, QRect box, std::optional<int> value,
                         int maximum, std::function<void(const QString& text)> changed);

// The same with an up-down of an id of its own; stepping, when given, runs before each step of
// the arrows with the number the step starts from, before the field changes.
struct SpinIds {
    int edit;
    int upDown;
};
QLineEdit* makeSpinField(QWidget* parent, SpinIds ids, QRect box, std::optional<int> value,
                         int maximum, std::function<void(const QString& text)> changed,
                         std::function<void(int from)> stepping = {});
