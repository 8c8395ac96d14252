#pragma once

#include <QDesktopServices>
#include <QObject>
#include <QUrl>

namespace torvo::test {

/// Receives the URLs of one scheme instead of the browser.
class UrlReceiver final : public QObject {
    Q_OBJECT

public:
    QList<QUrl> opened;

    explicit UrlReceiver(const char* scheme) : scheme_(QString::fromLatin1(scheme)) {
        QDesktopServices::setUrlHandler(scheme_, this, "open");
    }
    ~UrlReceiver() override { QDesktopServices::unsetUrlHandler(scheme_); }
    Q_DISABLE_COPY_MOVE(UrlReceiver)

    Q_INVOKABLE void open(const QUrl& url) { opened.append(url); }

private:
    const QString scheme_;
};

} // namespace torvo::test
