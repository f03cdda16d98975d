#ifndef TLVLIB_FILES_TVNC_WHOLEFILE_H
#define TLVLIB_FILES_TVNC_WHOLEFILE_H

#include <QtCore/QByteArray>
#include <QtCore/QIODevice>
#include <QtCore/QString>

struct stat;

/**
 * A file that is replaced whole or not at all, as TVNG_SafeSave.h tells. Until commit() the target stays as
 * it was, and for ever without it. Internal to the library; not installed.
 *
 * An error behind open() is kept for commit(), and what is written after it goes nowhere. TVNG_GetSaveError()
 * is told how each of these files ended: at a refused open() or at commit().
 */
class TVNC_WholeFile : public QIODevice
{
public:
    explicit TVNC_WholeFile(const QString& path);
    ~TVNC_WholeFile();

    /// False when the target may not be written, which the default mode would refuse, too.
    bool open(OpenMode mode) override;

    /// Puts what was written in the target's place. False when that failed, or anything before.
    bool commit();

    bool isSequential() const override;

protected:
    qint64 readData(char* pc_data, qint64 maxSize) override;
    qint64 writeData(const char* pc_data, qint64 size) override;

private:
    bool openFile();
    bool openInPlace();
    bool openBeside(const struct stat& target);
    bool openDirectory();
    bool lockDirectory();
    bool openLeftover(unsigned int ul_mode);
    bool takeIdentity(const struct stat& target);

    void flush();
    void sync();
    void closeFile();
    void putInPlace();
    void removeLeftover();
    void release();
    bool fail(const char* pc_what);
    bool failUnlessInPlace(const char* pc_what);
    bool hasFailed() const { return si_error_ != 0; }
    void tell() const;

    const QString path_;
    QByteArray directory_; ///< of the target, behind all symbolic links
    QByteArray name_;      ///< of the target in it
    QByteArray leftover_;  ///< the name of the new file until it is complete
    QByteArray pending_;   ///< what was taken and is not written yet
    int si_directory_;
    int si_file_;
    bool b_leftover_; ///< whether the new file has that name now
    int si_error_;    ///< the first one; 0 for none
    const char* pc_failed_;
};

#endif
