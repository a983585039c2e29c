#include "core/aboutTexts.h"
#include "core/playerState.h"
#include "core/radioOptions.h"
#include "core/songInfoTexts.h"
#include "dialogs/dialogs.h"
#include "library/history.h"
#include "library/model.h"
#include "platform/dialogWindows.h"
#include "support/recordingCanvas.h"
#include "support/recordingPlatform.h"
#include "util/textFormat.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <climits>
#include <gtest/gtest.h>

namespace {

// A dialog as the menu opens it, its controls found by their ids.
struct Dialog {
    PlayerState st;
    RecordingPlatform platform;
    DialogWindow* window = nullptr;
    explicit Dialog(int id) {
        installDialogs();
        std::tie(st.rawMIDI, st.rawMP3, st.rawTracker, st.rawFav, st.rawRadio) =
            std::tuple(50, 50, 50, 50, 20);
        window = openDialogWindow(nullptr, id, st);
    }
    ~Dialog() { delete window; }
    QLineEdit* edit(int id) { return window->findChild<QLineEdit*>(QString::number(id)); }
    QWidget* control(int id) { return window->findChild<QWidget*>(QString::number(id)); }
    std::vector<std::string> labels() {
        RecordingCanvas canvas;
        window->paint(canvas);
        std::vector<std::string> texts;
        for (const RecordingCanvas::Call& call : canvas.calls)
            if (call.kind == RecordingCanvas::Kind::Text)
                texts.push_back(call.text);
        return texts;
    }
};

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

} // namespace
