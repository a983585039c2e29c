#include "platform/mpris.h"

#include "core/hostPort.h"
#include "platform/qtHost.h"
#include "util/log.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QWidget>
#include <memory>
#include <unistd.h>

namespace {

const QString objectPath = "/org/mpris/MediaPlayer2";
const QString playerInterface = "org.mpris.MediaPlayer2.Player";
const QString busNameBase = "org.mpris.MediaPlayer2.marbletunnelradio";
constexpr int pollMs = 250;
constexpr qlonglong wrapMarginUs = 1000000;

} // namespace

QString mprisStatus(MediaStatus status) {
    switch (status) {
    case MediaStatus::Playing:
        return "Playing";
    case MediaStatus::Paused:
        return "Paused";
    case MediaStatus::Stopped:
        break;
    }
    return "Stopped";
}

QVariantMap mprisMetadata(const MediaSnapshot& snapshot, const QDBusObjectPath& trackId) {
    QVariantMap map;
    map["mpris:trackid"] = QVariant::fromValue(trackId);
    if (snapshot.lengthUs)
        map["mpris:length"] = static_cast<qlonglong>(*snapshot.lengthUs);
    map["xesam:title"] = QString::fromStdString(snapshot.title);
    map["xesam:album"] = QString::fromStdString(snapshot.album);
    if (!snapshot.url.empty())
        map["xesam:url"] = QString::fromStdString(snapshot.url);
    return map;
}

MprisService::MprisService(PlayerState& st, QWidget& window, QtBackend& backend)
    : st_(st), window_(window) {
    new MprisRoot(this);
    new MprisPlayer(this);
    published_ = mediaSnapshot(st_);
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        logOut("No session bus: media keys and the desktop's player controls cannot reach the "
               "player.\n");
        return;
    }
    if (!bus.registerObject(objectPath, this, QDBusConnection::ExportAdaptors)) {
        logErr("Cannot offer the player on the session bus: %s\n",
               bus.lastError().message().toLocal8Bit().constData());
        return;
    }
    // A player of another data folder may hold the plain name.
    busName_ = busNameBase;
    if (!bus.registerService(busName_)) {
        busName_ = busNameBase + ".instance" + QString::number(::getpid());
        if (!bus.registerService(busName_)) {
            logErr("Cannot take a name on the session bus: %s\n",
                   bus.lastError().message().toLocal8Bit().constData());
            busName_.clear();
            return;
        }
    }
    logOut("On the session bus as %s\n", busName_.toLocal8Bit().constData());
    // The backend outlives this object only at the very end; the token keeps a late notice out.
    std::weak_ptr<int> alive = alive_;
    backend.listenToPlayer([this, alive](host::PlayerChange what) {
        if (alive.expired())
            return;
        if (what == host::PlayerChange::Song)
            ++track_;
        if (what == host::PlayerChange::Position)
            emitSeeked();
        publishChanges();
    });
    connect(&poll_, &QTimer::timeout, this, &MprisService::publishChanges);
    poll_.start(pollMs);
}

MprisService::~MprisService() {
    if (!busName_.isEmpty())
        QDBusConnection::sessionBus().unregisterService(busName_);
}

QDBusObjectPath MprisService::trackId(const MediaSnapshot& snapshot) const {
    if (!snapshot.hasSong)
        return QDBusObjectPath("/org/mpris/MediaPlayer2/TrackList/NoTrack");
    return QDBusObjectPath(QString("/org/marbletunnelradio/track/%1").arg(track_));
}

