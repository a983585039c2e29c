#include "dialogs/controls.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

namespace {

constexpr int upDownWidth = 16;
// Rows a drop-down shows open before it scrolls: about 300 pixels of them.
constexpr int dropDownRows = 15;

QToolButton* arrowButton(QWidget* parent, Qt::ArrowType arrow) {
    auto* button = new QToolButton(parent);
    button->setArrowType(arrow);
    button->setAutoRepeat(true);
    button->setFocusPolicy(Qt::NoFocus);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    return button;
}

// A control at its client pixels, named by its decimal id, as the tests find it.
template <typename Control> Control* placed(Control* control, int id, QRect box) {
    control->setObjectName(QString::number(id));
    control->setGeometry(box);
    return control;
}

} // namespace

QPushButton* makeButton(QWidget* parent, int id, const QString& text, QRect box) {
    return placed(new QPushButton(text, parent), id, box);
}

QLineEdit* makeTextBox(QWidget* parent, int id, const QString& text, QRect box) {
    return placed(new QLineEdit(text, parent), id, box);
}

void runBlocked(QWidget& window, const std::function<void()>& work) {
    struct Restore {
        QPointer<QWidget> window;
        ~Restore() {
            QCoreApplication::processEvents();
            if (window) {
                window->setEnabled(true);
                window->update();
            }
            QApplication::restoreOverrideCursor();
        }
    };
    QApplication::setOverrideCursor(Qt::WaitCursor);
    window.setEnabled(false);
    Restore restore{&window};
    work();
}

QCheckBox* makeCheckBox(QWidget* parent, int id, const QString& text, QRect box) {
    return placed(new QCheckBox(text, parent), id, box);
}

QComboBox* makeDropDown(QWidget* parent, int id, QRect box) {
    QComboBox* list = placed(new QComboBox(parent), id, box);
    list->setMaxVisibleItems(dropDownRows);
    return list;
}

QListWidget* makeList(QWidget* parent, int id, QRect box) {
    return placed(new QListWidget(parent), id, box);
}

void fillList(QListWidget& list, const std::vector<std::string>& rows) {
    list.clear();
    for (const std::string& row : rows)
        list.addItem(QString::fromStdString(row));
}

QLineEdit* makeSpinField(QWidget* parent, int editId, QRect box, std::optional<int> value,
                         int maximum, std::function<void(const QString& text)> changed) {
    return makeSpinField(parent, {editId, editId + 1}, box, value, maximum, std::move(changed));
}

QLineEdit* makeSpinField(QWidget* parent, SpinIds ids, QRect box, std::optional<int> value,
                         int maximum, std::function<void(const QString& text)> changed,
                         std::function<void(int from)> stepping) {
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(QString::number(ids.edit));
    edit->setGeometry(box.x(), box.y(), box.width() - upDownWidth, box.height());
    edit->setValidator(new QRegularExpressionValidator(QRegularExpression("[0-9]*"), edit));
    if (value)
        edit->setText(QString::number(*value));
    QObject::connect(edit, &QLineEdit::textChanged, edit, std::move(changed));

    auto* upDown = new QWidget(parent);
    upDown->setObjectName(QString::number(ids.upDown));
    upDown->setGeometry(box.right() + 1 - upDownWidth, box.y(), upDownWidth, box.height());
    auto* column = new QVBoxLayout(upDown);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    for (int step : {+1, -1}) {
        QToolButton* button = arrowButton(upDown, step > 0 ? Qt::UpArrow : Qt::DownArrow);
        column->addWidget(button);
        QObject::connect(button, &QToolButton::clicked, edit, [edit, step, maximum, stepping] {
            // The field's number, clamped, is where a step starts; the long form keeps a typed
            // giant from wrapping.
            const long long now = std::clamp(edit->text().left(12).toLongLong(), 0LL,
                                             static_cast<long long>(maximum));
            if (stepping)
                stepping(static_cast<int>(now));
            edit->setText(
                QString::number(std::clamp(now + step, 0LL, static_cast<long long>(maximum))));
        });
    }
    return edit;
}
