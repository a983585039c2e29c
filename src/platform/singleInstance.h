#pragma once
#include <QLocalServer>
#include <string>

class QWidget;

// A second start in a data folder that a player holds asks that player for its window: true when
// the player took the request.
bool askRunningPlayerToRaise(const std::string& socketPath);

// The holder's side: every second start shows, raises and activates the window.
class RaiseListener {
  public:
    RaiseListener(QWidget& window, const std::string& socketPath);

  private:
    QLocalServer server_;
};
