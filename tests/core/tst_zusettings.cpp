#include "support/ZuTest.h"

#include <zucore/ZuCore.h>
#include <zucore/ZuSettings.h>

#include <QSettings>

// The store is process-wide and made once: the slots run in order, the first before it exists.
class tst_ZuSettings : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void namedStore();
    void sharedStore();
    void fileNameConstructorRedirects();
};

void tst_ZuSettings::namedStore()
{
    ZuCore::setSettingsIniFileName("named.ini");
    ZuSettings settings;
    QCOMPARE(settings.settings()->format(), QSettings::IniFormat);
    QCOMPARE(settings.settings()->fileName(), QDir::current().absoluteFilePath("named.ini"));
    // Once made, the store stays where it is.
    ZuCore::setSettingsIniFileName("other.ini");
    QCOMPARE(ZuSettings().settings()->fileName(), QDir::current().absoluteFilePath("named.ini"));
}

void tst_ZuSettings::sharedStore()
{
    ZuSettings first(QStringLiteral("shared.ini"));
    auto *second = new ZuSettings;
    QCOMPARE(second->settings(), first.settings());
    first.setValue("top", 1);
    first.beginGroup("window");
    second->setValue("width", 640); // inside the group the first object opened
    QCOMPARE(first.value("width"), QVariant(640));
    second->endGroup();
    QVERIFY(first.contains("window/width"));
    QVERIFY(!first.contains("width"));
    first.remove("top");
    QVERIFY(!second->contains("top"));

    QSettings *store = second->settings();
    delete second;
    QCOMPARE(ZuSettings().settings(), store); // outlives its objects
    store->sync();
    QCOMPARE(QSettings("shared.ini", QSettings::IniFormat).value("window/width"), QVariant(640));
}

void tst_ZuSettings::fileNameConstructorRedirects()
{
    ZuSettings existing;
    QSettings *old = existing.settings();
    old->setValue("kept", true);
    ZuSettings redirect(QStringLiteral("redirected.ini"));
    QVERIFY(existing.settings() != old);
    QCOMPARE(existing.settings()->fileName(), QDir::current().absoluteFilePath("redirected.ini"));
    QVERIFY(!existing.contains("kept"));
    QCOMPARE(old->value("kept"), QVariant(true)); // the old store is left alive
}

ZU_TEST_MAIN(tst_ZuSettings)
#include "tst_zusettings.moc"
