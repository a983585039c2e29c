#include "core/visualOptions.h"

#include "core/hostPort.h"
#include "core/playerState.h"
#include "core/radioOptions.h"
#include "core/windowModes.h"
#include "display/colors.h"
#include "display/textures.h"

#include <algorithm>

const std::array<VisualNumber, 12> visualNumbers{{
    {2006, 2000, 45, 35, &PlayerState::textR},
    {2007, 2001, 45, 60, &PlayerState::textG},
    {2008, 2002, 45, 85, &PlayerState::textB},
    {2009, 2003, 245, 35, &PlayerState::bkGrR},
    {2010, 2004, 245, 60, &PlayerState::bkGrG},
    {2011, 2005, 245, 85, &PlayerState::bkGrB},
    {2015, 2012, 445, 35, &PlayerState::songR},
    {2016, 2013, 445, 60, &PlayerState::songG},
    {2017, 2014, 445, 85, &PlayerState::songB},
    {windowAlphaEditId, 2018, 275, 175, &PlayerState::windowAlpha},
    {2021, 2020, 275, 200, &PlayerState::textureAlpha},
    {2023, 2022, 275, 225, &PlayerState::bkTextureAlpha},
}};

const std::array<ColorGroup, 3> colorGroups{{
    {"Text", 10, 3001, {2006, 2007, 2008}},
    {"Background", 210, 3002, {2009, 2010, 2011}},
    {"LCD Screen", 410, 3003, {2015, 2016, 2017}},
}};

namespace {

bool isNumber(const std::string& text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

} // namespace

void changeVisualNumber(PlayerState& st, int editId, const std::string& text) {
    // The opacity is the window's own business: the screen needs no repaint for it.
    if (editId == windowAlphaEditId) {
        if (isNumber(text))
            setWindowOpacity(st, radioOptionNumber(text));
        return;
    }
    for (const VisualNumber& number : visualNumbers)
        if (number.editId == editId) {
            st.*number.field = radioOptionNumber(text);
            st.buttonsDirty = true;
        }
}

std::optional<int> groupColorRow(const PlayerState& st, const ColorGroup& group) {
    std::array<int, 3> rgb{};
    for (std::size_t i = 0; i < rgb.size(); ++i)
        for (const VisualNumber& number : visualNumbers)
            if (number.editId == group.editIds[i])
                rgb[i] = st.*number.field;
    return findNamedColor(rgb[0], rgb[1], rgb[2]);
}

void chooseColorScheme(PlayerState& st, int index) {
    applyScheme(st, index);
    st.buttonsDirty = true;
}

void chooseTexture(PlayerState& st, int slot, const std::string& name) {
    if (loadTexture(st, name, slot) == TextureLoad::Failed)
        host::messageBox(textureFailureText(name), "Error", host::Icon::None, false);
    st.buttonsDirty = true;
}

std::optional<int> toggleRandomColorScheme(PlayerState& st) {
    st.randomColorPlayer = st.randomColorPlayer == 0 ? 1 : 0;
    if (st.randomColorPlayer == 0)
        return std::nullopt;
    return applyRandomColorScheme(st);
}

std::string randomColorText(const PlayerState& st) {
    return st.randomColorPlayer == 1 ? "Random Radio Color: ON" : "Random Radio Color: OFF";
}

void toggleAutoBorderless(PlayerState& st) {
    st.borderlessAuto = st.borderlessAuto == 0 ? 1 : 0;
}

std::string autoBorderlessText(const PlayerState& st, bool opening) {
    if (opening)
        return st.borderlessAuto == 1 ? "Auto Borderless: On" : "Auto Borderless: Off";
    return st.borderlessAuto == 1 ? "Auto Borderless: ON" : "Auto Borderless: OFF";
}
