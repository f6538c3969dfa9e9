#include "viewer/model/Preferences.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

namespace zelto::view {

namespace {

constexpr qsizetype MOST_RECENT = 12;
/// Files whose display is remembered; the ones shown longest ago are forgotten first.
constexpr qsizetype MOST_DISPLAYS = 200;

/// A key without characters that settings files treat specially.
QString KeyOf(const QString& path) {
    return QCryptographicHash::hash(path.toUtf8(), QCryptographicHash::Sha1).toHex();
}

} // namespace

QStringList Preferences::RecentFiles() const {
    return m_settings.value("recent").toStringList();
}

void Preferences::AddRecentFile(const QString& path) {
    QStringList files = RecentFiles();
    files.removeAll(path);
    files.prepend(path);
    m_settings.setValue("recent", QStringList(files.mid(0, MOST_RECENT)));
}

void Preferences::ClearRecentFiles() {
    m_settings.remove("recent");
}

QVariantMap Preferences::DisplayOf(const QString& path) const {
    return m_settings.value("display/" + KeyOf(path)).toMap();
}

void Preferences::SetDisplayOf(const QString& path, const QVariantMap& display) {
    const QString key = KeyOf(path);
    QStringList order = m_settings.value("displayOrder").toStringList();
    order.removeAll(key);
    order.prepend(key);
    while (order.size() > MOST_DISPLAYS)
        m_settings.remove("display/" + order.takeLast());
    m_settings.setValue("displayOrder", order);
    m_settings.setValue("display/" + key, display);
}

QString Preferences::Folder(const QString& kind) const {
    const QString folder = m_settings.value("folder/" + kind).toString();
    return QFileInfo(folder).isDir() ? folder : QDir::homePath();
}

void Preferences::SetFolderOf(const QString& kind, const QString& path) {
    m_settings.setValue("folder/" + kind, QFileInfo(path).absolutePath());
}

QByteArray Preferences::Geometry() const {
    return m_settings.value("window/geometry").toByteArray();
}

QByteArray Preferences::WindowState() const {
    return m_settings.value("window/state").toByteArray();
}

void Preferences::SetWindow(const QByteArray& geometry, const QByteArray& state) {
    m_settings.setValue("window/geometry", geometry);
    m_settings.setValue("window/state", state);
}

QString Preferences::ThemeName() const {
    return m_settings.value("theme", "system").toString();
}

void Preferences::SetThemeName(const QString& name) {
    m_settings.setValue("theme", name);
}

} // namespace zelto::view
