#pragma once
#include "core/hostPort.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

// Stands in for the window system while it is alive: records message boxes and change notices
// instead of showing them, and runs no timer and paints nothing.
class RecordingPlatform : public host::Port {
  public:
    struct Box {
        std::string text;
        std::string title;
        host::Icon icon;
        bool owned;
    };

    RecordingPlatform() { previous_ = host::installPort(this); }
    ~RecordingPlatform() override { host::installPort(previous_); }
    RecordingPlatform(const RecordingPlatform&) = delete;
    RecordingPlatform& operator=(const RecordingPlatform&) = delete;

    void setTimer(int, int) override {}
    void killTimer(int) override {}
    void invalidate(const host::Rect*, bool) override {}
    void messageBox(const std::string& text, const std::string& title, host::Icon icon,
                    bool owned) override {
        boxes.push_back({text, title, icon, owned});
    }
    void playerChanged(host::PlayerChange what) override { changes.push_back(what); }
    void closeMainWindow() override { ++closeRequests; }
    void openDialog(int id) override { dialogs.push_back(id); }
    bool keyIsDown(int vk) override { return keysDown.count(vk) != 0; }
    void registerHotkey(int id, int modifiers, std::uint32_t vk) override {
        hotkeys.push_back({id, modifiers, vk});
    }
    void unregisterHotkey(int) override {}
    std::optional<std::string> pickFolder(const std::string& title) override {
        pickerTitles.push_back(title);
        return folderToPick;
    }
    void openUrl(const std::string& address) override { urls.push_back(address); }
    bool isBorderless() override { return borderless; }
    void setBorderless(bool bare) override { borderless = bare; }
    void setOpacity(int alpha) override { opacity = alpha; }

    std::vector<Box> boxes;
    std::vector<host::PlayerChange> changes;
    int closeRequests = 0;
    std::vector<int> dialogs;
    std::set<int> keysDown;
    struct Hotkey {
        int id;
        int modifiers;
        std::uint32_t vk;
        friend bool operator==(const Hotkey&, const Hotkey&) = default;
    };
    std::vector<Hotkey> hotkeys;             // registrations, in order
    std::optional<std::string> folderToPick; // what the picker answers; nothing is a cancel
    std::vector<std::string> pickerTitles;
    std::vector<std::string> urls;
    bool borderless = false;
    int opacity = 255;

  private:
    host::Port* previous_ = nullptr;
};
