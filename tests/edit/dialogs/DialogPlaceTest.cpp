#include "edit/dialogs/DialogPlace.h"

#include <gtest/gtest.h>

namespace tessara {
namespace {

TEST(DialogPlace, HidesNothingOfThePaneWhereThereIsRoom) {
    const QRect screen(100, 0, 1000, 800);
    const QSize dialog(400, 150);
    struct Case {
        std::string name;
        QRect pane;
        QPoint place;
        QRect neighbour = {};
    };
    const Case cases[] = {
        {"beside, at its top", {150, 200, 300, 300}, {450, 200}},
        {"on its other side", {600, 200, 500, 300}, {200, 200}},
        {"above a wide one", {300, 450, 800, 300}, {300, 300}},
        {"below a wide one", {300, 50, 800, 300}, {300, 350}},
        {"within the screen, though the pane is not", {200, 750, 300, 200}, {500, 650}},
        {"nowhere: the corner in which it hides least", {120, 100, 960, 690}, {700, 0}},
        {"no pane: the middle", {}, {400, 325}},
        {"above both of two wide ones", {300, 550, 800, 150}, {300, 150}, {300, 300, 800, 200}},
        {"no room for the neighbour", {300, 450, 800, 300}, {300, 300}, {300, 100, 800, 300}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const QPoint place = DialogPlace(screen, row.pane, row.neighbour, dialog);
        EXPECT_EQ(place.x(), row.place.x());
        EXPECT_EQ(place.y(), row.place.y());
    }
}

}  // namespace
}  // namespace tessara
