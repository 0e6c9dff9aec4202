#include <zucore/ZuCore.h>
#include <zucore/ZuSettings.h>

#include <QSettings>

namespace {

// Process-wide and never deleted: pointers handed out by settings() stay valid to the end.
QSettings *s_settings = nullptr;

} // namespace

ZuSettings::ZuSettings(QObject *parent)
    : QObject(parent)
{ }

ZuSettings::ZuSettings(const QString &fileName, QObject *parent)
    : QObject(parent)
{
    s_settings = new QSettings(fileName, QSettings::IniFormat);
}

ZuSettings::~ZuSettings() = default;

QSettings *ZuSettings::settings() const
{
    if (!s_settings) {
        const QString fileName = ZuCore::settingsIniFileName();
        s_settings
            = fileName.isEmpty() ? new QSettings() : new QSettings(fileName, QSettings::IniFormat);
    }
    return s_settings;
}

void ZuSettings::setValue(const QString &key, const QVariant &value)
{
    settings()->setValue(key, value);
}

QVariant ZuSettings::value(const QString &key, const QVariant &defaultValue) const
{
    return settings()->value(key, defaultValue);
}

void ZuSettings::beginGroup(const QString &prefix)
{
    settings()->beginGroup(prefix);
}

void ZuSettings::endGroup()
{
    settings()->endGroup();
}

bool ZuSettings::contains(const QString &key) const
{
    return settings()->contains(key);
}

void ZuSettings::remove(const QString &key)
{
    settings()->remove(key);
}
