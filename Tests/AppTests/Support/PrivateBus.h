#pragma once

#include <QDBusConnection>
#include <QDBusError>
#include <QObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <stdexcept>

namespace torvo::test {

/// A private session bus.
class PrivateBus {
public:
    PrivateBus() {
        daemon_.start(
            QStringLiteral("dbus-daemon"),
            {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
             QStringLiteral("--print-address=1"),
             // By default the socket is in /tmp and stays there.
             QStringLiteral("--address=unix:path=") + folder_.filePath(QStringLiteral("bus"))});
        while (!daemon_.canReadLine() && daemon_.waitForReadyRead()) {
        }
        address_ = QString::fromLatin1(daemon_.readLine().trimmed());
    }
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;
    ~PrivateBus() {
        for (const QString& name : names_)
            QDBusConnection::disconnectFromBus(name);
        daemon_.kill();
        daemon_.waitForFinished();
    }

    QDBusConnection connect(const char* name) {
        names_ << QString::fromLatin1(name);
        return QDBusConnection::connectToBus(address_, names_.back());
    }
    /// Makes the slots of `service` the methods of an object at `path`, under a name on the bus.
    void serve(QObject& service, const char* name, const char* path) {
        QDBusConnection bus = connect(name);
        if (!bus.registerObject(QString::fromLatin1(path), &service,
                                QDBusConnection::ExportAllSlots) ||
            !bus.registerService(QString::fromLatin1(name)))
            throw std::runtime_error(bus.lastError().message().toStdString());
    }

private:
    QTemporaryDir folder_;
    QProcess daemon_;
    QString address_;
    QStringList names_;
};

} // namespace torvo::test
