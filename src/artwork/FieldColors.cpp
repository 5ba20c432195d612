#include "artwork/FieldColors.h"

#include "artwork/Artwork.h"

namespace tessara {

QColor QuietGround(const QPalette& window) {
    if (!IsDark(window)) return {230, 230, 230};
    return Mixed(window.color(QPalette::Base), window.color(QPalette::Window), 0.5f);
}

QColor TypingGround(const QPalette& window) {
    return IsDark(window) ? window.color(QPalette::Base) : QColor(255, 255, 255);
}

QPalette FieldPalette(QPalette window, const QColor& ground) {
    window.setColor(QPalette::Base, ground);
    // The fields of a light window may have been dark themselves.
    window.setColor(QPalette::Text, window.color(QPalette::WindowText));
    return window;
}

QPalette FramedBoxPalette(QPalette window) {
    constexpr float kShareOfText = 0.45f;
    window.setColor(QPalette::Window,
                    Mixed(window.color(QPalette::Window), window.color(QPalette::WindowText), kShareOfText));
    return window;
}

QColor FaintLine(const QPalette& window) {
    return Mixed(window.color(QPalette::Window), window.color(QPalette::WindowText), 0.3f);
}

}  // namespace tessara
