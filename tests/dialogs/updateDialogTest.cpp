#include "media/icyServer.h"
#include "support/dialogHarness.h"

#include <QCheckBox>
#include <QEnterEvent>

namespace {

constexpr const char* versionPath = "/Downloads/version.txt";

TEST(UpdateDialog, EachPaintAsksOnceAndShowsWhatTheSiteOffersAtTheMainWindowsScale) {
    IcyServer newer({{versionPath, webPage("1.1")}});
    IcyServer same({{versionPath, webPage("1.0")}});
    Dialog dialog(24);
    dialog.st.versionServer = newer.url("");
    EXPECT_EQ(dialog.labels(), std::vector<std::string>{"Update Available! The latest version is "
                                                        "1.1 Current Version 1.0"});
    EXPECT_EQ(newer.requests().size(), 1u);
    dialog.st.versionServer = same.url("");
    dialog.st.scaleX = 2.0f;
    const std::vector<RecordingCanvas::Call> texts = paintedTexts(*dialog.window);
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_EQ(texts[0].text, "You are using the latest version ");
    EXPECT_EQ(std::tie(texts[0].box.x, texts[0].box.width, texts[0].box.height),
              std::tuple(20, 800, 80));
}

// The window's paint makes a request, so a control that Qt repaints on a hover must not take
// the window's surface with it.
TEST(UpdateDialog, HoveringAControlAsksNothingAndTheGrabShowsTheOffer) {
    IcyServer server({{versionPath, webPage("1.1")}});
    Dialog dialog(24);
    dialog.st.versionServer = server.url("");
    QApplication::processEvents();
    const std::size_t asked = server.requests().size();
    EXPECT_GE(asked, 1u); // the window has painted
    for (int id : {3013, 3014, 3007}) {
        QWidget* control = dialog.control(id);
        QEnterEvent enter(QPointF(5, 5), QPointF(5, 5), QPointF(5, 5));
        QHoverEvent hover(QEvent::HoverEnter, QPointF(5, 5), QPointF(5, 5), QPointF(-1, -1));
        QApplication::sendEvent(control, &enter);
        QApplication::sendEvent(control, &hover);
        control->update();
        QApplication::processEvents();
    }
    EXPECT_EQ(server.requests().size(), asked);
    grabDialog(dialog, "dialog-24");
}

TEST(UpdateDialog, TheBoxTurnsTheCheckOffAndNeverStaysTickedAndTheButtonOpensTheDownloads) {
    Dialog dialog(24, [](PlayerState& st) { st.versionCheck = false; });
    auto* box = static_cast<QCheckBox*>(dialog.control(3014));
    EXPECT_FALSE(box->isChecked()); // not from versionCheck
    dialog.st.versionCheck = true;
    for (int click = 0; click < 2; ++click) {
        box->click();
        EXPECT_FALSE(box->isChecked());
        EXPECT_FALSE(dialog.st.versionCheck);
    }
    dialog.click(3013);
    EXPECT_EQ(dialog.platform.urls,
              std::vector<std::string>{"http://www.fernbridge.example/download-marble-tunnel/"});
    const std::pair<int, QRect> places[] = {
        {3013, {10, 30, 400, 25}}, {3014, {10, 70, 200, 25}}, {3007, {235, 70, 175, 25}}};
    for (const auto& [id, place] : places)
        EXPECT_EQ(dialog.control(id)->geometry(), place) << id;
    EXPECT_EQ(dialog.window->size(), dialogClientSize(460, 150));
}

} // namespace
