#include "input/keyNames.h"

#include "input/controllerPort.h"
#include "input/inputState.h"

#include <array>

namespace {

// X keysyms by value, so that the logic needs no X header.
constexpr std::uint32_t xkBackSpace = 0xFF08, xkTab = 0xFF09, xkReturn = 0xFF0D, xkPause = 0xFF13,
                        xkScrollLock = 0xFF14, xkEscape = 0xFF1B, xkHome = 0xFF50, xkLeft = 0xFF51,
                        xkUp = 0xFF52, xkRight = 0xFF53, xkDown = 0xFF54, xkPageUp = 0xFF55,
                        xkPageDown = 0xFF56, xkEnd = 0xFF57, xkInsert = 0xFF63, xkMenu = 0xFF67,
                        xkNumLock = 0xFF7F, xkKpEnter = 0xFF8D, xkKpMultiply = 0xFFAA,
                        xkKpAdd = 0xFFAB, xkKpSeparator = 0xFFAC, xkKpSubtract = 0xFFAD,
                        xkKpDecimal = 0xFFAE, xkKpDivide = 0xFFAF, xkKp0 = 0xFFB0, xkF1 = 0xFFBE,
                        xkShiftL = 0xFFE1, xkShiftR = 0xFFE2, xkControlL = 0xFFE3,
                        xkControlR = 0xFFE4, xkCapsLock = 0xFFE5, xkAltL = 0xFFE9, xkAltR = 0xFFEA,
                        xkSuperL = 0xFFEB, xkSuperR = 0xFFEC, xkDelete = 0xFFFF;

// A key with a word or a keysym of its own, by virtual-key code; letters, digits, the keypad's
// digits and the function keys follow from their ranges. No word: the table of names has none.
struct NamedKey {
    std::uint32_t vk;
    const char* word;
    std::vector<std::uint32_t> keysyms;
};

const std::array<NamedKey, 42> namedKeys{{
    {8, "Backspace", {xkBackSpace}},
    {9, "Tab", {xkTab}},
    {13, "Enter", {xkReturn, xkKpEnter}},
    {16, "Shift", {xkShiftL, xkShiftR}},
    {17, "Control", {xkControlL, xkControlR}},
    {18, "Alt", {xkAltL, xkAltR}},
    {19, "Pause", {xkPause}},
    {20, "Caps Lock", {xkCapsLock}},
    {27, "Escape", {xkEscape}},
    {32, nullptr, {0x20}},
    {33, "Page Up", {xkPageUp}},
    {34, "Page Down", {xkPageDown}},
    {35, "End", {xkEnd}},
    {36, "Home", {xkHome}},
    {37, "Left Arrow", {xkLeft}},
    {38, "Up Arrow", {xkUp}},
    {39, "Right Arrow", {xkRight}},
    {40, "Down Arrow", {xkDown}},
    {45, "Insert", {xkInsert}},
    {46, "Delete", {xkDelete}},
    {91, "Left Win", {xkSuperL}},
    {92, "Right Win", {xkSuperR}},
    {93, "Apps", {xkMenu}},
    {106, "Multiply", {xkKpMultiply}},
    {107, "Add", {xkKpAdd}},
    {108, nullptr, {xkKpSeparator}},
    {109, "Subtract", {xkKpSubtract}},
    {110, "Decimal", {xkKpDecimal}},
    {111, "Divide", {xkKpDivide}},
    {144, "Num Lock", {xkNumLock}},
    {145, "Scroll Lock", {xkScrollLock}},
    {186, ";", {';'}},
    {187, "+", {'=', '+'}}, // the key that types "=" and, shifted, "+"
    {188, ",", {','}},
    {189, "-", {'-'}},
    {190, ".", {'.'}},
    {191, "/", {'/'}},
    {192, "`", {'`'}},
    {219, "[", {'['}},
    {220, "\\", {'\\'}},
    {221, "]", {']'}},
    {222, "'", {'\''}},
}};

const NamedKey* findNamedKey(std::uint32_t vk) {
    for (const NamedKey& key : namedKeys)
        if (key.vk == vk)
            return &key;
    return nullptr;
}

// The printable character a key types with no modifier, as its keysym gives it; 0 for none.
char typedCharacter(std::uint32_t keysym) {
    if (keysym >= 0x20 && keysym <= 0x7E)
        return static_cast<char>(keysym);
    if (keysym >= xkKp0 && keysym <= xkKp0 + 9)
        return static_cast<char>('0' + (keysym - xkKp0));
    if (keysym >= xkKpMultiply && keysym <= xkKpDivide)
        return "*+,-./"[keysym - xkKpMultiply];
    return 0;
}

const std::array<const char*, 15> xboxButtons{"A",
                                              "B",
                                              "X",
                                              "Y",
                                              "Back",
                                              "Guide",
                                              "Start",
                                              "Left Stick",
                                              "Right Stick",
                                              "Left Shoulder",
                                              "Right Shoulder",
                                              "DPad Up",
                                              "DPad Down",
                                              "DPad Left",
                                              "DPad Right"};
const std::array<const char*, 15> playStationButtons{
    "Cross", "Circle", "Square", "Triangle", "Select",    "PS",        "Start",     "L3",
    "R3",    "L1",     "R1",     "DPad Up",  "DPad Down", "DPad Left", "DPad Right"};

std::string triggerName(ControllerFamily family, int trigger) {
    const bool left = trigger == leftTriggerAxis;
    switch (family) {
    case ControllerFamily::Xbox:
        return left ? "LT" : "RT";
    case ControllerFamily::PlayStation:
        return left ? "L2" : "R2";
    case ControllerFamily::Generic:
        break;
    }
    return left ? "Left Trigger" : "Right Trigger";
}

// The family of the controller in slot 0; false when none is open there.
bool slotZeroFamily(const InputState& st, ControllerFamily& family) {
    if (st.controllerNames[0].empty())
        return false;
    family = controllerFamily(st.controllerNames[0]);
    return true;
}

} // namespace

