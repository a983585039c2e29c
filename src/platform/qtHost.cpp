#include "platform/qtHost.h"

#include "core/mouse.h"
#include "core/playerState.h"
#include "core/shutdown.h"
#include "core/startup.h"
#include "core/windowEvents.h"
#include "core/windowModes.h"
#include "display/layout.h"
#include "display/windowModes.h"
#include "platform/appIcon.h"
#include "platform/dialogWindows.h"
#include "platform/menus.h"
#include "platform/mpris.h"
#include "platform/qtBitmaps.h"
#include "platform/qtCanvas.h"
#include "platform/qtFonts.h"
#include "platform/qtSignals.h"
#include "platform/sdlControllers.h"
#include "platform/singleInstance.h"
#include "platform/x11Hotkeys.h"
#include "util/instanceLock.h"
#include "util/log.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QKeyEvent>
#include <QMenuBar>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QUrl>
#include <QWindow>
#include <clocale>
#include <cstdlib>
#include <utility>

namespace {

bool onOffscreenPlatform() {
    return QGuiApplication::platformName() == "offscreen";
}

} // namespace

ScreenWidget::ScreenWidget(PlayerState& st, QWidget* parent) : QWidget(parent), st_(st) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

// afterPaint may start a transition whose message box turns the event loop: a paint arriving
// then shows the last frame, and one more pass follows once this one has ended.
void ScreenWidget::paintEvent(QPaintEvent*) {
    if (inPass_) {
        missedPass_ = true;
    } else {
        inPass_ = true;
        composeFrame();
        afterPaint(st_);
        inPass_ = false;
        if (std::exchange(missedPass_, false))
            update();
    }
    QPainter(this).drawImage(0, 0, frame_);
}

// At the device pixel ratio, so that text and curves are sharp on a scaled desktop, while the
// logic draws in logical pixels. Two buffers take turns, so the shown frame is never half drawn.
void ScreenWidget::composeFrame() {
    const qreal ratio = devicePixelRatioF();
    const QSize pixels = size() * ratio;
    if (backBuffer_.size() != pixels || backBuffer_.devicePixelRatio() != ratio) {
        // Opaque, as the window is: laid on the backing store by a plain copy.
        backBuffer_ = QImage(pixels, QImage::Format_RGB32);
        backBuffer_.setDevicePixelRatio(ratio);
        backBuffer_.fill(Qt::black);
    }
    {
        QPainter painter(&backBuffer_);
        QtCanvas canvas(painter, width(), height(), fonts_, bitmaps_, &paintCache_);
        onPaint(st_, canvas);
    } // the painter lets the buffer go before the end test runs
    std::swap(backBuffer_, frame_);
}

void ScreenWidget::mousePressEvent(QMouseEvent* event) {
    QPoint at = event->position().toPoint();
    if (event->button() == Qt::LeftButton)
        onLeftPress(st_, at.x(), at.y());
    if (event->button() == Qt::RightButton)
        onRightPress(st_, at.x(), at.y());
}

void ScreenWidget::mouseMoveEvent(QMouseEvent* event) {
    const QPoint at = event->globalPosition().toPoint();
    onMouseMoved(st_, at.x(), at.y());
}

void ScreenWidget::resizeEvent(QResizeEvent*) {
    onResize(st_, width(), height());
}

MainWindow::MainWindow(PlayerState& st) : st_(st), screen_(new ScreenWidget(st, this)) {
    setWindowTitle("Marble Tunnel Radio");
    setCentralWidget(screen_);
    resize(gridWidth, gridHeight);
    // Moves count without a button held too: the automatic bare window waits for them.
    screen_->setMouseTracking(true);
    // Before any filter of the menu bar: Alt and its chords belong to the window modes, so no
    // style can give the menu bar the focus or open a menu by keyboard.
    QApplication::instance()->installEventFilter(this);
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return false;
    auto* widget = qobject_cast<QWidget*>(watched);
    if (!widget || widget->window() != this)
        return false;
    auto* key = static_cast<QKeyEvent*>(event);
    const bool alt = key->key() == Qt::Key_Alt;
    if (!alt && !key->modifiers().testFlag(Qt::AltModifier))
        return false;
    if (event->type() == QEvent::KeyPress) {
        const int virtualKey = alt ? virtualKeyAlt : key->key() == Qt::Key_B ? virtualKeyB : 0;
        onSystemKey(st_, virtualKey, key->modifiers().testFlag(Qt::AltModifier) || alt,
                    key->isAutoRepeat());
    }
    return true;
}

