#include "core/folderOptions.h"
#include "core/hostPort.h"
#include "core/libraryEdits.h"
#include "core/playerState.h"
#include "dialogs/controls.h"
#include "dialogs/dialogs.h"
#include "display/panels.h"
#include "platform/dialogWindows.h"

#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace {

void paintFolders(Canvas& canvas, const PlayerState& st) {
    const TextBoxStyle heading{.size = 18, .scaled = false, .bold = true, .centered = true};
    drawTextBox(canvas, st, "Add Music Folder", {20, 20, 580, 100}, heading);
    drawTextBox(canvas, st, "Add Soundfont Folder", {20, 140, 580, 100}, heading);
    drawTextBox(canvas, st, "Add Marble Tunnel Path", {20, 260, 580, 100}, heading);
    // Under the buttons, until the next scan reads every root.
    drawTextBox(canvas, st, unreadableRootsLine(st), {10, 620, 650, 40},
                {.size = 16, .scaled = false, .wrapped = true});
}

} // namespace

// Where the music, the soundfonts and the game are. The music folders take effect at "Scan" or
// "Delete Path"; the other two are stored at once.
void fillFolderDialog(DialogWindow& window, PlayerState& st) {
    QLineEdit* musicBox = makeTextBox(&window, 4101, "", {25, 50, 565, 25});
    QLineEdit* fontBox = makeTextBox(
        &window, 4104, QString::fromStdString(st.soundFontDirectoryPath), {25, 170, 565, 25});
    QLineEdit* gameBox =
        makeTextBox(&window, 4110, QString::fromStdString(st.marbleTunnelPath), {25, 290, 565, 25});
    QListWidget* list = makeList(&window, 4106, {20, 390, 580, 200});
    fillList(*list, st.directoryPaths);

    auto pick = [&window, &st](PickedFolder mode, QLineEdit* box) {
        if (std::optional<std::string> path = host::pickFolder(folderPickerTitle(mode))) {
            box->setText(QString::fromStdString(*path));
            takePickedFolder(st, mode, *path);
        }
        window.update();
    };
    auto clear = [&window, &st](PickedFolder mode, QLineEdit* box) {
        clearPickedFolder(st, mode);
        box->clear();
        window.update();
    };
    auto on = [&window](QPushButton* pressed, auto action) {
        QObject::connect(pressed, &QPushButton::clicked, &window, action);
    };
    on(makeButton(&window, 4102, "Browse", {30, 90, 100, 25}),
       [=] { pick(PickedFolder::Music, musicBox); });
    on(makeButton(&window, 4108, "Set", {30, 210, 100, 25}),
       [=] { pick(PickedFolder::SoundFonts, fontBox); });
    on(makeButton(&window, 4109, "Set", {30, 330, 100, 25}),
       [=] { pick(PickedFolder::Game, gameBox); });
    on(makeButton(&window, 4112, "Clear", {130, 210, 100, 25}),
       [=] { clear(PickedFolder::SoundFonts, fontBox); });
    on(makeButton(&window, 4111, "Clear", {130, 330, 100, 25}),
       [=] { clear(PickedFolder::Game, gameBox); });
    on(makeButton(&window, 4103, "Add Directory", {180, 90, 120, 25}), [&st, musicBox, list] {
        const QString text = musicBox->text();
        if (addMusicFolder(st, text.toStdString()) == AddedFolder::Added) {
            list->addItem(text);
            musicBox->clear();
        }
    });
    on(makeButton(&window, 4107, "Delete Path", {10, 590, 100, 25}), [&window, &st, list] {
        runBlocked(window, [&st, list] {
            const QList<QListWidgetItem*> selected = list->selectedItems();
            std::optional<std::string> path;
            if (!selected.isEmpty())
                path = selected.front()->text().toStdString();
            deleteMusicFolder(st, path);
            if (path)
                delete selected.front();
        });
    });
    on(makeButton(&window, 3007, "Exit", {135, 590, 100, 25}), [&window] { window.close(); });
    on(makeButton(&window, 4105, "Scan", {260, 590, 150, 25}), [&window, &st] {
        if (st.directoryPaths.empty())
            return;
        runBlocked(window, [&st] { rescanLibrary(st); });
    });
    window.paint = [&st](Canvas& canvas) { paintFolders(canvas, st); };
    window.closing = [&st] { closeFolderDialog(st); };
}
