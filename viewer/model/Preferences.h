#pragma once

#include <QByteArray>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace zelto::view {

/// What the program remembers from one start to the next, in the user's settings and nowhere near
/// the images.
class Preferences {
  public:
    QStringList RecentFiles() const;
    void AddRecentFile(const QString& path);
    void ClearRecentFiles();

    /// Display settings that a file was last shown with; empty for a new one.
    QVariantMap DisplayOf(const QString& path) const;
    void SetDisplayOf(const QString& path, const QVariantMap& display);

    /// Folder that a kind of file was last looked for in.
    QString Folder(const QString& kind) const;
    void SetFolderOf(const QString& kind, const QString& path);

    QByteArray Geometry() const;
    QByteArray WindowState() const;
    void SetWindow(const QByteArray& geometry, const QByteArray& state);

    QString ThemeName() const;
    void SetThemeName(const QString& name);

  private:
    QSettings m_settings;
};

} // namespace zelto::view
