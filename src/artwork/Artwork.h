#pragma once

#include <QIcon>
#include <QPalette>
#include <QPixmap>
#include <optional>
#include <string_view>

namespace tessara {

/// How a drawing is coloured: as it is, under the pointer, switched off, on a highlighted row.
enum class PictureState { Normal, Hover, Disabled, Selected };

/// The drawing `name` of the resources ("folder-open"), as an icon for any size and scale; empty where there
/// is none of that name. It follows the application's palette unless it is given one, for a view with colours
/// of its own: strokes are made from the palette's window colour and the text on it.
QIcon Artwork(std::string_view name, std::optional<QPalette> palette = std::nullopt);

/// The drawing as a picture, fitted into `size`, which counts before the scale.
QPixmap ArtworkPixmap(std::string_view name, QSize size, PictureState state, qreal devicePixelRatio,
                      const QPalette& palette);

/// Whether the palette has light text on dark ground.
bool IsDark(const QPalette& palette);

/// The one colour beside the palette's own in which the drawings are made.
QColor ArtworkAccent(const QPalette& palette);

/// From `a`, at a share of 0, to `b`, at 1.
QColor Mixed(const QColor& a, const QColor& b, float share);

}  // namespace tessara
