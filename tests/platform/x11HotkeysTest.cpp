#include "platform/x11Hotkeys.h"

#include "core/playerState.h"
#include "display/pages.h"
#include "input/actionSteps.h"
#include "input/search.h"
#include "support/recordingPlatform.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QProcess>
#include <QThread>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

namespace {

// A second X client of the test's own, standing for another program on the same display: it
// grabs keys on the root window, hears the presses those grabs bring, and reads the lock state.
class X11Client {
  public:
    X11Client() : connection_(xcb_connect(nullptr, nullptr)) {
        if (!connected())
            return;
        symbols_ = xcb_key_symbols_alloc(connection_);
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    }
    ~X11Client() {
        if (symbols_)
            xcb_key_symbols_free(symbols_);
        xcb_disconnect(connection_); // gives every grab back
    }
    X11Client(const X11Client&) = delete;
    X11Client& operator=(const X11Client&) = delete;

    bool connected() const { return xcb_connection_has_error(connection_) == 0; }

    xcb_keycode_t keycodeOf(xcb_keysym_t keysym) {
        xcb_keycode_t* found = xcb_key_symbols_get_keycode(symbols_, keysym);
        const xcb_keycode_t keycode = found ? found[0] : 0;
        std::free(found);
        return keycode;
    }

    // False on BadAccess: another client holds the chord.
    bool grab(std::uint16_t mask, xcb_keycode_t keycode) {
        xcb_generic_error_t* error = xcb_request_check(
            connection_, xcb_grab_key_checked(connection_, 1, root_, mask, keycode,
                                              XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        std::free(error);
        return error == nullptr;
    }

    // Reads what arrived so far; true once a press of the key was among it.
    bool heardPress(xcb_keycode_t keycode) {
        while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
            const auto* press = reinterpret_cast<xcb_key_press_event_t*>(event);
            heard_ = heard_ ||
                     ((event->response_type & ~0x80) == XCB_KEY_PRESS && press->detail == keycode);
            std::free(event);
        }
        return heard_;
    }

    // The modifier bits in force, the locks among them.
    std::uint16_t modifierState() {
        auto* reply =
            xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, root_), nullptr);
        const std::uint16_t mask = reply ? reply->mask : 0;
        std::free(reply);
        return mask;
    }

  private:
    xcb_connection_t* connection_;
    xcb_key_symbols_t* symbols_ = nullptr;
    xcb_window_t root_ = 0;
    bool heard_ = false;
};

// True when xdotool ran the command; it types through the server as a keyboard would.
bool xdotool(const QStringList& arguments) {
    return QProcess::execute("xdotool", arguments) == 0;
}

// Turns Qt's event loop until the condition holds. The bound only keeps a lost event from
// hanging the run; it says nothing of speed.
template <typename Condition> bool turnUntil(Condition done) {
    QDeadlineTimer bound(10000);
    while (!done()) {
        if (bound.hasExpired())
            return false;
        QCoreApplication::processEvents();
        QThread::msleep(5);
    }
    return true;
}

constexpr int ctrlAlt = 2 | 1; // the Windows form of the modifiers
constexpr std::uint16_t lockBits = XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2;
constexpr xcb_keysym_t xkN = 'n', xkA = 'a';

// The lock keys toggle on a press: the same presses again put them back, also when a case fails.
class LocksOn {
  public:
    explicit LocksOn(const QStringList& keys) : keys_(keys) { toggle(); }
    ~LocksOn() { toggle(); }
    LocksOn(const LocksOn&) = delete;
    LocksOn& operator=(const LocksOn&) = delete;

  private:
    void toggle() {
        if (!keys_.isEmpty())
            xdotool(QStringList{"key"} + keys_);
    }
    QStringList keys_;
};

// The player's hotkeys and another program on one X server; the rows' actions are the volume
// steps, whose latches show that a row ran without any audio.
class X11HotkeysTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(hotkeys.active()) << "not on an X server";
        ASSERT_TRUE(other.connected());
    }
    // Presses the chord and turns the loop until the row behind the latch has run.
    bool pressRuns(const char* chord, const bool& latch) {
        st.volumeUpLatch = st.volumeDownLatch = false;
        return xdotool({"key", chord}) && turnUntil([&] { return latch; });
    }

    PlayerState st;
    RecordingPlatform platform;
    X11Hotkeys hotkeys{st};
    X11Client other;
};