std::vector<std::uint32_t> keysymsOfVirtualKey(std::uint32_t vk) {
    if ((vk >= '0' && vk <= '9'))
        return {vk};
    if (vk >= 'A' && vk <= 'Z')
        return {vk + ('a' - 'A')};
    if (vk >= 96 && vk <= 105)
        return {xkKp0 + (vk - 96)};
    if (vk >= 112 && vk <= 135) // F1 to F24
        return {xkF1 + (vk - 112)};
    const NamedKey* key = findNamedKey(vk);
    return key ? key->keysyms : std::vector<std::uint32_t>{};
}

std::uint32_t virtualKeyOfKeysym(std::uint32_t keysym) {
    // Letters and digits are their own codes; the search asks for them at every tick.
    if ((keysym >= 'A' && keysym <= 'Z') || (keysym >= '0' && keysym <= '9'))
        return keysym;
    if (keysym >= 'a' && keysym <= 'z')
        return keysym - ('a' - 'A');
    for (std::uint32_t vk = 1; vk < 256; ++vk)
        for (std::uint32_t each : keysymsOfVirtualKey(vk))
            if (each == keysym)
                return vk;
    return 0;
}

std::string keyName(std::uint32_t vk) {
    if (vk >= 32 && vk <= 126) {
        if ((vk >= 'A' && vk <= 'Z') || (vk >= '0' && vk <= '9'))
            return std::string(1, static_cast<char>(vk));
        const std::vector<std::uint32_t> keysyms = keysymsOfVirtualKey(vk);
        if (!keysyms.empty())
            if (char typed = typedCharacter(keysyms.front()))
                return std::string(1, typed);
    }
    if (vk >= 96 && vk <= 105)
        return "Numpad " + std::to_string(vk - 96);
    if (vk >= 112 && vk <= 123)
        return "F" + std::to_string(vk - 111);
    const NamedKey* key = findNamedKey(vk);
    return key && key->word ? key->word : "Unknown";
}

ControllerFamily controllerFamily(const std::string& name) {
    if (name.find("Xbox") != std::string::npos)
        return ControllerFamily::Xbox;
    if (name.find("DualSense") != std::string::npos || name.find("DualShock") != std::string::npos)
        return ControllerFamily::PlayStation;
    return ControllerFamily::Generic;
}

std::string buttonName(ControllerFamily family, int index) {
    if (family == ControllerFamily::Generic) {
        ControllerPort* port = controllerPort();
        std::string word = port ? port->buttonWord(index) : "";
        return word.empty() ? "Unknown Button" : word;
    }
    if (index < 0 || index >= 15)
        return "Invalid";
    return family == ControllerFamily::Xbox ? xboxButtons[index] : playStationButtons[index];
}

std::vector<InputEntry> fillInputList(const InputState& st) {
    std::vector<InputEntry> list{{"None", noInputEntry}};
    ControllerFamily family;
    if (!slotZeroFamily(st, family))
        return list;
    for (int index = 0; index <= 20; ++index)
        list.push_back({buttonName(family, index), index + 1});
    list.push_back({triggerName(family, leftTriggerAxis), leftTriggerEntry});
    list.push_back({triggerName(family, rightTriggerAxis), rightTriggerEntry});
    return list;
}

int selectBoundInput(const std::vector<InputEntry>& list, const InputState& st, int button,
                     int trigger) {
    ControllerFamily family = ControllerFamily::Generic;
    slotZeroFamily(st, family);
    std::string wanted;
    if (button != -1)
        wanted = buttonName(family, button);
    else if (trigger == leftTriggerAxis || trigger == rightTriggerAxis)
        wanted = triggerName(family, trigger);
    else
        return -1;
    for (std::size_t i = 0; i < list.size(); ++i)
        if (list[i].first == wanted)
            return static_cast<int>(i);
    return -1;
}