void MprisService::publishChanges() {
    if (busName_.isEmpty())
        return;
    const MediaSnapshot now = mediaSnapshot(st_);
    QVariantMap changed;
    if (now.status != published_.status)
        changed["PlaybackStatus"] = mprisStatus(now.status);
    const bool newTrack = track_ != publishedTrack_;
    if (newTrack || now.hasSong != published_.hasSong || now.title != published_.title ||
        now.album != published_.album || now.url != published_.url ||
        now.lengthUs != published_.lengthUs) {
        changed["Metadata"] = mprisMetadata(now, trackId(now));
    }
    if (now.volume != published_.volume)
        changed["Volume"] = now.volume;
    if (now.canGoPrevious != published_.canGoPrevious)
        changed["CanGoPrevious"] = now.canGoPrevious;
    if (now.canSeek != published_.canSeek)
        changed["CanSeek"] = now.canSeek;
    // A file that loops wraps to its start without a new track: that is a jump too.
    const qlonglong position = mediaPositionUs(st_);
    if (track_ == publishedTrack_ && now.status == MediaStatus::Playing &&
        position + wrapMarginUs < lastPositionUs_)
        emitSeeked();
    lastPositionUs_ = position;
    published_ = now;
    publishedTrack_ = track_;
    if (changed.isEmpty())
        return;
    QDBusMessage signal = QDBusMessage::createSignal(objectPath, "org.freedesktop.DBus.Properties",
                                                     "PropertiesChanged");
    signal << playerInterface << changed << QStringList();
    QDBusConnection::sessionBus().send(signal);
}

void MprisService::emitSeeked() {
    lastPositionUs_ = mediaPositionUs(st_);
    if (auto* player = findChild<MprisPlayer*>())
        emit player->Seeked(lastPositionUs_);
}

MprisRoot::MprisRoot(MprisService* service) : QDBusAbstractAdaptor(service), service_(service) {}

void MprisRoot::Raise() {
    QWidget& window = service_->window();
    window.show();
    window.raise();
    window.activateWindow();
}

void MprisRoot::Quit() {
    // The close box's path: one shutdown, every file saved, exit code 0.
    host::closeMainWindow();
}

MprisPlayer::MprisPlayer(MprisService* service)
    : QDBusAbstractAdaptor(service), service_(service) {}

QString MprisPlayer::playbackStatus() const {
    return mprisStatus(mediaSnapshot(service_->state()).status);
}

QVariantMap MprisPlayer::metadata() const {
    const MediaSnapshot now = mediaSnapshot(service_->state());
    return mprisMetadata(now, service_->trackId(now));
}

double MprisPlayer::volume() const {
    return mediaSnapshot(service_->state()).volume;
}

void MprisPlayer::setVolume(double volume) {
    mediaSetVolume(service_->state(), volume);
    service_->publishChanges();
}

qlonglong MprisPlayer::position() const {
    return mediaPositionUs(service_->state());
}

bool MprisPlayer::canGoPrevious() const {
    return mediaSnapshot(service_->state()).canGoPrevious;
}

bool MprisPlayer::canSeek() const {
    return mediaSnapshot(service_->state()).canSeek;
}

void MprisPlayer::Next() {
    mediaNext(service_->state());
    service_->publishChanges();
}

void MprisPlayer::Previous() {
    mediaPrevious(service_->state());
    service_->publishChanges();
}

void MprisPlayer::Pause() {
    mediaPause(service_->state());
    service_->publishChanges();
}

void MprisPlayer::PlayPause() {
    mediaPlayPause(service_->state());
    service_->publishChanges();
}

void MprisPlayer::Stop() {
    mediaStop(service_->state());
    service_->publishChanges();
}

void MprisPlayer::Play() {
    mediaPlay(service_->state());
    service_->publishChanges();
}

// Past the end is the next song; before the start is the start.
void MprisPlayer::Seek(qlonglong offset) {
    PlayerState& st = service_->state();
    const MediaSnapshot now = mediaSnapshot(st);
    if (!now.canSeek)
        return;
    const qlonglong target = std::max<qlonglong>(0, mediaPositionUs(st) + offset);
    if (target > *now.lengthUs)
        mediaNext(st);
    else
        mediaSeek(st, target);
    service_->publishChanges();
}

void MprisPlayer::SetPosition(const QDBusObjectPath& trackId, qlonglong position) {
    if (trackId != service_->trackId(mediaSnapshot(service_->state())))
        return; // a request about a song that has gone
    mediaSeek(service_->state(), position);
}

void MprisPlayer::OpenUri(const QString&, const QDBusMessage& message) {
    message.setDelayedReply(true);
    QDBusConnection::sessionBus().send(message.createErrorReply(
        QDBusError::NotSupported, "Marble Tunnel Radio opens no addresses."));
}
