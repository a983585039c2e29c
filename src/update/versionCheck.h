#pragma once

// Asks the web server for the newest version; true when it offers a newer one than this.
bool runStartupVersionCheck();
