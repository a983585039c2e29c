#pragma once
#include "input/inputState.h"

#include <string>
#include <vector>

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
};