void MainWindow::setBare(bool bare) {
    if (bare == bare_)
        return;
    const QRect outer = frameGeometry();
    QWindow* native = windowHandle();
    if (bare && native)
        framedMargins_ = native->frameMargins();
    bare_ = bare;
    menuBar()->setVisible(!bare);
    if (native)
        native->setFlag(Qt::FramelessWindowHint, bare);
    setGeometry(outer.marginsRemoved(bare ? QMargins() : framedMargins_));
    screen_->update();
}

bool MainWindow::finishStartup() {
    starting_ = false;
    return closeWaiting_;
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (starting_) {
        closeWaiting_ = true;
        if (QWidget* box = QApplication::activeModalWidget())
            box->close();
        event->ignore();
        return;
    }
    if (!shutDown_) {
        shutDown_ = true;
        shutdown(st_);
        for (int id : {host::timerRepaint, host::timerVolumeLatch, host::timerPoll,
                       host::timerStationTags, host::timerBorderless})
            host::killTimer(id);
    }
    event->accept();
    QCoreApplication::exit(0);
}

QtBackend::QtBackend(PlayerState& st, MainWindow& window)
    : st_(st), window_(window), previous_(host::installPort(this)),
      hotkeys_(std::make_unique<X11Hotkeys>(st)) {}

QtBackend::~QtBackend() {
    host::installPort(previous_);
}

void QtBackend::setTimer(int id, int milliseconds) {
    std::unique_ptr<QTimer>& timer = timers_[id];
    if (!timer) {
        timer = std::make_unique<QTimer>();
        QObject::connect(timer.get(), &QTimer::timeout, [this, id] { onTimer(st_, id); });
    }
    timer->start(milliseconds);
}

void QtBackend::killTimer(int id) {
    auto it = timers_.find(id);
    if (it != timers_.end())
        it->second->stop();
}

void QtBackend::invalidate(const host::Rect* rect, bool) {
    if (rect)
        window_.screen()->update(
            QRect(QPoint(rect->left, rect->top), QPoint(rect->right - 1, rect->bottom - 1)));
    else
        window_.screen()->update();
}

void QtBackend::messageBox(const std::string& text, const std::string& title, host::Icon icon,
                           bool owned) {
    // Nobody could press OK on a window that is never shown.
    if (onOffscreenPlatform()) {
        logErr("%s: %s\n", title.c_str(), text.c_str());
        return;
    }
    QMessageBox::Icon qtIcon = QMessageBox::NoIcon;
    if (icon == host::Icon::Error)
        qtIcon = QMessageBox::Critical;
    if (icon == host::Icon::Warning)
        qtIcon = QMessageBox::Warning;
    if (icon == host::Icon::Information)
        qtIcon = QMessageBox::Information;
    QMessageBox box(qtIcon, QString::fromStdString(title), QString::fromStdString(text),
                    QMessageBox::Ok, owned ? &window_ : nullptr);
    box.exec();
}

void QtBackend::playerChanged(host::PlayerChange what) {
    for (const auto& listener : listeners_)
        listener(what);
}

void QtBackend::closeMainWindow() {
    // Queued: the press that asks for it is still being handled by the window.
    QMetaObject::invokeMethod(&window_, &QWidget::close, Qt::QueuedConnection);
}

void QtBackend::openDialog(int id) {
    openDialogWindow(&window_, id, st_);
}

std::optional<std::string> QtBackend::pickFolder(const std::string& title) {
    // Nobody could answer a picker that is never shown.
    if (onOffscreenPlatform())
        return std::nullopt;
    const QString folder = QFileDialog::getExistingDirectory(QApplication::activeWindow(),
                                                             QString::fromStdString(title),
                                                             QString(), QFileDialog::ShowDirsOnly);
    if (folder.isEmpty())
        return std::nullopt;
    return folder.toStdString();
}

