#pragma once
#include "display/bitmaps.h"
#include "display/geometry.h"
#include "input/inputState.h"

#include <array>
#include <string>
#include <vector>

// The two texture slots.
constexpr int backgroundSlot = 0;
constexpr int lcdSlot = 1;

// The look of the window and what its screen shows.
struct DisplayState : InputState {
    // --- Settings of the look.
    int textR = 255, textG = 255, textB = 255;
    int bkGrR = 35, bkGrG = 35, bkGrB = 35;
    int songR = 0, songG = 0, songB = 0;
    int windowAlpha = 255;
    int textureAlpha = 25;
    int bkTextureAlpha = 35;
    std::string currentBkTextureName = "wood";
    std::string currentLCDTextureName = "cement";
    int randomColorPlayer = 0;
    int borderlessAuto = 0;

    // --- The automatic bare window: the window made itself bare; a movement has just brought the
    // frame back; timer 101 runs; where the cursor was at the last movement that counted.
    bool autoBorderlessActive = false;
    bool autoBorderlessRestored = false;
    bool borderlessTimerActive = false;
    int lastCursorX = 0;
    int lastCursorY = 0;

    // --- Textures: the files found, the bitmaps in the two slots (id 0: empty, the plain colour
    // shows), and the host's store that loads them (none: nothing loads).
    std::vector<TextureInfo> textures;
    std::array<BitmapInfo, 2> textureSlots{};
    BitmapStore* bitmapStore = nullptr;

    // --- The client area on its grid of 500 by 155.
    int clientWidth = 500;
    int clientHeight = 155;
    float scaleX = 1.0f;
    float scaleY = 1.0f;

    // --- Screen state.
    std::vector<std::string> listEntries; // rows of the list page
    int listPage = -1;
    int listKind = 0;
    bool volumeTextShown = false;
    bool volumeTimerArmed = false;
    bool volumeTimerWanted = false; // the pass asks the window for timer 2001

    // --- What the last pass drew where, for the mouse. A rectangle stays until a pass draws its
    // thing again, also when a later pass left the thing out.
    std::array<Box, 15> controlRects{};
    std::array<Box, 2> heartRects{};
    std::array<Box, 8> controllerRects{};
    std::array<Box, 10> cellRects{};
    std::array<Box, 10> barRects{};
    Box volumeBarRect{};
};
