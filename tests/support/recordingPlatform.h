#pragma once
#include "core/hostPort.h"

#include <map>
#include <string>
#include <vector>

// Stands in for the window system while it is alive: records message boxes, timers and change
// notices instead of showing or running them.
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

    void setTimer(int id, int milliseconds) override { timers[id] = milliseconds; }
    void killTimer(int id) override { timers.erase(id); }
    void invalidate(const host::Rect*, bool) override { ++invalidations; }
    void messageBox(const std::string& text, const std::string& title, host::Icon icon,
                    bool owned) override {
        boxes.push_back({text, title, icon, owned});
    }
    void playerChanged(host::PlayerChange what) override { changes.push_back(what); }

    std::vector<Box> boxes;
    std::map<int, int> timers; // id to period of the timers that run
    int invalidations = 0;
    std::vector<host::PlayerChange> changes;

  private:
    host::Port* previous_ = nullptr;
};