void QtBackend::openUrl(const std::string& address) {
    // Without xdg-open, $BROWSER or a browser Qt knows there is nothing to hand the address to.
    if (!QDesktopServices::openUrl(QUrl(QString::fromStdString(address))))
        logErr("No web browser could open %s\n", address.c_str());
}

bool QtBackend::isBorderless() {
    return window_.isBare();
}

void QtBackend::setBorderless(bool bare) {
    window_.setBare(bare);
}

void QtBackend::setOpacity(int alpha) {
    window_.setWindowOpacity(alpha / 255.0);
}

bool QtBackend::keyIsDown(int vk) {
    return hotkeys_->keyIsDown(vk);
}

KeysDown QtBackend::keysDown() {
    return hotkeys_->keysDown();
}

void QtBackend::registerHotkey(int id, int modifiers, std::uint32_t vk) {
    hotkeys_->registerHotkey(id, modifiers, vk);
}

void QtBackend::unregisterHotkey(int id) {
    hotkeys_->unregisterHotkey(id);
}

void QtBackend::listenToPlayer(std::function<void(host::PlayerChange)> listener) {
    listeners_.push_back(std::move(listener));
}

int runPlayer(int argc, char** argv) {
    const bool platformChosen = std::getenv("QT_QPA_PLATFORM") != nullptr;
    if (!platformChosen && !std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY")) {
        logErr("Could not create the main window: no display (QT_QPA_PLATFORM=offscreen runs "
               "without one).\n");
        return -1;
    }
    QApplication app(argc, argv);
    // Docks and Wayland match the window to the installed desktop entry by this name.
    QGuiApplication::setDesktopFileName("marble-tunnel-radio");
    // Before anything of the start-up, so that a second player in this folder touches no file.
    const std::string dataFolder = QDir::currentPath().toStdString();
    DataFolderLock lock = lockDataFolder(dataFolder);
    if (lock.state == FolderLock::HeldByAnother) {
        const bool raised = askRunningPlayerToRaise(instanceSocketPath(dataFolder));
        logOut("A player already runs in %s%s\n", dataFolder.c_str(),
               raised ? ": its window is raised." : ".");
        return 0;
    }
    if (lock.state == FolderLock::Unavailable)
        logErr("Cannot lock the data folder (%s): a second player there would not be stopped.\n",
               lock.reason.c_str());
    installFontSubstitutions();
    // Qt applies the user's locale, and "%.1f" would then print "88,7" in some sessions.
    std::setlocale(LC_NUMERIC, "C");

    auto st = std::make_unique<PlayerState>();
    QtBitmapStore bitmaps;
    st->bitmapStore = &bitmaps;
    MainWindow window(*st);
    window.screen()->setBitmaps(&bitmaps);
    QtBackend backend(*st, window);
    SdlControllers controllers;
    // The start asks for the newest version at the window's creation, before the stored settings
    // are read, and asks only once the first song plays: a slow web site must not hold it back.
    const bool versionAsked = st->versionCheck;
    closeWindowOnQuitSignals(&window);
    closeWindowOnSessionEnd(&window);
    QIcon icon = makeAppIcon();
    if (icon.isNull())
        host::messageBox("Could not load icon!", "Error", host::Icon::Error, true);
    window.setWindowIcon(icon);
    onResize(*st, gridWidth, gridHeight);
    if (!window.winId())
        return -1;

    runEarlyStartup(*st);
    runStartupSequence(*st);
    checkVersionAtStart(*st, versionAsked);
    if (window.finishStartup()) {
        window.close();
        return 0;
    }
    window.setWindowOpacity(startupOpacity(st->windowAlpha) / 255.0);
    startMainTimers(*st);
    createMenus(window, *st);
    window.show();
    RaiseListener raiseOnSecondStart(window, instanceSocketPath(dataFolder));
    // Only now: a message box of the start-up turns the event loop, and a Next from the desktop
    // would then run inside the start-up.
    MprisService mpris(*st, window, backend);
    return app.exec();
}
