#include "support/ZuTest.h"

#include <zucore/ZuCore.h>
#include <zucore/ZuSettings.h>

#include <QProcess>
#include <QSettings>

// The store is process-wide and made once: the functions run in this order, and the two that
// need a fresh process run in a child (this binary, one function, ZU_TEST_CHILD set).
class tst_ZuSettings : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void defaultStore();
    void namedStore();
    void sharedStore();
    void fileNameConstructorRedirects();

private:
    bool runInChild(const char *function);
};

bool tst_ZuSettings::runInChild(const char *function)
{
    if (qEnvironmentVariableIsSet("ZU_TEST_CHILD"))
        return false;
    qputenv("ZU_TEST_CHILD", "1");
    const int exitCode = QProcess::execute(QCoreApplication::applicationFilePath(), { function });
    qunsetenv("ZU_TEST_CHILD");
    [&] { QCOMPARE(exitCode, 0); }();
    return true;
}

void tst_ZuSettings::defaultStore()
{
    if (runInChild("defaultStore"))
        return;
    QCoreApplication::setOrganizationName("Zu Org");
    QCoreApplication::setApplicationName("zu-app");
    ZuSettings settings;
    QCOMPARE(settings.settings()->format(), QSettings::NativeFormat);
    QCOMPARE(settings.settings()->organizationName(), QStringLiteral("Zu Org"));
    QCOMPARE(settings.settings()->applicationName(), QStringLiteral("zu-app"));
}

void tst_ZuSettings::namedStore()
{
    if (runInChild("namedStore"))
        return;
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
    QCOMPARE(first.value("height", 480), QVariant(480));
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
