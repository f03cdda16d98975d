/// What the other project uses the library for: a font that is saved is loaded again.
#include <tlvlib/tlvlib.h>

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc < 2)
        return 2;
    const QString dir = QString::fromLocal8Bit(argv[1]);
    TVNC_FontListSetting* fonts = TVNC_FontListSetting::getInstance();
    fonts->loadFontList(dir); // a missing file gives an empty list
    fonts->addFont(QLatin1String("DejaVu Sans"));
    fonts->saveFontList(dir);
    fonts->loadFontList(dir);
    std::printf("%d %s\n", fonts->getCount(), fonts->getFont(0).toUtf8().constData());
    return fonts->getCount() == 1 ? 0 : 1;
}
