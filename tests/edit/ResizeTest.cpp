#include <gtest/gtest.h>

#include "core/Numbers.h"
#include "edit/ResizeSession.h"
#include "tests/edit/RecordingEditHost.h"

namespace tessara {
namespace {

/// "width x height [text of the width|text of the height] limit": "50x25 [50|25] 500".
std::string State(const ResizeValues& values) {
    return std::to_string(values.Value(0)) + "x" + std::to_string(values.Value(1)) + " [" + values.Text(0) +
           "|" + values.Text(1) + "] " + std::to_string(values.Max());
}

TEST(ResizeValues, TheLimitIsChosenByThePanesHeight) {
    struct Case {
        int width, height, paneHeight;
        std::string state;
        int large;
    };
    const Case cases[] = {{100, 50, 100, "100x50 [100|50] 500", 62},
                          {100, 50, 101, "100x50 [100|50] 250", 31},
                          {50, 100, 4500, "50x100 [50|100] 500", 62},
                          {1000, 100, 4500, "500x100 [1000|100] 500", 62},
                          {0, 0, 0, "0x0 [0|0] 0", 0}};
    for (const Case& row : cases) {
        const ResizeValues values(row.width, row.height, row.paneHeight);
        EXPECT_EQ(State(values), row.state);
        EXPECT_EQ(values.LargeChange(), row.large);
    }
}

/// What a user does: 'w' and 'h' move a slider, 'W' and 'H' type into a box, 'F' finishes that, 'p' and '%'
/// choose the unit, 'c' releases the proportions.
struct Action {
    char kind;
    std::string value = {};
};

void Do(const Action& action, ResizeValues& values) {
    switch (action.kind) {
        case 'w':
            values.ChangeHScroll(0, std::stoi(action.value));
            break;
        case 'h':
            values.ChangeHScroll(1, std::stoi(action.value));
            break;
        case 'W':
            values.Text1_Change(0, action.value);
            break;
        case 'H':
            values.Text1_Change(1, action.value);
            break;
        case 'F':
            for (const int i : {0, 1}) values.FinishText(i);
            break;
        case 'p':
            values.Option1_Click(0);
            break;
        case '%':
            values.Option1_Click(1);
            break;
        case 'c':
            values.SetConstrainProportions(false);
            break;
    }
}

TEST(ResizeValues, SlidersAndBoxesFollowEachOther) {
    struct Case {
        std::vector<Action> actions;
        std::string state;  ///< of a picture of 100 by 50
    };
    const Case cases[] = {
        {{{'w', "50"}}, "50x25 [50|25] 500"},
        {{{'w', "51"}}, "52x26 [52|26] 500"},
        {{{'h', "200"}}, "400x200 [400|200] 500"},
        {{{'h', "400"}}, "500x250 [500|250] 500"},  // the width is at its limit
        {{{'c'}, {'w', "51"}, {'h', "400"}}, "51x400 [51|400] 500"},
        {{{'W', "300"}}, "300x150 [300|150] 500"},
        {{{'W', "501"}}, "500x250 [500|250] 500"},
        {{{'W', "-3"}}, "0x0 [0|0] 500"},
        {{{'W', ""}}, "0x0 [|0] 500"},
        {{{'c'}, {'W', "-3"}}, "0x50 [0|50] 500"},
        {{{'c'}, {'W', "20.5"}}, "20x50 [20.5|50] 500"},
        {{{'W', "100 px"}}, "100x50 [100 px|50] 500"},
        {{{'W', "51"}}, "52x26 [51|26] 500"},  // the proportions win over the number, when it is complete
        {{{'W', "51"}, {'W', "510"}}, "500x250 [500|250] 500"},
        {{{'W', "51"}, {'F'}}, "52x26 [52|26] 500"},
        {{{'%'}}, "100x100 [100|100] 500"},
        {{{'%'}, {'w', "150"}}, "150x150 [150|150] 500"},
        {{{'%'}, {'H', "700"}}, "500x500 [500|500] 500"},
        {{{'%'}, {'w', "150"}, {'p'}}, "150x75 [150|75] 500"},
        {{{'c'}, {'w', "33"}, {'%'}}, "33x100 [33|100] 500"},
    };
    for (const Case& row : cases) {
        ResizeValues values(100, 50, 0);
        for (const Action& action : row.actions) Do(action, values);
        EXPECT_EQ(State(values), row.state);
    }
}

TEST(ResizeSession, EachApplyStartsFromTheOpeningPicture) {
    test::RecordedEditor recorded(test::PhotoLike(40, 20));
    ResizeSession resize(recorded.editor);
    ResizeValues values(40, 20, 0);
    const auto apply = [&](int width) {
        values.ChangeHScroll(0, width);
        resize.Apply(values);
        return recorded.exportPane.Image();
    };
    const Picture once = apply(30);
    EXPECT_EQ(once.Width(), 30);
    EXPECT_EQ(once.Height(), 15);
    EXPECT_TRUE(recorded.session.ExportChanged && recorded.session.UndoPending);
    EXPECT_EQ(recorded.host.calls.back(), "PutviewExport 1");

    apply(4);
    EXPECT_EQ(test::LargestDifference(apply(30), once), 0);
    resize.Undo();
    EXPECT_EQ(recorded.exportPane.ImageWidth(), 4);
    EXPECT_EQ(test::LargestDifference(apply(30), once), 0);

    values.Option1_Click(1);
    EXPECT_EQ(test::LargestDifference(apply(75), once), 0) << "in percent of the opening picture";
    EXPECT_EQ(apply(0).Width(), 1) << "no picture has a side of 0";
}

}  // namespace
}  // namespace tessara
