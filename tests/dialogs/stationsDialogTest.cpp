#include "media/encodedAudio.h"
#include "media/icyServer.h"
#include "playback/engine/engine.h"
#include "support/dialogHarness.h"
#include "support/output.h"

#include <QListWidget>
#include <QProgressBar>
#include <fstream>

namespace {

// The engine on its null output and stations on the loopback interface: one with a name, one
// without, one that never answers.
class StationsDialog : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(engineInit(AudioOutput::Null));
        std::ifstream in(media::writeEncodedSine(media.str() + "/sine.mp3", {}), std::ios::binary);
        const std::string audio(std::istreambuf_iterator<char>(in), {});
        server = std::make_unique<IcyServer>(std::map<std::string, StationReply>{
            {"/icy",
             {"ICY 200 OK\r\nicy-name: Test FM\r\ncontent-type: audio/mpeg\r\n\r\n", audio, 0, {}}},
            {"/plain", {"HTTP/1.0 200 OK\r\nContent-Type: audio/mpeg\r\n\r\n", audio, 0, {}}},
            {"/silent", silentReply()}});
    }
    void TearDown() override { engineFree(); }

    // The window's rows, top to bottom.
    static std::vector<std::string> rows(Dialog& dialog) {
        std::vector<std::string> texts;
        auto* list = dialog.window->findChild<QListWidget*>("5004");
        for (int row = 0; row < list->count(); ++row)
            texts.push_back(list->item(row)->text().toStdString());
        return texts;
    }
    static void add(Dialog& dialog, const std::string& url) {
        dialog.edit(5002)->setText(QString::fromStdString(url));
        dialog.click(5001);
    }
    static void select(Dialog& dialog, int row) {
        dialog.window->findChild<QListWidget*>("5004")->setCurrentRow(row);
    }
    // The boxes shown, each as "title: text".
    static std::vector<std::string> boxes(Dialog& dialog) {
        std::vector<std::string> shown;
        for (const RecordingPlatform::Box& box : dialog.platform.boxes)
            shown.push_back(box.title + ": " + box.text);
        return shown;
    }
    std::string url(const std::string& path) const { return server->url(path); }

    TempDir media;
    std::unique_ptr<IcyServer> server;
};

TEST_F(StationsDialog, AddsEachUrlOnceDeletesTheSelectedRowKeepingThePlayingOneAndSaves) {
    Dialog dialog(22, [](PlayerState& st) { st.radioStations = {{"Named", "http://a/"}}; });
    EXPECT_EQ(rows(dialog), std::vector<std::string>{"Named - http://a/"});
    add(dialog, "http://b/");
    add(dialog, "HTTP://B/");           // the row of an untested URL is the URL alone
    add(dialog, "http://a/");           // the row of a named one is not
    add(dialog, std::string(300, 'x')); // no length limit
    EXPECT_EQ(std::tuple(rows(dialog).size(), dialog.st.stationCount), std::tuple(4u, 4));
    EXPECT_EQ(boxes(dialog), std::vector<std::string>{"Information: This URL is already added."});

    dialog.click(5003); // no selection: nothing, no box
    EXPECT_EQ(dialog.st.radioStations.size(), 4u);
    // currentStation names the station it named, or none: never the neighbour moving up.
    for (auto [playing, deleted, after] : {std::tuple(3, 3, -1), std::tuple(2, 0, 1)}) {
        dialog.st.currentStation = playing;
        select(dialog, deleted);
        dialog.click(5003);
        EXPECT_EQ(dialog.st.currentStation, after);
    }
    EXPECT_EQ(rows(dialog), (std::vector<std::string>{"http://b/", "http://a/"}));
    dialog.click(3007);
    const std::string saved = TempDir::read(dialog.data.str() + "/InternetStations.json");
    EXPECT_TRUE(saved.find("http://b/") != std::string::npos && saved.find("xxx") == saved.npos);
}

TEST_F(StationsDialog, TestUrlNamesTheStationFromItsStreamOrSaysWhatFailed) {
    struct Case {
        std::string url, name, box;
    };
    const Case cases[] = {
        {url("/icy"), " Test FM", ""}, // as sent, leading blank and all
        {url("/plain"), "", "Failed to get radio info for URL: " + url("/plain")},
        {"http://127.0.0.1:1/", "", "Failed to load URL: http://127.0.0.1:1/"},
        {url("/silent"), "", "Failed to load URL: " + url("/silent")},
        {"hello", "", "Failed to load URL: hello"},
        {"file:///etc/passwd", "", "Failed to load URL: file:///etc/passwd"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.url);
        Dialog dialog(22);
        add(dialog, c.url);
        select(dialog, 0);
        logOf([&] { dialog.click(5005); });
        EXPECT_EQ(dialog.st.radioStations[0].name, c.name);
        EXPECT_EQ(rows(dialog), std::vector<std::string>{c.name + " - " + c.url});
        EXPECT_EQ(boxes(dialog), c.box.empty() ? std::vector<std::string>{}
                                               : std::vector<std::string>{"Error: " + c.box});
    }
    // The station that plays: its name equals the one the refresh keeps, and is taken.
    Dialog playing(22);
    add(playing, url("/icy"));
    playing.st.previousStationName = " Test FM";
    select(playing, 0);
    logOf([&] { playing.click(5005); });
    EXPECT_EQ(playing.st.radioStations[0].name, " Test FM");
    playing.window->findChild<QListWidget*>("5004")->clearSelection();
    playing.click(5005);
    EXPECT_EQ(boxes(playing), std::vector<std::string>{"Information: No URL is selected."});
}

// Boxes come while the loop runs: the bar then shows the stations tested before.
struct BarWatch : RecordingPlatform {
    DialogWindow* window = nullptr;
    std::vector<std::tuple<int, int, QRect>> bars;
    void messageBox(const std::string& text, const std::string& title, host::Icon icon,
                    bool owned) override {
        RecordingPlatform::messageBox(text, title, icon, owned);
        auto* bar = window->findChild<QProgressBar*>("5008");
        bars.emplace_back(bar->value(), bar->maximum(), bar->geometry());
    }
};

TEST_F(StationsDialog, TestAllTestsEveryStationUnderABarAndRemovesIt) {
    Dialog none(22);
    none.click(5006);
    EXPECT_TRUE(none.platform.boxes.empty());

    Dialog dialog(22);
    for (const std::string& station : {url("/icy"), url("/plain"), std::string("hello")})
        add(dialog, station);
    BarWatch watch;
    watch.window = dialog.window;
    logOf([&] { dialog.click(5006); });
    const QRect place(20, 555, 600, 20);
    EXPECT_EQ(watch.bars, (std::vector<std::tuple<int, int, QRect>>{{1, 3, place}, {2, 3, place}}));
    EXPECT_EQ(dialog.window->findChild<QProgressBar*>("5008"), nullptr);
    EXPECT_EQ(rows(dialog), (std::vector<std::string>{" Test FM - " + url("/icy"),
                                                      " - " + url("/plain"), " - hello"}));
    grabDialog(dialog, "dialog-22");
}

} // namespace
