#include "dialogs/dialogs.h"

#include "core/commands.h"
#include "platform/dialogWindows.h"

void installDialogs() {
    installDialogFiller(command::radioDialog, fillRadioOptionDialog);
    installDialogFiller(command::aboutDialog, fillAboutDialog);
    installDialogFiller(command::songInfoDialog, fillSongInfoDialog);
    installDialogFiller(command::favoritesDialog, fillFavoriteOptionsDialog);
    installDialogFiller(command::foldersDialog, fillFolderDialog);
    installDialogFiller(command::stationsDialog, fillStationsDialog);
    installDialogFiller(command::updateDialog, fillUpdateDialog);
    installDialogFiller(command::hotkeysDialog, fillHotkeyDialog);
    installDialogFiller(command::visualDialog, fillVisualDialog);
}
