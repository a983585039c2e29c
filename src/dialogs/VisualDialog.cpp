#include "core/playerState.h"
#include "core/visualOptions.h"
#include "core/windowModes.h"
#include "dialogs/controls.h"
#include "dialogs/dialogs.h"
#include "display/colors.h"
#include "display/panels.h"
#include "platform/dialogWindows.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

namespace {

constexpr int listHeight = 24;
constexpr int maximum = 255;

struct Label {
    const char* text;
    Box box;
    bool centred;
};
constexpr std::array<Label, 6> labels{{
    {"Window Alpha Level:", {10, 175, 250, 25}, false},
    {"LCD Screen Texture Alpha Level:", {10, 200, 250, 25}, false},
    {"Background Texture Alpha Level:", {10, 225, 250, 25}, false},
    {"Color Scheme", {10, 255, 150, 25}, true},
    {"LCD Texture", {10, 310, 150, 25}, true},
    {"Background Texture", {10, 365, 150, 25}, true},
}};

void paintVisualOptions(Canvas& canvas, const PlayerState& st) {
    const TextBoxStyle style{.size = 18, .scaled = false, .bold = true, .wrapped = true};
    TextBoxStyle centred = style;
    centred.centered = true;
    TextBoxStyle framed = centred;
    framed.border = 1;
    for (const ColorGroup& group : colorGroups) {
        drawTextBox(canvas, st, group.title, {group.x, 8, 120, 150}, framed);
        int y = 35;
        for (const char* channel : {"R:", "G:", "B:"}) {
            drawTextBox(canvas, st, channel, {group.x + 5, y, 250, 20}, style);
            y += 25;
        }
    }
    for (const Label& label : labels)
        drawTextBox(canvas, st, label.text, label.box, label.centred ? centred : style);
}

QComboBox* addList(DialogWindow& window, int id, QRect box, const std::vector<std::string>& items,
                   std::optional<int> selected) {
    QComboBox* list = makeDropDown(&window, id, box);
    for (const std::string& item : items)
        list->addItem(QString::fromStdString(item));
    list->setCurrentIndex(selected.value_or(-1)); // no match: no selection
    return list;
}

// A named colour writes its three figures into the group's edits, each a change of its own.
void addColorLists(DialogWindow& window, PlayerState& st, std::array<QComboBox*, 3>& lists) {
    std::vector<std::string> names;
    for (const ColorEntry& color : namedColors)
        names.push_back(color.name);
    for (std::size_t g = 0; g < colorGroups.size(); ++g) {
        const ColorGroup& group = colorGroups[g];
        lists[g] = addList(window, group.listId, {group.x + 10, 115, 100, listHeight}, names,
                           groupColorRow(st, group));
        QObject::connect(lists[g], &QComboBox::activated, &window, [&window, &st, &group](int row) {
            const ColorEntry& color = namedColors[static_cast<std::size_t>(row)];
            const std::array<int, 3> rgb{color.r, color.g, color.b};
            for (std::size_t i = 0; i < rgb.size(); ++i) {
                auto* edit = window.findChild<QLineEdit*>(QString::number(group.editIds[i]));
                const QString text = QString::number(rgb[i]);
                // An edit that shows the figure already signals no change; it is stored all
                // the same.
                if (edit->text() == text)
                    changeVisualNumber(st, group.editIds[i], text.toStdString());
                else
                    edit->setText(text);
            }
            st.buttonsDirty = true;
            window.update();
        });
    }
}

// The scheme sets the player's colours and shows them in the colour lists, without a word to
// the lists' own handlers: the number fields keep their figures until the next opening.
QComboBox* addSchemeList(DialogWindow& window, PlayerState& st,
                         const std::array<QComboBox*, 3>& colorLists) {
    std::vector<std::string> names;
    for (const ColorScheme& scheme : colorSchemes)
        names.push_back(scheme.name);
    QComboBox* schemes =
        addList(window, 3005, {10, 276, 150, listHeight}, names, findSchemeIndex(st));
    QObject::connect(schemes, &QComboBox::activated, &window, [&st, colorLists](int index) {
        chooseColorScheme(st, index);
        for (std::size_t g = 0; g < colorGroups.size(); ++g)
            if (std::optional<int> row = groupColorRow(st, colorGroups[g]))
                colorLists[g]->setCurrentIndex(*row);
    });
    return schemes;
}

void addTextureList(DialogWindow& window, PlayerState& st, int id, int y, int slot,
                    const std::string& current) {
    std::vector<std::string> names;
    std::optional<int> selected;
    for (const TextureInfo& texture : st.textures) {
        if (!current.empty() && texture.name == current && !selected)
            selected = static_cast<int>(names.size());
        names.push_back(texture.name);
    }
    QComboBox* list = addList(window, id, {10, y, 150, listHeight}, names, selected);
    QObject::connect(list, &QComboBox::activated, &window, [&st, list, slot](int index) {
        chooseTexture(st, slot, list->itemText(index).toStdString());
    });
}

void addButtons(DialogWindow& window, PlayerState& st, QComboBox* schemes) {
    QObject::connect(makeButton(&window, 3004, "Borderless Window", {355, 275, 200, 25}),
                     &QPushButton::clicked, &window, [&st] { toggleBorderless(st); });
    QPushButton* random = makeButton(&window, 3006, "Random Color Scheme", {355, 320, 200, 25});
    QObject::connect(random, &QPushButton::clicked, &window, [&st, random, schemes] {
        const std::optional<int> drawn = toggleRandomColorScheme(st);
        random->setText(QString::fromStdString(randomColorText(st)));
        if (drawn)
            schemes->setCurrentIndex(*drawn);
    });
    QPushButton* automatic = makeButton(
        &window, 3008, QString::fromStdString(autoBorderlessText(st, true)), {355, 365, 200, 25});
    QObject::connect(automatic, &QPushButton::clicked, &window, [&st, automatic] {
        toggleAutoBorderless(st);
        automatic->setText(QString::fromStdString(autoBorderlessText(st, false)));
    });
    QObject::connect(makeButton(&window, 3007, "Exit", {355, 410, 200, 25}), &QPushButton::clicked,
                     &window, &QWidget::close);
}

} // namespace

// The look of the player: colours, alphas, scheme, textures and the window's form, each change
// in force at once and stored with the settings at exit. The lists answer the user's choices
// only, never the dialog's own selections.
void fillVisualDialog(DialogWindow& window, PlayerState& st) {
    for (const VisualNumber& number : visualNumbers)
        makeSpinField(&window, {number.editId, number.upDownId}, {number.x, number.y, 50, 20},
                      st.*number.field, maximum,
                      [&window, &st, id = number.editId](const QString& text) {
                          changeVisualNumber(st, id, text.toStdString());
                          window.update();
                      });
    std::array<QComboBox*, 3> colorLists{};
    addColorLists(window, st, colorLists);
    QComboBox* schemes = addSchemeList(window, st, colorLists);
    addTextureList(window, st, 3009, 330, lcdSlot, st.currentLCDTextureName);
    addTextureList(window, st, 3010, 390, backgroundSlot, st.currentBkTextureName);
    addButtons(window, st, schemes);
    window.paint = [&st](Canvas& canvas) { paintVisualOptions(canvas, st); };
}
