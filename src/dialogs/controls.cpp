#include "dialogs/controls.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
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

} // namespace

QPushButton* makeButton(QWidget* parent, int id, const QString& text, QRect box) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(QString::number(id));
    button->setGeometry(box);
    return button;
}

QLineEdit* makeTextBox(QWidget* parent, int id, const QString& text, QRect box) {
    auto* edit = new QLineEdit(text, parent);
    edit->setObjectName(QString::number(id));
    edit->setGeometry(box);
    return edit;
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
    auto* check = new QCheckBox(text, parent);
    check->setObjectName(QString::number(id));
    check->setGeometry(box);
    return check;
}

QComboBox* makeDropDown(QWidget* parent, int id, QRect box) {
    auto* list = new QComboBox(parent);
    list->setObjectName(QString::number(id));
    list->setGeometry(box);
    list->setMaxVisibleItems(dropDownRows);
    return list;
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
