#include "core/hostPort.h"

#include "util/log.h"

namespace host {
namespace {
// The window system is one per process, like the process's own display connection.
Port* installed = nullptr;
} // namespace

Port* installPort(Port* port) {
    Port* previous = installed;
    installed = port;
    return previous;
}

void setTimer(int id, int milliseconds) {
    if (installed)
        installed->setTimer(id, milliseconds);
}

void killTimer(int id) {
    if (installed)
        installed->killTimer(id);
}

void invalidate(const Rect* rect, bool erase) {
    if (installed)
        installed->invalidate(rect, erase);
}

void messageBox(const std::string& text, const std::string& title, Icon icon, bool owned) {
    if (installed)
        installed->messageBox(text, title, icon, owned);
    else
        logErr("%s: %s\n", title.c_str(), text.c_str());
}

void notifyPlayerChanged(PlayerChange what) {
    if (installed)
        installed->playerChanged(what);
}

void closeMainWindow() {
    if (installed)
        installed->closeMainWindow();
}

void openDialog(int id) {
    if (installed)
        installed->openDialog(id);
}

bool keyIsDown(int vk) {
    return installed && installed->keyIsDown(vk);
}

KeysDown Port::keysDown() {
    KeysDown down;
    for (std::size_t vk = 1; vk < down.size(); ++vk)
        down[vk] = keyIsDown(static_cast<int>(vk));
    return down;
}

KeysDown keysDown() {
    return installed ? installed->keysDown() : KeysDown{};
}

void registerHotkey(int id, int modifiers, std::uint32_t vk) {
    if (installed)
        installed->registerHotkey(id, modifiers, vk);
}

void unregisterHotkey(int id) {
    if (installed)
        installed->unregisterHotkey(id);
}

std::optional<std::string> pickFolder(const std::string& title) {
    return installed ? installed->pickFolder(title) : std::nullopt;
}

void openUrl(const std::string& address) {
    if (installed)
        installed->openUrl(address);
}

bool isBorderless() {
    return installed && installed->isBorderless();
}

void setBorderless(bool bare) {
    if (installed)
        installed->setBorderless(bare);
}

void setOpacity(int alpha) {
    if (installed)
        installed->setOpacity(alpha);
}

} // namespace host
