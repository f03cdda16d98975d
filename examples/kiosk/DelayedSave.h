#ifndef EXAMPLES_KIOSK_DELAYEDSAVE_H
#define EXAMPLES_KIOSK_DELAYEDSAVE_H

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <functional>
#include <vector>

/**
 * Saves a moment after the last change: a page with ten cookies costs one write to the flash. A save that
 * failed is tried again with the next change, and at the end.
 */
class DelayedSave : public QObject
{
    Q_OBJECT

public:
    /// @param saves what to call, one for each file: the library tells of the most recent one alone
    explicit DelayedSave(std::vector<std::function<void()>> saves);

    /// There is something to save.
    void schedule() { timer_.start(); }

    /// Saves now, if there is something to save.
    void flush();

    /// Which file could not be saved, and why; empty when the last save went well.
    const QString& problem() const { return problem_; }

signals:
    /// Everything was saved, or there is a problem.
    void tried();

private:
    void save();

    QTimer timer_;
    QString problem_;
    std::vector<std::function<void()>> saves_;
};

#endif
