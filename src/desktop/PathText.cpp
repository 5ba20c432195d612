#include "desktop/PathText.h"

#include <QTextDocument>

namespace tessara {

QString ToolTipOf(const QString& text) {
    if (!Qt::mightBeRichText(text)) return text;
    return QStringLiteral("<p style='white-space:pre'>%1</p>").arg(text.toHtmlEscaped());
}

}  // namespace tessara
