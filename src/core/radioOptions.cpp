#include "core/radioOptions.h"

#include "core/playerState.h"
#include "util/textFormat.h"

#include <climits>

const std::array<RadioOptionRow, 12> radioOptionRows{{
    {1001, 10, 200, "Raw MIDI Value: %.1f%%", &PlayerState::rawMIDI, 100, true},
    {1003, 10, 480, "Raw MP3 Value: %.1f%%", &PlayerState::rawMP3, 100, true},
    {1005, 40, 200, "Raw Tracker Value: %.1f%%", &PlayerState::rawTracker, 100, true},
    {1007, 40, 480, "Raw Favorite Value: %.1f%%", &PlayerState::rawFav, 100, true},
    {1009, 70, 200, "Min Song Time: (secs)", &PlayerState::songPlayDurationMin, 1000, false},
    {1011, 70, 480, "Max Song Time: (secs)", &PlayerState::songPlayDurationMax, 1000, false},
    {crossFadeEditId, 100, 200, "Cross Fade Time:", &PlayerState::FADE_DURATION_MS, 20, false},
    {1017, 100, 480, "Sound Font Change\\Song:", &PlayerState::songsBeforeSoundfontChange, 20,
     false},
    {1019, 130, 200, "Min iRadio Time: (secs)", &PlayerState::iSongPlayDurationMin, 1000, false},
    {1021, 130, 480, "Max iRadio Time: (secs)", &PlayerState::iSongPlayDurationMax, 1000, false},
    {1023, 160, 200, "Raw iRadio Value: %.1f%%", &PlayerState::rawRadio, 100, true},
    {1025, 160, 480, "Song Repeat Interval:", &PlayerState::historyDepth, 100, false},
}};

int radioOptionNumber(const std::string& text) {
    long long value = 0;
    for (char c : text) {
        if (c < '0' || c > '9')
            break;
        value = value * 10 + (c - '0');
        if (value > INT_MAX)
            return INT_MAX;
    }
    return static_cast<int>(value);
}

int radioOptionOpening(const PlayerState& st, const RadioOptionRow& row) {
    return row.editId == crossFadeEditId ? st.FADE_DURATION_MS / 1000 : st.*row.field;
}

std::string radioOptionLabel(const PlayerState& st, const RadioOptionRow& row) {
    if (!row.ratio)
        return row.label;
    const double sum =
        static_cast<double>(st.rawRadio) + st.rawFav + st.rawTracker + st.rawMP3 + st.rawMIDI;
    // With all five at 0 no family is drawn at all: 0.0% says so better than "nan".
    return formatText(row.label, sum == 0.0 ? 0.0 : st.*row.field / sum * 100.0);
}

void changeRadioOption(PlayerState& st, int editId, int value) {
    for (const RadioOptionRow& row : radioOptionRows)
        if (row.editId == editId && editId != crossFadeEditId)
            st.*row.field = value;
}

void closeRadioOptions(PlayerState& st, const RadioOptionsClosing& values) {
    st.rawMIDI = values.rawMIDI;
    st.rawMP3 = values.rawMP3;
    st.rawTracker = values.rawTracker;
    st.rawFav = values.rawFav;
    st.songPlayDurationMin = values.songPlayDurationMin;
    st.songPlayDurationMax = values.songPlayDurationMax;
    const long long milliseconds = static_cast<long long>(values.crossFadeSeconds) * 1000;
    st.FADE_DURATION_MS = milliseconds > INT_MAX ? INT_MAX : static_cast<int>(milliseconds);
}
