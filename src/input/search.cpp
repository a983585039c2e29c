#include "input/search.h"

#include "input/inputState.h"

// The keys come with the type-ahead search.
void pollSearchKeys(InputState&) {}
