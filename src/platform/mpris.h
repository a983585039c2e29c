#pragma once
#include "core/mediaControls.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QVariantMap>
#include <memory>

class QtBackend;
class QWidget;
struct PlayerState;

// The player on the session bus as an MPRIS 2 media player, so that media keys, the panel's sound
// menu and playerctl reach it. Its calls run on the user-interface thread like menu commands,
// and every one goes through an operation the menu or the hotkeys already run.
class MprisService : public QObject {
  public:
    MprisService(PlayerState& st, QWidget& window, QtBackend& backend);
    ~MprisService() override;
    MprisService(const MprisService&) = delete;
    MprisService& operator=(const MprisService&) = delete;

    PlayerState& state() { return st_; }
    QWidget& window() { return window_; }
    // The song's id on the bus: new at each song, NoTrack while nothing is loaded.
    QDBusObjectPath trackId(const MediaSnapshot& snapshot) const;
    // Compares the player with the last look and tells the bus what changed.
    void publishChanges();
    void emitSeeked();

  private:
    PlayerState& st_;
    QWidget& window_;
    QTimer poll_;
    MediaSnapshot published_;
    quint64 track_ = 1;
    quint64 publishedTrack_ = 1;
    qlonglong lastPositionUs_ = 0;
    QString busName_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

class MprisRoot : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2")
    Q_PROPERTY(bool CanQuit READ canQuit)
    Q_PROPERTY(bool CanRaise READ canRaise)
    Q_PROPERTY(bool HasTrackList READ hasTrackList)
    Q_PROPERTY(QString Identity READ identity)
    Q_PROPERTY(QString DesktopEntry READ desktopEntry)
    Q_PROPERTY(QStringList SupportedUriSchemes READ supportedUriSchemes)
    Q_PROPERTY(QStringList SupportedMimeTypes READ supportedMimeTypes)

  public:
    explicit MprisRoot(MprisService* service);
    bool canQuit() const { return true; }
    bool canRaise() const { return true; }
    bool hasTrackList() const { return false; }
    QString identity() const { return "Marble Tunnel Radio"; }
    QString desktopEntry() const { return "marble-tunnel-radio"; }
    QStringList supportedUriSchemes() const { return {}; }
    QStringList supportedMimeTypes() const { return {}; }

  public slots:
    void Raise();
    void Quit();

  private:
    MprisService* service_;
};

class MprisPlayer : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2.Player")
    Q_PROPERTY(QString PlaybackStatus READ playbackStatus)
    Q_PROPERTY(double Rate READ rate WRITE setRate)
    Q_PROPERTY(QVariantMap Metadata READ metadata)
    Q_PROPERTY(double Volume READ volume WRITE setVolume)
    Q_PROPERTY(qlonglong Position READ position)
    Q_PROPERTY(double MinimumRate READ rate)
    Q_PROPERTY(double MaximumRate READ rate)
    Q_PROPERTY(bool CanGoNext READ yes)
    Q_PROPERTY(bool CanGoPrevious READ canGoPrevious)
    Q_PROPERTY(bool CanPlay READ yes)
    Q_PROPERTY(bool CanPause READ yes)
    Q_PROPERTY(bool CanSeek READ canSeek)
    Q_PROPERTY(bool CanControl READ yes)

  public:
    explicit MprisPlayer(MprisService* service);
    QString playbackStatus() const;
    double rate() const { return 1.0; }
    void setRate(double) {}
    QVariantMap metadata() const;
    double volume() const;
    void setVolume(double volume);
    qlonglong position() const;
    bool yes() const { return true; }
    bool canGoPrevious() const;
    bool canSeek() const;

  public slots:
    void Next();
    void Previous();
    void Pause();
    void PlayPause();
    void Stop();
    void Play();
    void Seek(qlonglong offset);
    void SetPosition(const QDBusObjectPath& trackId, qlonglong position);
    // The message comes last so that the answer can be an error.
    void OpenUri(const QString& uri, const QDBusMessage& message);

  signals:
    void Seeked(qlonglong position);

  private:
    MprisService* service_;
};

// The metadata map of a snapshot, as the bus carries it.
QVariantMap mprisMetadata(const MediaSnapshot& snapshot, const QDBusObjectPath& trackId);
QString mprisStatus(MediaStatus status);
