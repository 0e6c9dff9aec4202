#pragma once

#include <zucore/zucore_export.h>

#include <QObject>
#include <QVariant>

class QSettings;

/**
 * @brief One settings store shared by every part of an application.
 *
 * @code #include <zucore/ZuSettings.h> @endcode
 *
 * All instances work on one process-wide QSettings, created at its first use: the ini file
 * named by ZuCore::settingsIniFileName() when that is set (relative to the working directory),
 * else the platform's default QSettings for the organization and application names. A later
 * ZuCore::setSettingsIniFileName() doesn't move it; only the constructor with a file name does.
 * The store is never deleted, and a group opened by beginGroup() is seen by every instance until
 * endGroup(). Nothing is reported: QSettings keeps its own status, see settings().
 *
 * No lock guards the shared pointer: create the store (or make the first settings call) from one
 * thread, at the application's start.
 */
class ZUCORE_EXPORT ZuSettings : public QObject
{
    Q_OBJECT
public:
    /// Leaves the shared store as it is.
    explicit ZuSettings(QObject *parent = nullptr);
    /// Replaces the shared store, for all instances, by the ini file @p fileName. The old store
    /// is left alive (others may still hold its pointer).
    explicit ZuSettings(const QString &fileName, QObject *parent = nullptr);
    ~ZuSettings() override;

    /// The shared store, created on first use; never null.
    QSettings *settings() const;
    /// QSettings::setValue on the shared store.
    void setValue(const QString &key, const QVariant &value);
    /// QSettings::value on the shared store; @p defaultValue when the key is missing.
    QVariant value(const QString &key, const QVariant &defaultValue = QVariant()) const;
    /// QSettings::beginGroup on the shared store.
    void beginGroup(const QString &prefix);
    /// QSettings::endGroup on the shared store.
    void endGroup();
    /// QSettings::contains on the shared store; false for a missing key.
    bool contains(const QString &key) const;
    /// QSettings::remove on the shared store.
    void remove(const QString &key);
};
