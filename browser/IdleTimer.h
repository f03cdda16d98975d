#ifndef TLVLIB_BROWSER_IDLETIMER_H
#define TLVLIB_BROWSER_IDLETIMER_H

#include <tlvlib/browser/browser_export.h>

#include <QtCore/QTimer>

#include <chrono>

namespace Tlv {

/**
 * Tells when nobody has used keyboard, mouse or panel for a while: the "timeout" of the preferences. Tells it
 * once, and again only after somebody has come back. Watches all windows of the application.
 */
class TLVLIB_BROWSER_EXPORT IdleTimer : public QObject
{
    Q_OBJECT

public:
    /// Begins at once.
    explicit IdleTimer(std::chrono::milliseconds span, QObject* parent = nullptr);

Q_SIGNALS:
    /// Nobody has used the application for the span.
    void idle();

protected:
    /// @cond
    bool eventFilter(QObject* watched, QEvent* event) override;
    /// @endcond

private:
    QTimer timer_;
};

} // namespace Tlv

#endif
