#include "platform/x11Hotkeys.h"

#include "core/actions.h"
#include "core/playerState.h"
#include "input/keyNames.h"
#include "util/log.h"

#include <QGuiApplication>
#include <algorithm>
#include <cstdlib>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

namespace {

constexpr int modControl = 2;
constexpr int modAlt = 1;
constexpr int modShift = 4;
constexpr std::uint32_t xkNumLock = 0xFF7F;

xcb_connection_t* x11Connection() {
    if (QGuiApplication::platformName() != "xcb")
        return nullptr;
    auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

std::uint16_t maskOf(int modifiers) {
    std::uint16_t mask = 0;
    if (modifiers & modControl)
        mask |= XCB_MOD_MASK_CONTROL;
    if (modifiers & modAlt)
        mask |= XCB_MOD_MASK_1;
    if (modifiers & modShift)
        mask |= XCB_MOD_MASK_SHIFT;
    return mask;
}

// The modifier bit that Num Lock sets, from the server's modifier mapping; 0 if it has none.
std::uint16_t numLockMask(xcb_connection_t* connection, xcb_key_symbols_t* symbols) {
    xcb_keycode_t* numLock = xcb_key_symbols_get_keycode(symbols, xkNumLock);
    auto* reply =
        xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr);
    std::uint16_t mask = 0;
    if (numLock && reply) {
        const xcb_keycode_t* map = xcb_get_modifier_mapping_keycodes(reply);
        const int perModifier = reply->keycodes_per_modifier;
        for (int modifier = 0; modifier < 8 && mask == 0; ++modifier)
            for (int i = 0; i < perModifier; ++i)
                for (xcb_keycode_t* k = numLock; *k != XCB_NO_SYMBOL; ++k)
                    if (map[modifier * perModifier + i] == *k)
                        mask = static_cast<std::uint16_t>(1 << modifier);
    }
    std::free(numLock);
    std::free(reply);
    return mask;
}

} // namespace

X11Hotkeys::X11Hotkeys(PlayerState& st) : st_(st), connection_(x11Connection()) {
    if (!connection_) {
        logOut("Global hotkeys are off: the window system is not X11.\n");
        return;
    }
    symbols_ = xcb_key_symbols_alloc(connection_);
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    numLock_ = numLockMask(connection_, symbols_);
    qApp->installNativeEventFilter(this);
}

X11Hotkeys::~X11Hotkeys() {
    if (!connection_)
        return;
    qApp->removeNativeEventFilter(this);
    for (Grab& row : grabs_)
        ungrab(row);
    xcb_flush(connection_);
    xcb_key_symbols_free(symbols_);
}

std::vector<std::uint8_t> X11Hotkeys::keycodesOf(std::uint32_t vk) {
    std::vector<std::uint8_t> keycodes;
    for (std::uint32_t keysym : keysymsOfVirtualKey(vk)) {
        xcb_keycode_t* found = xcb_key_symbols_get_keycode(symbols_, keysym);
        for (xcb_keycode_t* k = found; k && *k != XCB_NO_SYMBOL; ++k)
            if (std::find(keycodes.begin(), keycodes.end(), *k) == keycodes.end())
                keycodes.push_back(*k);
        std::free(found);
    }
    return keycodes;
}

std::uint16_t X11Hotkeys::lockVariants(int index) const {
    return static_cast<std::uint16_t>(((index & 1) ? XCB_MOD_MASK_LOCK : 0) |
                                      ((index & 2) ? numLock_ : 0));
}