TEST_F(X11HotkeysTest, AChordRunsItsRowWhileAnotherWindowHasTheFocusWhateverLocksAreOn) {
    QProcess message;
    message.start("xmessage", {"-title", "otherWindow", "The focus is here."});
    ASSERT_TRUE(message.waitForStarted());
    ASSERT_TRUE(xdotool({"search", "--sync", "--name", "^otherWindow$", "windowfocus", "--sync"}));
    hotkeys.registerHotkey(action::volumeUp, ctrlAlt, 'N');
    // Xvfb's keymap puts Num Lock on Mod2.
    const std::pair<QStringList, std::uint16_t> locks[] = {{{}, 0},
                                                           {{"Num_Lock"}, XCB_MOD_MASK_2},
                                                           {{"Caps_Lock"}, XCB_MOD_MASK_LOCK},
                                                           {{"Num_Lock", "Caps_Lock"}, lockBits}};
    for (const auto& [keys, mask] : locks) {
        SCOPED_TRACE(keys.join('+').toStdString());
        {
            LocksOn on(keys);
            ASSERT_TRUE(turnUntil([&] { return (other.modifierState() & lockBits) == mask; }));
            st.volume = 0.5f;
            EXPECT_TRUE(pressRuns("ctrl+alt+n", st.volumeUpLatch));
            EXPECT_EQ(st.volume, 0.55f);
        }
        ASSERT_TRUE(turnUntil([&] { return (other.modifierState() & lockBits) == 0; }));
    }
    message.kill();
    message.waitForFinished();
}

// Keycode 0 is AnyKey to the server: an empty row that grabbed it would take the whole keyboard.
TEST_F(X11HotkeysTest, EmptyRowsGrabNothingSoAnotherProgramGetsEveryChord) {
    for (int id = 0; id < hotkeyRowCount; ++id)
        hotkeys.registerHotkey(id, id % 8, 0);
    const xcb_keycode_t a = other.keycodeOf(xkA);
    const std::pair<std::uint16_t, xcb_keycode_t> chords[] = {
        {0, a}, {XCB_MOD_MASK_CONTROL, a}, {XCB_MOD_MASK_ANY, XCB_GRAB_ANY}};
    for (auto [mask, keycode] : chords)
        EXPECT_TRUE(other.grab(mask, keycode)) << mask << " " << int(keycode);
}

// The other program holds Ctrl+Alt+N without the locks only, as a careless one would.
TEST_F(X11HotkeysTest, AChordAnotherProgramHoldsGoesToItAndThePlayerKeepsNoPartOfIt) {
    const xcb_keycode_t n = other.keycodeOf(xkN);
    ASSERT_TRUE(other.grab(XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1, n));
    hotkeys.registerHotkey(action::volumeUp, ctrlAlt, 'N');
    hotkeys.registerHotkey(action::volumeDown, ctrlAlt, 'M');
    ASSERT_TRUE(xdotool({"key", "ctrl+alt+n"}));
    EXPECT_TRUE(turnUntil([&] { return other.heardPress(n); }));
    // Events reach the player in order: once Ctrl+Alt+M has run, a press before it would have.
    EXPECT_TRUE(pressRuns("ctrl+alt+m", st.volumeDownLatch));
    EXPECT_FALSE(st.volumeUpLatch);
    EXPECT_TRUE(other.grab(XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_LOCK, n));
}

TEST_F(X11HotkeysTest, AKeyReadsDownFromItsPressUntilItsRelease) {
    const std::pair<int, const char*> keys[] = {
        {vkControl, "Control_R"}, {'A', "a"}, {vkOemPlus, "equal"}};
    for (auto [vk, keysym] : keys) {
        SCOPED_TRACE(keysym);
        EXPECT_FALSE(hotkeys.keyIsDown(vk));
        ASSERT_TRUE(xdotool({"keydown", keysym}));
        EXPECT_TRUE(turnUntil([&] { return hotkeys.keyIsDown(vk); }));
        EXPECT_TRUE(hotkeys.keysDown()[vk]);
        ASSERT_TRUE(xdotool({"keyup", keysym}));
        EXPECT_TRUE(turnUntil([&] { return !hotkeys.keyIsDown(vk); }));
    }
}

// Keys typed into another program land in an open search page, as the 30 ms tick reads them.
TEST_F(X11HotkeysTest, KeysTypedElsewhereLandInAnOpenSearch) {
    st.playlists.push_back(Playlist{"A", {Song{"/m/abc_song.mid", 1, 0, 1, musicTypeMidi}}, 1});
    toggleSearchPage(st);
    for (const char* key : {"a", "b", "space", "BackSpace", "c"}) {
        ASSERT_TRUE(xdotool({"keydown", key}));
        const std::size_t before = st.searchText.size();
        EXPECT_TRUE(turnUntil([&] {
            pollSearchKeys(st, hotkeys.keysDown());
            return st.searchText.size() != before;
        }));
        ASSERT_TRUE(xdotool({"keyup", key}));
    }
    EXPECT_EQ(st.searchText, "ABC");
    EXPECT_EQ(st.searchResults, (std::vector<SongRef>{{0, 0}}));
}

TEST_F(X11HotkeysTest, OfTwoRowsWithOneChordTheLowerRunsAndTheOtherOnceTheLowerLetsGo) {
    hotkeys.registerHotkey(action::volumeDown, ctrlAlt, 'N');
    hotkeys.registerHotkey(action::volumeUp, ctrlAlt, 'N');
    EXPECT_TRUE(pressRuns("ctrl+alt+n", st.volumeUpLatch));
    EXPECT_FALSE(st.volumeDownLatch);
    hotkeys.unregisterHotkey(action::volumeUp);
    EXPECT_TRUE(pressRuns("ctrl+alt+n", st.volumeDownLatch));
}

} // namespace
