#include "desktop/DesktopShell.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QLocale>
#include <set>

#include "core/Text.h"
#include "desktop/FileTypes.h"
#include "tests/Support.h"

namespace tessara {
namespace {

TEST(DesktopShell, TypeNamesDoNotBeginWithTheExtension) {
    struct Row {
        const char* description;
        const char* extension;
        const char* name;
    };
    const Row kRows[] = {
        {"PNG image", "png", "Image (PNG)"},
        {"JPEG image", "jpg", "Image (JPEG)"},
        {"Windows BMP image", "bmp", "Image (Windows BMP)"},
        {"PDF document", "pdf", "Document (PDF)"},
        {"PDF document", "PDF", "Document (PDF)"},
        {"PNG-Bild", "png", "Bild (PNG)"},
        {"image", "ima", "File (image)"},
        {"plain text document", "txt", "Plain text document"},
        {"Makefile", "", "Makefile"},
        {"", "png", ""},
    };
    for (const Row& row : kRows) EXPECT_EQ(TypeNameFrom(row.description, row.extension), row.name);
}

TEST(DesktopShell, TypesAreKnownByNamesAlone) {
    QLocale::setDefault(QLocale::c());  // the names are the desktop's, in its language
    DesktopShell shell;
    struct Row {
        const char* path;
        const char* name;
    };
    const Row kRows[] = {
        {"/no/such/a.png", "Image (PNG)"},
        {"/no/such/B.PNG", "Image (PNG)"},
        {"/a.png/c.gif", "Image (GIF)"},
        {"/x.nobodyknows", ""},
        {"/x.nobodyknows", ""},
        {"/png", ""},
        {"/\xff.tif", "Image (TIFF)"},
    };
    for (const Row& row : kRows) EXPECT_EQ(shell.FileTypeName(row.path), row.name) << row.path;
    for (const ImportFormat& format : ImportFormatTable()) {
        const std::string name = shell.FileTypeName("/a." + std::string(format.label));
        EXPECT_FALSE(EqualIgnoringCase(name.substr(0, format.label.size()), format.label)) << name;
    }
    QLocale::setDefault(QLocale::system());
}

TEST(DesktopShell, IconsTellTypesApart) {
    const test::TemporaryFolder folder;
    DesktopShell shell;
    for (const IconSize size : {IconSize::Small, IconSize::Large}) {
        std::set<QByteArray> different;
        for (const char* name : {"a.png", "a.gif", "a.txt", "a.zip"}) {
            test::WriteWhole(folder.File(name), {});
            const QPixmap icon = shell.FileTypeIcon(folder.File(name), size);
            EXPECT_EQ(icon.size(), QSize(static_cast<int>(size), static_cast<int>(size)));
            const QImage image = icon.toImage();
            different.insert(
                QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()));
        }
        EXPECT_EQ(different.size(), 4u);
    }
    EXPECT_TRUE(shell.FileTypeIcon(folder.File("missing.png"), IconSize::Small).isNull());
}

TEST(DesktopShell, AnIconFileIsItsOwnIcon) {
    const test::TemporaryFolder folder;
    const auto icon = test::Must(Picture::Create(32, 32, PixelFromColor(RGB(255, 0, 0)), Alpha::None));
    test::WriteWhole(folder.File("red.ico"), test::Encode(*FindCodec({}, "ico"), icon));
    test::WriteWhole(folder.File("broken.ICO"), {});
    DesktopShell shell;
    const QImage shown = shell.FileTypeIcon(folder.File("red.ico"), IconSize::Small).toImage();
    EXPECT_EQ(shown.size(), QSize(16, 16));
    EXPECT_EQ(shown.pixelColor(8, 8), QColor(255, 0, 0));
    EXPECT_FALSE(shell.FileTypeIcon(folder.File("broken.ICO"), IconSize::Small).isNull());
}

}  // namespace
}  // namespace tessara
