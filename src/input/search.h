#pragma once
#include <bitset>

struct InputState;

// The Windows virtual keys down now, whichever window has the focus.
using KeysDown = std::bitset<256>;

// The type-ahead search's keys on each 30 ms tick while the page is open: a letter, the space
// and Backspace change the text and search, Enter searches and empties the text. A held key
// counts once; a key down as the page closed counts again only after it was seen up.
void pollSearchKeys(InputState& st, const KeysDown& down);
// searchResults anew from searchText, in library order.
void runSongSearch(InputState& st);
// The page opens: the library's texts are lower-cased now, so that no key waits for them.
void prepareSongSearch(InputState& st);
