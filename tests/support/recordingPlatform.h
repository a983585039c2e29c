#pragma once
#include "platform/platform.h"

#include <map>
#include <string>
#include <vector>

// Stands in for the window system while it is alive: records message boxes and timers instead
// of showing or running them.
class RecordingPlatform : public platform::Backend {
  public:
    struct Box {
        std::string text;
        std::string title;
        platform::Icon icon;
        bool owned;
    };

    RecordingPlatform() { previous_ = platform::installBackend(this); }
    ~RecordingPlatform() override { platform::installBackend(previous_); }
    RecordingPlatform(const RecordingPlatform&) = delete;
    RecordingPlatform& operator=(const RecordingPlatform&) = delete;

    void setTimer(int id, int milliseconds) override { timers[id] = milliseconds; }
    void killTimer(int id) override { timers.erase(id); }
    void invalidate(const platform::Rect*, bool) override { ++invalidations; }
    void messageBox(const std::string& text, const std::string& title, platform::Icon icon,
                    bool owned) override {
        boxes.push_back({text, title, icon, owned});
    }

    std::vector<Box> boxes;
    std::map<int, int> timers; // id to period of the timers that run
    int invalidations = 0;

  private:
    platform::Backend* previous_ = nullptr;
};
