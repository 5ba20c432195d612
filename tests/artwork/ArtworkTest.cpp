#include "artwork/Artwork.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QRegularExpression>
#include <set>

#include "mainwindow/MenuTable.h"

namespace tessara {
namespace {

const QPalette kLight(QColor(240, 240, 240), QColor(239, 239, 239));
const QPalette kDark(QColor(60, 60, 60), QColor(43, 43, 43));

QImage Image(std::string_view name, PictureState state, const QPalette& palette, qreal scale = 1) {
    return ArtworkPixmap(name, QSize(16, 16), state, scale, palette).toImage();
}

TEST(Artwork, EveryToolButtonHasAPictureOfItsOwnInEveryStateScaleAndPalette) {
    for (const QPalette& palette : {kLight, kDark})
        for (const qreal scale : {1.0, 2.0}) {
            std::set<QByteArray> pictures;
            for (const ToolButton& button : ToolButtons())
                for (const auto state : {PictureState::Normal, PictureState::Hover, PictureState::Disabled}) {
                    const QImage image = Image(button.icon, state, palette, scale);
                    ASSERT_EQ(image.size(), QSize(16, 16) * scale) << button.icon;
                    pictures.insert(
                        QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()));
                }
            EXPECT_EQ(pictures.size(), ToolButtons().size() * 3);
        }
}

/// A colour besides these two would stay when the palette turns dark.
TEST(Artwork, IconsAreDrawnInTheTwoColoursThatThePaletteReplaces) {
    Q_UNUSED(Artwork("file"));  // makes the drawings known
    const QSet<QString> ownColors = {QStringLiteral("tessara.svg"), QStringLiteral("splash.svg")};
    const QRegularExpression color(QStringLiteral("#[0-9a-f]{6}"));
    int swept = 0;
    for (const QFileInfo& info : QDir(QStringLiteral(":/artwork")).entryInfoList()) {
        if (ownColors.contains(info.fileName())) continue;
        QFile file(info.filePath());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QString drawing = QString::fromUtf8(file.readAll());
        drawing.remove(QStringLiteral("#3b4046")).remove(QStringLiteral("#0f8f88"));
        EXPECT_FALSE(drawing.contains(color)) << info.fileName().toStdString();
        ++swept;
    }
    EXPECT_GT(swept, 30);
}

TEST(Artwork, StrokesStandOutFromTheBackground) {
    for (const QPalette& palette : {kLight, kDark}) {
        const int background = palette.color(QPalette::Window).lightness();
        const int stroke = Image("folder", PictureState::Normal, palette).pixelColor(1, 8).lightness();
        const int disabled = Image("folder", PictureState::Disabled, palette).pixelColor(1, 8).lightness();
        EXPECT_GT(std::abs(stroke - background), 120);
        EXPECT_LT(std::abs(disabled - background), 90);
    }
}

TEST(Artwork, AnIconFitsAnySizeAndIsEmptyForAnUnknownName) {
    EXPECT_EQ(Artwork("drive-fixed").pixmap(QSize(32, 32), 2.0).size(), QSize(64, 64));
    EXPECT_TRUE(Artwork("no such drawing").isNull());
    EXPECT_TRUE(ArtworkPixmap("no such drawing", QSize(16, 16), PictureState::Normal, 1, kLight).isNull());
}

}  // namespace
}  // namespace tessara
