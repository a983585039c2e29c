#pragma once
#include <functional>

struct InputState;

// The action table's numbers: a hotkey row's id and the action it runs.
namespace action {
constexpr int nextSong = 0;
constexpr int previousSong = 1;
constexpr int playPause = 2;
constexpr int stopStart = 3;
constexpr int volumeToggle = 4;
constexpr int nextSoundFont = 5;
constexpr int previousSoundFont = 6;
constexpr int favoriteUp = 7;
constexpr int favoriteDown = 8;
constexpr int quit = 9;
constexpr int controllerEnable = 10;
constexpr int volumeUp = 11;
constexpr int volumeDown = 12;
constexpr int home = 13;
constexpr int nextStation = 14;
constexpr int previousStation = 15;
} // namespace action

// Windows virtual-key codes the latch release looks at.
constexpr int vkControl = 0x11;
constexpr int vkOemPlus = 0xBB;
constexpr int vkOemMinus = 0xBD;

// The volume one step away, added in double precision, clamped to 0 to 1 and kept as a float:
// 0.98 + 0.05 is exactly 1.0.
float steppedVolume(float volume, double step);

// The favourite steps of the action table on a song or a station: up sets the flag and counts
// one more; down counts one less and clears both at 0 or below.
void countUp(int& favoriteCount, int& flag);
void countDown(int& favoriteCount, int& flag);

// Timer 2: a keyboard volume latch lets go once its chord (Ctrl with = or -) is no longer held.
void releaseVolumeLatches(InputState& st, const std::function<bool(int vk)>& keyDown);
