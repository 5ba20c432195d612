#include "desktop/PathText.h"

#include <gtest/gtest.h>

#include <QTextDocument>

namespace tessara {
namespace {

TEST(ToolTipOf, ShowsANameAsItStands) {
    for (const char* name : {"/a/b.png", "/a/<b>bold</b>", "/a/&lt;&amp;", "/a  <i>\nb", "/<img src=x>"}) {
        const QString tip = ToolTipOf(QString::fromLatin1(name));
        QTextDocument shown;
        if (Qt::mightBeRichText(tip))
            shown.setHtml(tip);
        else
            shown.setPlainText(tip);
        EXPECT_EQ(shown.toPlainText().toStdString(), name);
    }
}

}  // namespace
}  // namespace tessara
