#pragma once
#include <optional>
#include <string>

// A bitmap the window system holds for the logic, known by a number that is never 0.
struct BitmapInfo {
    int id = 0;
    int width = 0;
    int height = 0;
};

// A texture file found in the "textures" folder, by its stem.
struct TextureInfo {
    int width = 0;
    int height = 0;
    std::string name;
};

// Loads bitmap files for the logic and keeps them until released; the canvas of the same host
// draws them by id. Installed by the host; without one nothing loads.
class BitmapStore {
  public:
    virtual ~BitmapStore() = default;
    // A file that is no readable bitmap (or one too large to hold) gives nothing, silently.
    virtual std::optional<BitmapInfo> load(const std::string& path) = 0;
    virtual void release(int id) = 0;
};
