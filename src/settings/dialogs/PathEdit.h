#pragma once

#include <QLineEdit>
#include <string>

#include "desktop/PathText.h"

namespace tessara {

/// A field for a path or a file's name. What is not edited comes back byte for byte, also where it is no
/// text.
class PathEdit final : public QLineEdit {
    Q_OBJECT
  public:
    using QLineEdit::QLineEdit;

    std::string Bytes() const { return text() == shown_ ? bytes_ : BytesOfText(text()); }
    void SetBytes(const std::string& bytes) {
        bytes_ = bytes;
        setText(ShownText(bytes));
        shown_ = text();
    }

  private:
    std::string bytes_;
    QString shown_;
};

}  // namespace tessara
