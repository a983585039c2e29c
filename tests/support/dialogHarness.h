#pragma once
#include "core/playerState.h"
#include "dialogs/dialogs.h"
#include "platform/dialogWindows.h"
#include "support/recordingCanvas.h"
#include "support/recordingPlatform.h"
#include "support/tempDir.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QLineEdit>
#include <QPushButton>
#include <QRegion>
#include <QTimer>
#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <vector>

// The texts a dialog paints, in their order, with their boxes.
inline std::vector<RecordingCanvas::Call> paintedTexts(DialogWindow& window) {
    RecordingCanvas canvas;
    window.paint(canvas);
    std::erase_if(canvas.calls, [](const RecordingCanvas::Call& call) {
        return call.kind != RecordingCanvas::Kind::Text;
    });
    return canvas.calls;
}

// A dialog as the menu opens it over a state of its own, its controls found by their ids.
struct Dialog {
    TempDir data;
    PlayerState st;
    RecordingPlatform platform;
    DialogWindow* window = nullptr;
    explicit Dialog(int id, void (*setUp)(PlayerState&) = nullptr) {
        installDialogs();
        st.dataDirectory = data.str();
        std::tie(st.rawMIDI, st.rawMP3, st.rawTracker, st.rawFav, st.rawRadio) =
            std::tuple(50, 50, 50, 50, 20);
        if (setUp)
            setUp(st);
        window = openDialogWindow(nullptr, id, st);
    }
    ~Dialog() { delete window; }
    QLineEdit* edit(int id) { return window->findChild<QLineEdit*>(QString::number(id)); }
    QWidget* control(int id) { return window->findChild<QWidget*>(QString::number(id)); }
    void click(int id) { static_cast<QPushButton*>(control(id))->click(); }
    std::vector<std::string> labels() {
        std::vector<std::string> texts;
        for (const RecordingCanvas::Call& call : paintedTexts(*window))
            texts.push_back(call.text);
        return texts;
    }
    // The dialog's own timer, fired now rather than waited for.
    void tick() {
        QTimer* timer = window->findChild<QTimer*>();
        timer->start(0);
        QApplication::processEvents();
    }
};

// The pixels dark enough to be text in box: the black of the painted texts, smoothed at its edges.
inline std::vector<QPoint> inkIn(const QImage& image, QRect box) {
    std::vector<QPoint> ink;
    box &= image.rect();
    for (int y = box.top(); y <= box.bottom(); ++y)
        for (int x = box.left(); x <= box.right(); ++x)
            if (qGray(image.pixel(x, y)) < 96)
                ink.emplace_back(x, y);
    return ink;
}

// The dialog's window grabbed and saved as NAME.png among the screenshots, for a person to look
// at: every painted text shows ink inside its box, and nothing but the texts and the controls
// leaves ink on the surface.
inline QImage grabDialog(Dialog& dialog, const std::string& name) {
    QDir().mkpath(SCREENSHOT_DIR);
    const QImage image = dialog.window->grab().toImage();
    EXPECT_TRUE(image.save(QString::fromStdString(SCREENSHOT_DIR "/" + name + ".png")));
    QRegion used;
    for (const RecordingCanvas::Call& call : paintedTexts(*dialog.window)) {
        const QRect box(call.box.x, call.box.y, call.box.width, call.box.height);
        used += box;
        if (!call.text.empty()) {
            EXPECT_GT(inkIn(image, box).size(), 10u) << call.text;
        }
    }
    for (const QWidget* child : dialog.window->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        used += child->geometry();
    const std::vector<QPoint> all = inkIn(image, image.rect());
    EXPECT_EQ(
        std::count_if(all.begin(), all.end(), [&used](QPoint at) { return !used.contains(at); }),
        0);
    return image;
}
