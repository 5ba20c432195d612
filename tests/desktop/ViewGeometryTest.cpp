#include "desktop/ViewGeometry.h"

#include <gtest/gtest.h>

#include <ostream>

// Found by GoogleTest through the types' own namespace.
static void PrintTo(const QRect& r, std::ostream* out) {
    *out << r.x() << "," << r.y() << " " << r.width() << "x" << r.height();
}

namespace tessara {
namespace {

constexpr auto kShrink = ViewGeometry::Mode::ShrinkToFit;
constexpr auto kPixels = ViewGeometry::Mode::PixelForPixel;

TEST(ViewGeometry, PlacesThePictureInTheView) {
    struct Row {
        const char* name;
        QSize picture, view;
        ViewGeometry::Mode mode;
        QPoint scroll;
        QRect target;
    };
    const Row kRows[] = {
        {"no picture", {0, 0}, {400, 300}, kShrink, {}, {}},
        {"small: centred, never enlarged", {100, 50}, {400, 300}, kShrink, {}, {150, 125, 100, 50}},
        {"exact", {400, 300}, {400, 300}, kShrink, {}, {0, 0, 400, 300}},
        {"wide", {6000, 4000}, {300, 300}, kShrink, {}, {0, 50, 300, 200}},
        {"tall", {100, 1000}, {300, 500}, kShrink, {}, {125, 0, 50, 500}},
        {"a line is never shrunk away", {65535, 1}, {300, 300}, kShrink, {}, {0, 149, 300, 1}},
        {"no room", {10, 10}, {0, 0}, kShrink, {}, {0, 0, 1, 1}},
        {"small, pixel for pixel", {100, 50}, {400, 300}, kPixels, {}, {150, 125, 100, 50}},
        {"scrolled in one direction", {1000, 100}, {400, 300}, kPixels, {250, 9}, {-250, 100, 1000, 100}},
        {"scrolled too far", {1000, 800}, {400, 300}, kPixels, {900, -5}, {-600, 0, 1000, 800}},
    };
    for (const Row& row : kRows) {
        const ViewGeometry geometry(row.picture, row.view, row.mode, row.scroll);
        EXPECT_EQ(geometry.Target(), row.target) << row.name;
    }
}

TEST(ViewGeometry, PointsOfTheViewArePixelsOfThePicture) {
    struct Row {
        const char* name;
        QSize picture;
        ViewGeometry::Mode mode;
        QPoint scroll, view, picturePoint;
    };
    const Row kRows[] = {
        // the view is 400 x 300
        {"no picture", {0, 0}, kShrink, {}, {10, 10}, {0, 0}},
        {"unshrunk", {100, 50}, kShrink, {}, {153, 130}, {3, 5}},
        {"before it", {100, 50}, kShrink, {}, {0, 0}, {0, 0}},
        {"behind it", {100, 50}, kShrink, {}, {399, 299}, {99, 49}},
        {"shrunk, first", {4000, 3000}, kShrink, {}, {0, 0}, {0, 0}},
        {"shrunk, middle", {4000, 3000}, kShrink, {}, {100, 100}, {1002, 1003}},
        {"shrunk, last", {4000, 3000}, kShrink, {}, {399, 299}, {3999, 2999}},
        {"scrolled", {4000, 3000}, kPixels, {1000, 2000}, {7, 8}, {1007, 2008}},
        {"beyond the view", {4000, 3000}, kPixels, {1000, 2000}, {-7, 310}, {993, 2310}},
    };
    for (const Row& row : kRows) {
        const ViewGeometry geometry(row.picture, {400, 300}, row.mode, row.scroll);
        EXPECT_EQ(geometry.PicturePoint(row.view), row.picturePoint) << row.name;
    }
}

TEST(ViewGeometry, ARectangleShowsWhereItWasDragged) {
    const QRect dragged(QPoint(3, 40), QPoint(300, 222));
    for (const QSize picture : {QSize(4000, 3000), QSize(401, 300), QSize(400, 300), QSize(1234, 999)}) {
        const ViewGeometry geometry(picture, {400, 300}, kShrink);
        const QRect inside = dragged & geometry.Target();
        const QRect selection(geometry.PicturePoint(inside.topLeft()),
                              geometry.PicturePoint(inside.bottomRight()));
        EXPECT_EQ(geometry.ViewRectangle(selection), inside) << picture.width();
    }
}

}  // namespace
}  // namespace tessara
