#include "core/aboutTexts.h"
#include "core/playerState.h"
#include "core/radioOptions.h"
#include "core/songInfoTexts.h"
#include "core/transport.h"
#include "core/windowEvents.h"
#include "dialogs/dialogs.h"
#include "library/history.h"
#include "library/model.h"
#include "media/moduleWriter.h"
#include "platform/dialogWindows.h"
#include "support/dialogHarness.h"
#include "support/oneSongPlayer.h"
#include "support/recordingCanvas.h"
#include "support/recordingPlatform.h"
#include "support/startedPlayer.h"
#include "support/tempDir.h"
#include "util/textFormat.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <climits>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>

namespace {

TEST(OptionDialogs, EveryControlStandsAtItsPlaceInsideItsWindow) {
    struct Place {
        int dialog, id;
        QRect box;
    };
    const Place places[] = {
        {16, 4101, {25, 50, 565, 25}},
        {16, 4102, {30, 90, 100, 25}},
        {16, 4103, {180, 90, 120, 25}},
        {16, 4104, {25, 170, 565, 25}},
        {16, 4108, {30, 210, 100, 25}},
        {16, 4112, {130, 210, 100, 25}},
        {16, 4110, {25, 290, 565, 25}},
        {16, 4109, {30, 330, 100, 25}},
        {16, 4111, {130, 330, 100, 25}},
        {16, 4106, {20, 390, 580, 200}},
        {16, 4107, {10, 590, 100, 25}},
        {16, 3007, {135, 590, 100, 25}},
        {16, 4105, {260, 590, 150, 25}},
        {10, 1015, {130, 80, 64, 20}},
        {10, 1016, {194, 80, 16, 20}},
        {10, 1100, {300, 75, 150, 30}},
        {10, 3011, {20, 110, 200, 30}},
        {10, 3007, {300, 110, 150, 30}},
        {12, 3012, {350, 70, 160, 25}},
        {12, 3007, {10, 240, 560, 35}},
        {19, 8006, {10, 722, 670, 35}},
        {9, 3007, {280, 187, 250, 30}},
        {9, levellingCheckBoxId, {10, 190, 260, 24}},
    };
    for (const Place& place : places) {
        Dialog dialog(place.dialog);
        ASSERT_NE(dialog.control(place.id), nullptr) << place.dialog << " " << place.id;
        EXPECT_EQ(dialog.control(place.id)->geometry(), place.box)
            << place.dialog << " " << place.id;
    }
    const std::tuple<int, int, int> sizes[] = {
        {9, 570, 320}, {10, 540, 288}, {12, 600, 330}, {16, 690, 700}, {19, 710, 810}};
    for (auto [id, width, height] : sizes) {
        Dialog dialog(id);
        EXPECT_EQ(dialog.window->size(), dialogClientSize(width, height)) << id;
        for (const QWidget* child :
             dialog.window->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            EXPECT_TRUE(dialog.window->rect().contains(child->geometry())) << id;
    }
}

TEST(RadioOptionDialog, EveryPairStandsAtItsPlaceAndOpensWithItsSetting) {
    Dialog dialog(9);
    dialog.st.FADE_DURATION_MS = 8000;
    for (const RadioOptionRow& row : radioOptionRows) {
        QLineEdit* edit = dialog.edit(row.editId);
        ASSERT_NE(edit, nullptr) << row.editId;
        const QRect both = edit->geometry().united(dialog.control(row.editId + 1)->geometry());
        EXPECT_EQ(both, QRect(row.editX, row.y, 50, 20)) << row.editId;
    }
    EXPECT_EQ(dialog.edit(crossFadeEditId)->text(), "8");
    EXPECT_EQ(dialog.control(3007)->geometry(), QRect(280, 187, 250, 30));
    EXPECT_EQ(dialog.window->size(), dialogClientSize(570, 320));
}

TEST(RadioOptionDialog, LabelsShowEachRatiosShareAndAllZeroShowsNoShare) {
    Dialog dialog(9);
    const std::vector<std::string> labels = dialog.labels();
    EXPECT_EQ(labels[0], "Raw MIDI Value: 22.7%");
    EXPECT_EQ(labels[3], "Raw Favorite Value: 22.7%");
    EXPECT_EQ(labels[10], "Raw iRadio Value: 9.1%");
    for (int id : {1001, 1003, 1005, 1007, 1023})
        dialog.edit(id)->setText("0");
    EXPECT_EQ(dialog.labels()[0], "Raw MIDI Value: 0.0%");
}

TEST(RadioOptionDialog, ChangesAreStoredAtOnceButTheCrossfadeWaitsForTheClosing) {
    Dialog dialog(9);
    dialog.edit(1001)->setText("5000"); // past the maximum, taken as it is
    dialog.edit(1025)->setText("99999999999");
    EXPECT_EQ(std::tie(dialog.st.rawMIDI, dialog.st.historyDepth), std::tuple(5000, INT_MAX));
    QKeyEvent letter(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, "x");
    QApplication::sendEvent(dialog.edit(1003), &letter); // digits only
    EXPECT_EQ(dialog.edit(1003)->text(), "50");

    // The arrows step from the number clamped to the range.
    dialog.window->findChildren<QToolButton*>()[0]->click(); // up on 5000 in 0 to 100
    EXPECT_EQ(dialog.st.rawMIDI, 100);

    dialog.edit(crossFadeEditId)->setText("99999999");
    EXPECT_EQ(dialog.st.FADE_DURATION_MS, 8000);
    dialog.st.rawMP3 = 0; // a scan resets a ratio while the dialog is open
    static_cast<QPushButton*>(dialog.control(3007))->click();
    EXPECT_EQ(std::tie(dialog.st.FADE_DURATION_MS, dialog.st.rawMP3), std::tuple(INT_MAX, 50));
}

TEST(RadioOptionDialog, TheLevellingBoxActsAtOnceAndKeepsItsOwnFile) {
    Dialog dialog(9);
    auto* level = static_cast<QCheckBox*>(dialog.control(levellingCheckBoxId));
    EXPECT_EQ(level->text(), "Level loudness (EBU R128)");
    EXPECT_TRUE(level->isChecked());
    level->click();
    EXPECT_FALSE(dialog.st.loudness.enabled);
    EXPECT_EQ(TempDir::read(std::filesystem::path(dialog.st.dataDirectory) / "levelling.json"),
              "{\n    \"enabled\": false\n}");
}

TEST(AboutDialog, PaintsItsTwoTextsAndItsButtonsOpenTheMakersPages) {
    Dialog dialog(19);
    EXPECT_EQ(dialog.labels(), (std::vector<std::string>{aboutFirstText, aboutSecondText}));
    EXPECT_NE(std::string(aboutFirstText).find("\n\n     For more information, please visit:"),
              std::string::npos);
    for (int id : {8000, 8001, 8002, 8003})
        static_cast<QPushButton*>(dialog.control(id))->click();
    ASSERT_EQ(dialog.platform.urls.size(), 4u);
    EXPECT_EQ(dialog.platform.urls[0], "https://www.fernbridge.example/");
    EXPECT_EQ(dialog.platform.urls[3], "https://www.fernbridge.example/download-marble-tunnel/");
    EXPECT_EQ(static_cast<QPushButton*>(dialog.control(8000))->text(), makerHost);
    EXPECT_EQ(dialog.control(8006)->geometry(), QRect(10, 722, 670, 35));
}

TEST(SongInfoDialog, PaintsGroupedFiguresAnEmptyFontLineAndClearsTheHistoryAtOnce) {
    Dialog empty(12);
    EXPECT_EQ(empty.labels()[0], "Total Songs: 0  |  MIDI: 0  |  MP3: 0  |  Tracker: 0  |  Fav: 0");
    EXPECT_EQ(empty.labels()[5], ""); // no soundfont listed

    Dialog dialog(12);
    dialog.st.weightedSongTotal = 1234567;
    dialog.st.playlists.push_back({"A", std::vector<Song>(1000, Song{"/a.xm"}), 1000});
    appendHistory(dialog.st, 1, 0, 0);
    EXPECT_EQ(dialog.labels()[1], "Total Songs (with favorite count): 1,000 (1,234,567)");
    EXPECT_EQ(dialog.labels()[3], "Song History: 1  |  Current Position: 1");
    static_cast<QPushButton*>(dialog.control(3012))->click();
    EXPECT_EQ(dialog.labels()[3], "Song History: 0  |  Current Position: 1");
    EXPECT_EQ(std::tuple(groupedNumber(-1234), groupedNumber(999), groupedNumber(LLONG_MIN)),
              std::tuple("-1,234", "999", "-9,223,372,036,854,775,808"));

    // Of two windows, the first tick to look clears the flag.
    dialog.st.songInfoDirty = true;
    EXPECT_TRUE(takeSongInfoChange(dialog.st));
    EXPECT_FALSE(takeSongInfoChange(dialog.st));
}

TEST(FolderDialog, AddsEachFolderOnceAndStoresThePickedFolders) {
    Dialog dialog(16);
    PlayerState& st = dialog.st;
    st.playlists.push_back({"Kept", {Song{"/music/Kept/a.xm"}}, 1});
    dialog.click(4105); // "Scan" without rows
    dialog.click(4103); // "Add Directory" of nothing
    EXPECT_TRUE(st.directoryPaths.empty());
    EXPECT_EQ(st.playlists.size(), 1u);

    dialog.edit(4101)->setText("/music/Rock");
    dialog.click(4103);
    dialog.edit(4101)->setText("/MUSIC/rock");
    dialog.click(4103);
    EXPECT_EQ(st.directoryPaths, std::vector<std::string>{"/music/Rock"});
    EXPECT_EQ(dialog.window->findChild<QListWidget*>("4106")->count(), 1);
    ASSERT_EQ(dialog.platform.boxes.size(), 1u);
    EXPECT_EQ(std::tie(dialog.platform.boxes[0].text, dialog.platform.boxes[0].title),
              std::tuple("This directory is already added.", "Information"));
    EXPECT_EQ(dialog.edit(4101)->text(), "/MUSIC/rock");
    const std::string config = dialog.data.str() + "/config.json";
    EXPECT_FALSE(std::filesystem::exists(config)); // an add saves nothing

    // A pick saves in every mode; only the two other folders are stored; a cancel stores nothing.
    dialog.platform.folderToPick = "/picked/fonts";
    dialog.click(4102);
    EXPECT_EQ(dialog.edit(4101)->text(), "/picked/fonts");
    EXPECT_EQ(st.directoryPaths.size(), 1u);
    EXPECT_TRUE(std::filesystem::exists(config));
    dialog.click(4108);
    EXPECT_EQ(std::tie(st.soundFontDirectoryPath, st.marbleTunnelPath),
              std::tuple("/picked/fonts", ""));
    EXPECT_EQ(dialog.edit(4104)->text(), "/picked/fonts");
    EXPECT_NE(TempDir::read(config).find("/picked/fonts"), std::string::npos);
    dialog.platform.folderToPick.reset();
    dialog.click(4109);
    EXPECT_EQ(st.marbleTunnelPath, "");
    EXPECT_EQ(dialog.platform.pickerTitles,
              (std::vector<std::string>{"Browse for Music Folder", "Select SoundFont Folder",
                                        "Select Marble Tunnel Folder"}));
    dialog.click(4112);
    EXPECT_EQ(st.soundFontDirectoryPath, "");
    EXPECT_EQ(TempDir::read(config).find("/picked/fonts"), std::string::npos);
}

TEST(FolderDialog, ScansTheAddedRootsNamesAMissingOneAndDeletePathLeavesTheMusicStopped) {
    GameFolder folder;
    StartedPlayer player(folder);
    PlayerState& st = player.st;
    const std::string a = folder.root.str() + "/A", b = folder.root.str() + "/B";
    ASSERT_TRUE(media::writeMod(folder.root.mkdir("A/Chip").string() + "/one.mod"));
    ASSERT_TRUE(media::writeMod(folder.root.mkdir("B/Jazz").string() + "/two.mod"));
    st.directoryPaths.clear();
    installDialogs();
    std::unique_ptr<DialogWindow> window(openDialogWindow(nullptr, 16, st));
    auto control = [&](int id) { return window->findChild<QWidget*>(QString::number(id)); };
    auto click = [&](int id) { static_cast<QPushButton*>(control(id))->click(); };
    for (const std::string& root : {a, b, folder.root.str() + "/gone"}) {
        static_cast<QLineEdit*>(control(4101))->setText(QString::fromStdString(root));
        click(4103);
    }
    ScopedCurrentDirectory cwd(folder.data);
    click(4105);
    ASSERT_EQ(st.playlists.size(), 2u);
    EXPECT_EQ(std::tie(st.playlists[0].albumName, st.playlists[1].albumName),
              std::tuple("Chip", "Jazz"));
    EXPECT_EQ(transportState(st), TransportState::Playing);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_TRUE(window->isEnabled());
    EXPECT_EQ(paintedTexts(*window).back().text,
              "Could not read: " + folder.root.str() + "/gone (No such file or directory)");
    EXPECT_NE(folder.read("data/MusicSettings.json").find(a), std::string::npos);

    // Without a selection the music stops and stays stopped, and nothing else changes.
    click(4107);
    for (int tick = 0; tick < 3; ++tick)
        onTimer(st, host::timerRepaint);
    EXPECT_EQ(transportState(st), TransportState::Idle);
    EXPECT_TRUE(st.libraryEditInProgress);
    EXPECT_EQ(std::tuple(st.playlists.size(), st.directoryPaths.size()), std::tuple(2u, 3u));

    auto* list = window->findChild<QListWidget*>("4106");
    for (int row = 2; row >= 0; --row) {
        list->setCurrentRow(row);
        click(4107);
    }
    EXPECT_EQ(std::tuple(st.playlists.size(), st.directoryPaths.size(), list->count()),
              std::tuple(0u, 0u, 0));
    EXPECT_EQ(transportState(st), TransportState::Idle);
    click(3007);
    EXPECT_FALSE(st.libraryEditInProgress);
}

TEST(FavoriteOptionsDialog, CountsWhatPlaysFollowsTheSongAndCyclesTheFilterInPlace) {
    Dialog dialog(10, [](PlayerState& st) {
        setUpOneSong(st);
        st.stationMode = stationModeStation;
    });
    PlayerState& st = dialog.st;
    const Song& song = st.playlists[0].songs[0];
    EXPECT_EQ(dialog.edit(1015)->text(), "2");
    EXPECT_EQ(dialog.labels()[0], "A Song");
    dialog.edit(1015)->setText("0");
    EXPECT_EQ(std::tie(song.isFavorite, song.favoriteCount), std::tuple(0, 0));
    dialog.edit(1015)->setText("1");
    EXPECT_EQ(std::tie(song.isFavorite, song.favoriteCount), std::tuple(1, 1));
    dialog.edit(1015)->setText("5000"); // past the arrows' range, taken as it is
    EXPECT_EQ(song.favoriteCount, 5000);

    auto* filter = static_cast<QPushButton*>(dialog.control(1100));
    const std::string names[] = {"Favorites Only", "No Favorites Allowed", "All Songs"};
    for (const std::string& name : names) {
        filter->click();
        EXPECT_EQ(filter->text().toStdString(), name);
    }
    EXPECT_EQ(std::tie(st.builtInStation, st.stationMode), std::tuple(0, stationModeRadio));
    EXPECT_FALSE(st.songInfoDirty); // no transition started

    dialog.click(3011);
    dialog.tick();
    EXPECT_EQ(dialog.edit(1015)->text(), "0");

    // A station keeps what the user typed over the ticks; one past the list takes nothing.
    st.onStation = true;
    st.streamTitle = "Live";
    st.radioStations = {{"Station", "http://127.0.0.1/", 0, 0}};
    dialog.edit(1015)->setText("7");
    dialog.tick();
    EXPECT_EQ(dialog.edit(1015)->text(), "7");
    EXPECT_EQ(std::tie(st.radioStations[0].favorite, st.radioStations[0].favoriteCount),
              std::tuple(1, 7));
    EXPECT_EQ(dialog.labels()[0], "Live");
    st.currentStation = 3;
    dialog.edit(1015)->setText("9");
    EXPECT_EQ(std::tie(st.radioStations[0].favoriteCount, song.favoriteCount), std::tuple(7, 0));

    Dialog empty(10);
    EXPECT_EQ(empty.edit(1015)->text(), "");
    empty.edit(1015)->setText("4");
    empty.tick();
    EXPECT_EQ(empty.edit(1015)->text(), "");
}

// Each dialog as a person would see it, saved beside the tests: its texts inside their boxes, no
// ink anywhere else on its surface, and the Folder window's headings centred.
TEST(OptionDialogs, GrabbedWindowsShowTheirTextsInTheirBoxesOnly) {
    for (int id : {9, 10, 12, 16, 19}) {
        SCOPED_TRACE(id);
        Dialog dialog(id, setUpOneSong);
        const QImage image = grabDialog(dialog, "dialog-" + std::to_string(id));
        if (id != 16)
            continue;
        for (int top : {20, 140, 260}) {
            const std::vector<QPoint> ink = inkIn(image, {20, top, 580, 25});
            ASSERT_FALSE(ink.empty());
            const auto [left, right] = std::minmax_element(
                ink.begin(), ink.end(), [](QPoint p, QPoint q) { return p.x() < q.x(); });
            EXPECT_NEAR((left->x() + right->x()) / 2.0, 310.0, 3.0) << top;
        }
    }
}

} // namespace
