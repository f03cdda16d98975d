#ifndef TESTS_INTERFACE_ELFFILE_H
#define TESTS_INTERFACE_ELFFILE_H

/**
 * @file
 * Reads what the interface test needs of a shared object of this machine's own kind: its soname, the symbols
 * that it exports, and how many static initialisers it has.
 */

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QStringList>

#include <elf.h>
#include <link.h> // ElfW()

class ElfFile
{
public:
    explicit ElfFile(const QString& path) : initialisers_(0)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return;
        bytes_ = file.readAll();
        if (bytes_.size() < int(sizeof(ElfW(Ehdr))) || !bytes_.startsWith(ELFMAG)) {
            bytes_.clear();
            return;
        }
        const ElfW(Ehdr)& header = at<ElfW(Ehdr)>(0);
        for (int i = 0; i < header.e_shnum; ++i)
            readSection(at<ElfW(Shdr)>(header.e_shoff + static_cast<size_t>(i) * header.e_shentsize));
    }

    bool isValid() const { return !bytes_.isEmpty(); }
    QByteArray soname() const { return soname_; }

    /// Mangled names of what other objects can link to.
    QList<QByteArray> exported() const { return exported_; }

    /// Functions run at load, those of the compiler's own start-up code included.
    int initialisers() const { return initialisers_; }

private:
    template <typename T>
    const T& at(size_t offset) const
    {
        return *reinterpret_cast<const T*>(bytes_.constData() + offset);
    }

    const char* string(const ElfW(Shdr) & section, size_t offset) const
    {
        const ElfW(Ehdr)& header = at<ElfW(Ehdr)>(0);
        const ElfW(Shdr)& strings =
            at<ElfW(Shdr)>(header.e_shoff + section.sh_link * size_t(header.e_shentsize));
        return bytes_.constData() + strings.sh_offset + offset;
    }

    void readSection(const ElfW(Shdr) & section)
    {
        const size_t end = section.sh_offset + section.sh_size;
        if (section.sh_type == SHT_DYNSYM) {
            for (size_t offset = section.sh_offset; offset < end; offset += sizeof(ElfW(Sym)))
                readSymbol(section, at<ElfW(Sym)>(offset));
        } else if (section.sh_type == SHT_DYNAMIC) {
            for (size_t offset = section.sh_offset; offset < end; offset += sizeof(ElfW(Dyn))) {
                const ElfW(Dyn)& entry = at<ElfW(Dyn)>(offset);
                if (entry.d_tag == DT_SONAME)
                    soname_ = string(section, entry.d_un.d_val);
            }
        } else if (section.sh_type == SHT_INIT_ARRAY) {
            initialisers_ = static_cast<int>(section.sh_size / sizeof(void*));
        }
    }

    void readSymbol(const ElfW(Shdr) & section, const ElfW(Sym) & symbol)
    {
        const int binding = symbol.st_info >> 4;
        const int visibility = symbol.st_other & 3;
        if (symbol.st_shndx != SHN_UNDEF && symbol.st_shndx != SHN_ABS &&
            (binding == STB_GLOBAL || binding == STB_WEAK) && visibility == STV_DEFAULT)
            exported_ << QByteArray(string(section, symbol.st_name));
    }

    QByteArray bytes_;
    QByteArray soname_;
    QList<QByteArray> exported_;
    int initialisers_;
};

#endif
