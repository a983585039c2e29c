#pragma once
#include <chrono>

struct PlaybackState;

// The measuring thread: one, at idle priority, one song at a time. The song on air first, then
// every song of the library not measured yet; its values go to loudnessCache.json every so many
// songs and at its end.

// Starts the thread over loudnessCache.json of the data folder, which the thread reads first.
void startLoudnessWorker(PlaybackState& st);
// Hands the thread the library as it is now, to measure what it does not know yet.
void queueLibraryForLoudness(PlaybackState& st);
// Abandons the measurement in progress, joins the thread and saves what it measured.
void endLoudnessWorker(PlaybackState& st);
// For tests: waits until the song on air and the library are measured; false at the deadline.
bool waitForLoudness(PlaybackState& st, std::chrono::steady_clock::time_point deadline);