// A key without a keysym here grabs nothing: keycode 0 would be every key of the keyboard.
void X11Hotkeys::grab(Grab& row) {
    row.keycodes.clear();
    if (row.vk == 0)
        return;
    for (std::uint8_t keycode : keycodesOf(row.vk)) {
        std::array<bool, 4> got{};
        for (int variant = 0; variant < 4; ++variant) {
            xcb_void_cookie_t cookie =
                xcb_grab_key_checked(connection_, 1, root_, row.mask | lockVariants(variant),
                                     keycode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
            xcb_generic_error_t* error = xcb_request_check(connection_, cookie);
            got[variant] = error == nullptr;
            std::free(error);
        }
        if (std::ranges::all_of(got, [](bool each) { return each; })) {
            row.keycodes.push_back(keycode);
            continue;
        }
        // BadAccess: another program holds the chord, which then never fires here. The lock
        // variants it left free go back too, or a press with a lock on would reach the player
        // and do nothing.
        for (int variant = 0; variant < 4; ++variant)
            if (got[variant])
                xcb_ungrab_key(connection_, keycode, root_, row.mask | lockVariants(variant));
    }
}

// The server keeps one grab per chord for this client, whichever rows share it: a row lets a
// keycode go only when no other row of the same chord still holds it.
void X11Hotkeys::ungrab(Grab& row) {
    auto heldElsewhere = [&](std::uint8_t keycode) {
        return std::ranges::any_of(grabs_, [&](const Grab& other) {
            return &other != &row && other.mask == row.mask &&
                   std::ranges::find(other.keycodes, keycode) != other.keycodes.end();
        });
    };
    for (std::uint8_t keycode : row.keycodes)
        if (!heldElsewhere(keycode))
            for (int variant = 0; variant < 4; ++variant)
                xcb_ungrab_key(connection_, keycode, root_, row.mask | lockVariants(variant));
    row.keycodes.clear();
}

void X11Hotkeys::registerHotkey(int id, int modifiers, std::uint32_t vk) {
    if (!connection_ || id < 0 || id >= static_cast<int>(grabs_.size()))
        return;
    Grab& row = grabs_[id];
    ungrab(row);
    row.modifiers = modifiers;
    row.vk = vk;
    row.mask = maskOf(modifiers);
    grab(row);
    xcb_flush(connection_);
}

void X11Hotkeys::unregisterHotkey(int id) {
    if (!connection_ || id < 0 || id >= static_cast<int>(grabs_.size()))
        return;
    ungrab(grabs_[id]);
    grabs_[id].vk = 0;
    xcb_flush(connection_);
}

bool X11Hotkeys::keyIsDown(int vk) {
    if (!connection_)
        return false;
    auto* reply = xcb_query_keymap_reply(connection_, xcb_query_keymap(connection_), nullptr);
    if (!reply)
        return false;
    bool down = false;
    for (std::uint8_t keycode : keycodesOf(static_cast<std::uint32_t>(vk)))
        down = down || (reply->keys[keycode / 8] & (1 << (keycode % 8)));
    std::free(reply);
    return down;
}

std::bitset<256> X11Hotkeys::keysDown() {
    std::bitset<256> down;
    if (!connection_)
        return down;
    auto* reply = xcb_query_keymap_reply(connection_, xcb_query_keymap(connection_), nullptr);
    if (!reply)
        return down;
    for (int keycode = 8; keycode < 256; ++keycode)
        if (reply->keys[keycode / 8] & (1 << (keycode % 8))) {
            const std::uint32_t vk = virtualKeyOfKeysym(
                xcb_key_symbols_get_keysym(symbols_, static_cast<xcb_keycode_t>(keycode), 0));
            if (vk > 0 && vk < down.size())
                down[vk] = true;
        }
    std::free(reply);
    return down;
}

bool X11Hotkeys::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t")
        return false;
    auto* event = static_cast<xcb_generic_event_t*>(message);
    const std::uint8_t type = event->response_type & ~0x80;
    if (type == XCB_MAPPING_NOTIFY) {
        // Every row lets go under the old Num Lock bit before any grabs under the new one, so
        // that rows sharing a chord leave nothing of the old mapping held.
        for (Grab& row : grabs_)
            ungrab(row);
        xcb_refresh_keyboard_mapping(symbols_,
                                     reinterpret_cast<xcb_mapping_notify_event_t*>(event));
        numLock_ = numLockMask(connection_, symbols_);
        for (Grab& row : grabs_)
            grab(row);
        xcb_flush(connection_);
        return false;
    }
    if (type != XCB_KEY_PRESS)
        return false;
    auto* press = reinterpret_cast<xcb_key_press_event_t*>(event);
    if (press->event != root_)
        return false;
    const std::uint16_t chord =
        press->state & (XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_SHIFT);
    // Two rows with one chord: the lower id wins.
    for (std::size_t id = 0; id < grabs_.size(); ++id) {
        const Grab& row = grabs_[id];
        if (row.mask == chord && std::find(row.keycodes.begin(), row.keycodes.end(),
                                           press->detail) != row.keycodes.end()) {
            runKeyboardAction(st_, static_cast<int>(id));
            return true;
        }
    }
    return false;
}
