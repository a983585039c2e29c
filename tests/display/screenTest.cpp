#include "display/screen.h"

#include "core/mouse.h"
#include "core/playerState.h"
#include "display/layout.h"
#include "display/pages.h"
#include "support/oneSongPlayer.h"
#include "support/recordingCanvas.h"
#include "support/recordingPlatform.h"

#include <gtest/gtest.h>

namespace {

// A player with a library of one playlist of one song, at a window of the given size.
class Screen : public testing::Test {
  protected:
    Screen() {
        setUpOneSong(st);
        resize(500, 155);
    }
    void resize(int width, int height) {
        onResize(st, width, height);
        canvas = RecordingCanvas(width, height);
    }
    // One pass; the calls it made.
    const RecordingCanvas& paint() {
        canvas.calls.clear();
        paintScreen(canvas, st);
        return canvas;
    }
    std::vector<std::string> texts() {
        std::vector<std::string> out;
        for (const auto* call : paint().texts())
            out.push_back(call->text);
        return out;
    }
    bool shows(const std::string& text) { return paint().findText(text) != nullptr; }
    // Presses the middle of a recorded rectangle.
    void pressAt(const Box& box) { onLeftPress(st, box.x + box.width / 2, box.y + box.height / 2); }

    PlayerState st;
    RecordingCanvas canvas;
    RecordingPlatform platform;
};

TEST_F(Screen, FrontPageShowsTheSongOrTheStationOrAsksForMusic) {
    const RecordingCanvas& pass = paint();
    const auto* headline = pass.findText("A Song");
    ASSERT_NE(headline, nullptr);
    EXPECT_EQ(headline->box, (Box{2, 12, 490, 85}));
    EXPECT_EQ(headline->style.font.size, 26);
    EXPECT_TRUE(shows("MP3 > Rock"));
    // With no channel the engine's -1 s reads as C prints a negative; the volume as 0.00.
    EXPECT_TRUE(shows("Time: 00:-1 / 00:-1  Fade Out: 02:11 | 02:10  Play Count: 4 Vol: 0.00"));
    EXPECT_NE(st.heartRects[0], Box{});
    EXPECT_EQ(st.controlRects[0], (Box{246, 135, 15, 15}));
    EXPECT_EQ(st.controlRects[3], (Box{229, 135, 15, 15}));

    st.onStation = true;
    st.radioStations = {RadioStation{"Loop FM", "http://127.0.0.1/", 1, 3}};
    st.stationCount = 1;
    st.stationName = "Loop FM";
    st.stationGenre = "Jazz";
    st.streamTitle = "Now Playing";
    st.currentMusicType = musicTypeStation;
    st.segmentEnd = 40;
    EXPECT_TRUE(shows("Now Playing"));
    EXPECT_TRUE(shows("Loop FM > Jazz"));
    EXPECT_TRUE(shows("Time: 00:-1  Fade Out in: 00:41 | 00:40 Vol: 0.00"));
    EXPECT_NE(st.heartRects[1], Box{});

    PlayerState empty;
    std::swap(empty.directoryPaths, st.directoryPaths);
    st.onStation = false;
    st.playlists.clear();
    st.totalSongCount = 0;
    const std::vector<std::string> all = texts();
    for (const char* text : {"Add music to the library", "Marble Tunnel Radio: No Music Directory",
                             "Marble Tunnel Radio: Add your music directories"})
        EXPECT_NE(std::find(all.begin(), all.end(), text), all.end()) << text;
}

TEST_F(Screen, VolumeHeadlineKeepsTheLcdFreshAndAsksForItsTimerOnce) {
    st.volume = 0.25f;
    st.volumeTextShown = true;
    for (auto [toggle, headline] : {std::pair{volumeToggleHigh, "High Vol: 0.25"},
                                    {volumeToggleLow, "Low Vol: 0.25"},
                                    {volumeToggleNone, "Current Vol: 0.25"}}) {
        st.volumeToggleState = toggle;
        EXPECT_TRUE(shows(headline)) << headline;
    }
    EXPECT_TRUE(st.lcdDirty);
    EXPECT_TRUE(st.volumeTimerWanted && st.volumeTimerArmed);
    st.volumeTimerWanted = false;
    paint();
    EXPECT_FALSE(st.volumeTimerWanted);
}

TEST_F(Screen, ListPagesShowTenCellsThenTheRestAndStopAtTheLast) {
    st.listEntries.assign(12, "row");
    st.playlistCount = 9; // 3 built-in stations + 9 playlists = 12 rows
    st.listPage = -1;
    scrollList(st, +1);
    paint();
    auto cells = [&] {
        int n = 0;
        for (const auto* call : paint().texts())
            n += call->text == "row";
        return n;
    };
    EXPECT_EQ(cells(), 10);
    scrollList(st, +1);
    EXPECT_EQ(cells(), 2);
    scrollList(st, +1);
    EXPECT_EQ(st.listPage, 1);
    EXPECT_EQ(st.cellRects[9], (Box{247, 71, 232, 12}));
}

TEST_F(Screen, SearchPageAsksFindsNothingOrListsTitles) {
    st.searchActive = true;
    EXPECT_TRUE(shows("Type in a song name."));
    st.searchText = "zz";
    EXPECT_TRUE(shows("No song found."));
    EXPECT_TRUE(shows("Songs found 0"));
    st.searchResults = {SongRef{0, 0}};
    EXPECT_TRUE(shows("Song"));
    EXPECT_TRUE(shows("zz")); // the title box shows what was typed
}

TEST_F(Screen, FiguresPagesPrintSharesAndTimesAndSharesOfNothingAsNan) {
    st.listKind = 1;
    st.rawRadio = 20;
    for (const char* text :
         {"MIDI: 22.7%", "MP3: 22.7%", "tracker: 22.7%", "Favorite: 22.7%", "Internet Radio: 9.1%"})
        EXPECT_TRUE(shows(text)) << text;
    st.rawMIDI = st.rawMP3 = st.rawTracker = st.rawFav = st.rawRadio = 0;
    EXPECT_TRUE(shows("MIDI: nan%"));
    st.listPage = 0;
    for (const char* text : {"Min (sec): 45", "Max (sec): 110", "iRado Min (sec): 60",
                             "iRadio Max (sec): 180", "Fade (sec): 8"})
        EXPECT_TRUE(shows(text)) << text;
}

TEST_F(Screen, TallWindowsMoveTheTimeLineDownAndControllersStandBesideTheKindGlyph) {
    resize(500, 320);
    st.totalSongCount = 0;
    const auto* line = paint().findText("");
    ASSERT_NE(line, nullptr); // drawn, empty, with an empty library
    EXPECT_EQ(line->box.y, static_cast<int>(74 * st.scaleY));
    resize(1000, 310);
    EXPECT_FALSE(tall(st));

    resize(500, 155);
    st.totalSongCount = 1;
    st.controllerCount = 3;
    st.controllerNames = {"Xbox One", "DualSense", "Pad"};
    const RecordingCanvas& pass = paint();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(st.controllerRects[i].x, 348 - 20 * i);
    const Color colors[] = {{16, 124, 16}, {0, 56, 135}, {255, 255, 255}};
    int drawn = 0;
    for (const auto* call : pass.texts())
        if (call->text == "\U0001F3AE") {
            EXPECT_EQ(call->color, colors[drawn++]);
        }
    EXPECT_EQ(drawn, 3);
}

// Every control answers at three sizes; the rectangles of an earlier pass keep answering.
TEST_F(Screen, ControlsAndBarsAnswerAtEverySize) {
    for (auto [width, height] : {std::pair{500, 155}, {1000, 200}, {1500, 465}}) {
        SCOPED_TRACE(width);
        resize(width, height);
        paint();
        const int shuffle = st.shuffle;
        pressAt(st.controlRects[3]);
        EXPECT_EQ(st.shuffle, 1 - shuffle);
        pressAt(st.controlRects[14]);
        EXPECT_TRUE(st.searchActive);
        pressAt(st.controlRects[9]); // home closes the search
        EXPECT_FALSE(st.searchActive);
        pressAt(st.controlRects[11]);
        ASSERT_EQ(st.listKind, 1);
        paint();
        // Bars: 0 in the first column, 99 in the last; the fade in steps of about 67 ms.
        // (The MIDI bar's right end lies under the figures glyph: a press there does both.)
        const Box mp3 = st.barRects[1];
        onLeftPress(st, mp3.x, mp3.y);
        EXPECT_EQ(st.rawMP3, 0);
        onLeftPress(st, mp3.x + mp3.width - 1, mp3.y);
        EXPECT_EQ(st.rawMP3, 99);
        pressAt(st.controlRects[10]);
        ASSERT_EQ(st.listPage, 0);
        paint();
        const Box fade = st.barRects[9];
        onLeftPress(st, fade.x + 1, fade.y);
        const int step = st.FADE_DURATION_MS;
        EXPECT_NEAR(step, 20000 / fade.width, 1);
        pressAt(st.controlRects[8]);
        pressAt(st.controlRects[11]);
        EXPECT_EQ(st.listKind, 0);
        // The volume bar: the bottom edge is 0, the top near 1.
        const Box volume = st.volumeBarRect;
        onLeftPress(st, volume.x, volume.y + volume.height - 1);
        EXPECT_LT(st.volume, 0.02f);
        pressAt(st.controlRects[12]);
    }
    EXPECT_EQ(platform.closeRequests, 3);
}

TEST_F(Screen, HeartsCountTheSongThePlaylistOrTheStationUpAndDown) {
    paint();
    pressAt(st.heartRects[0]);
    EXPECT_EQ(st.playlists[0].songs[0].favoriteCount, 3);
    onRightPress(st, st.heartRects[0].x + 1, st.heartRects[0].y + 1);
    onRightPress(st, st.heartRects[0].x + 1, st.heartRects[0].y + 1);
    EXPECT_EQ(st.playlists[0].songs[0].favoriteCount, 1);
    st.heartRects[1] = {0, 0, 10, 10}; // the playlist's heart, where a station's would be
    pressAt(st.heartRects[1]);
    EXPECT_EQ(st.playlists[0].favoriteCount, 1);
    st.onStation = true;
    st.radioStations = {RadioStation{"Loop FM", "http://127.0.0.1/", 0, 0}};
    pressAt(st.heartRects[1]);
    EXPECT_EQ(st.radioStations[0].favorite, 1);
    onRightPress(st, 5, 5);
    EXPECT_EQ(st.radioStations[0].favorite, 0);
}

} // namespace
