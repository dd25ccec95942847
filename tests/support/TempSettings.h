// Points the settings store at a temporary folder for the life of the object, so that tests
// never read or write the user's own recording options.
#pragma once

#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>

class TempSettings {
public:
    TempSettings() { usePath(dir.path()); }

    // For a helper process that shares the folder of its parent's TempSettings.
    static void usePath(const QString& folder) {
        QStandardPaths::setTestModeEnabled(true);
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder);
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder);
    }

    bool isValid() const { return dir.isValid(); }

    // Forgets every stored option.
    static void clear() {
        QSettings settings(QStringLiteral("Brindlewick"), QStringLiteral("ORYXSensorData"));
        settings.clear();
        settings.sync();
    }

    // Stores `values` (key -> value) as if a previous run had saved them.
    static void store(const QVariantMap& values) {
        QSettings settings(QStringLiteral("Brindlewick"), QStringLiteral("ORYXSensorData"));
        for (auto it = values.cbegin(); it != values.cend(); ++it) {
            settings.setValue(it.key(), it.value());
        }
        settings.sync();
    }

    static QVariant stored(const QString& key) {
        return QSettings(QStringLiteral("Brindlewick"), QStringLiteral("ORYXSensorData"))
            .value(key);
    }

    QString path() const { return dir.path(); }

private:
    QTemporaryDir dir;
};
