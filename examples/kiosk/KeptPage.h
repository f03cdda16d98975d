#ifndef EXAMPLES_KIOSK_KEPTPAGE_H
#define EXAMPLES_KIOSK_KEPTPAGE_H

#include <tlvlib/browser/Profile.h>

#include <QtWidgets/QWidget>

class QVBoxLayout;

/// The logins, with their passwords hidden, and the cookies, with their values hidden.
class KeptPage : public QWidget
{
    Q_OBJECT

public:
    explicit KeptPage(const Tlv::Profile& profile);

private:
    static void addPart(QVBoxLayout& layout, const char* name, const QString& text, Tlv::RecordModel& model);
};

#endif
