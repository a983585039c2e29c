#include "core/playerState.h"
#include "core/stationOptions.h"
#include "dialogs/controls.h"
#include "dialogs/dialogs.h"
#include "display/panels.h"
#include "platform/dialogWindows.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>

namespace {

std::vector<std::string> rowsOf(const QListWidget& list) {
    std::vector<std::string> rows;
    for (int row = 0; row < list.count(); ++row)
        rows.push_back(list.item(row)->text().toStdString());
    return rows;
}

std::optional<int> selectedRow(const QListWidget& list) {
    const QList<QListWidgetItem*> selected = list.selectedItems();
    if (selected.isEmpty())
        return std::nullopt;
    return list.row(selected.front());
}

// Each station in list order under a bar below the buttons. The loop holds the thread, so the
// bar is repainted by hand after each step; it goes when the loop ends, or with the window.
void testAllStations(DialogWindow& window, PlayerState& st) {
    const int count = static_cast<int>(st.radioStations.size());
    QPointer<QProgressBar> bar = new QProgressBar(&window);
    bar->setObjectName("5008");
    bar->setGeometry(20, 555, 600, 20);
    bar->setTextVisible(false);
    bar->setRange(0, count);
    bar->setValue(0);
    bar->show();
    bar->repaint();
    for (int index = 0; index < count && bar; ++index) {
        testStationAt(st, index);
        if (!bar)
            break;
        bar->setValue(index + 1);
        bar->repaint();
    }
    delete bar;
}

} // namespace

// The internet stations: add, delete, and test them one by one or all, a test naming the
// station from its stream. Each test holds the thread for up to 5 s.
void fillStationsDialog(DialogWindow& window, PlayerState& st) {
    QLineEdit* urlBox = makeTextBox(&window, 5002, "", {25, 50, 565, 25});
    QPointer<QListWidget> list = makeList(&window, 5004, {20, 120, 580, 400});
    fillList(*list, stationRows(st));

    auto on = [&window](QPushButton* pressed, auto action) {
        QObject::connect(pressed, &QPushButton::clicked, &window, action);
    };
    // A test may end with the window gone: a box's own event loop can close it.
    auto refill = [&st, list] {
        if (list)
            fillList(*list, stationRows(st));
    };
    on(makeButton(&window, 5001, "Add URL", {240, 90, 120, 25}), [&st, urlBox, list] {
        const QString text = urlBox->text();
        if (addStationUrl(st, rowsOf(*list), text.toStdString()) == AddedStation::Added) {
            list->addItem(text);
            urlBox->clear();
        }
    });
    on(makeButton(&window, 5003, "Delete URL", {10, 520, 100, 25}), [&st, list] {
        const std::optional<int> row = selectedRow(*list);
        deleteStation(st, row);
        if (row)
            delete list->takeItem(*row);
    });
    on(makeButton(&window, 5005, "Test URL", {130, 520, 100, 25}), [&window, &st, list, refill] {
        bool tested = false;
        runBlocked(window, [&] { tested = testSelectedStation(st, selectedRow(*list)); });
        if (tested)
            refill();
    });
    on(makeButton(&window, 5006, "Test All URL's", {250, 520, 100, 25}), [&window, &st, refill] {
        runBlocked(window, [&] { testAllStations(window, st); });
        refill();
    });
    on(makeButton(&window, 3007, "Exit", {370, 520, 100, 25}), [&window] { window.close(); });

    window.paint = [&st](Canvas& canvas) {
        drawTextBox(canvas, st, "Add internet radio URL", {20, 20, 580, 100},
                    {.size = 18, .scaled = false, .bold = true, .centered = true});
    };
    window.closing = [&st] { closeStationsDialog(st); };
}
