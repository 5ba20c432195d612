#pragma once

#include <QColor>
#include <QImage>
#include <QRect>
#include <QString>
#include <cstdint>
#include <memory>
#include <variant>
#include <vector>

#include "core/rastx/Picture.h"

/// What a metafile creates, selects and deletes by number.
namespace tessara::metafile {

struct Brush {
    enum class Kind { Solid, None, Hatch, Pattern };
    Kind kind = Kind::Solid;
    QRgb color = qRgb(255, 255, 255);
    unsigned hatch = 0;       ///< 0 horizontal, 1 vertical, 2 falling, 3 rising, 4 cross, 5 diagonal cross
    QImage tile;              ///< of a pattern
    bool monochrome = false;  ///< the tile's black stands for the text colour, its white for the background
};

struct Pen {
    enum Style : unsigned {
        kSolid,
        kDash,
        kDot,
        kDashDot,
        kDashDotDot,
        kNone,
        kInsideFrame,
        kUserDashes,
        kAlternate,
        kStyleMask = 15
    };
    enum class Cap { Round, Square, Flat };
    enum class Join { Round, Bevel, Miter };

    unsigned style = kSolid;
    double width = 0;  ///< in logical units; 0 is one pixel
    Brush ink{Brush::Kind::Solid, qRgb(0, 0, 0), 0, {}, false};
    Cap cap = Cap::Round;
    Join join = Join::Round;
    bool extended = false;       ///< wide dashes are possible and their gaps never painted
    std::vector<double> dashes;  ///< of kUserDashes: pixels, or logical units where the pen has a width

    bool IsVisible() const { return (style & kStyleMask) != kNone && ink.kind != Brush::Kind::None; }
};

struct Font {
    double height = 0;      ///< negative: of the characters; positive: of the line; in logical units
    double width = 0;       ///< average of a character, 0 by the font's own proportion
    double escapement = 0;  ///< of the base line, counter-clockwise, in degrees
    int weight = 400;
    bool italic = false, underline = false, strikeOut = false;
    unsigned charset = 1;
    unsigned pitchAndFamily = 0;
    QString face;
};

/// Copies have the colours in common: a change of the object shows in the one that is selected.
struct Palette {
    std::shared_ptr<std::vector<Pixel>> colors;

    explicit Palette(std::vector<Pixel> given = {})
        : colors(std::make_shared<std::vector<Pixel>>(std::move(given))) {}
    void Change(std::size_t start, const std::vector<Pixel>& given) const {
        for (std::size_t i = 0; i < given.size() && start + i < colors->size(); ++i)
            (*colors)[start + i] = given[i];
    }
};

struct Region {
    std::vector<QRect> boxes;
};

/// A slot that is taken by something that cannot be drawn with.
struct Placeholder {};

using Object = std::variant<std::monostate, Placeholder, Pen, Brush, Font, Palette, Region>;

class ObjectTable {
  public:
    static constexpr std::size_t kMostObjects = 65535;

    void InsertInFirstFree(Object object) {
        while (firstFree_ < objects_.size() && objects_[firstFree_].index() != 0) ++firstFree_;
        Set(firstFree_, std::move(object));
    }
    void Set(std::size_t slot, Object object) {
        if (slot >= kMostObjects) return;
        if (slot >= objects_.size()) objects_.resize(slot + 1);
        objects_[slot] = std::move(object);
    }
    void Delete(std::size_t slot) {
        if (slot >= objects_.size()) return;
        objects_[slot] = {};
        firstFree_ = std::min(firstFree_, slot);
    }
    const Object& At(std::size_t slot) const { return slot < objects_.size() ? objects_[slot] : kEmpty; }
    Object* Find(std::size_t slot) { return slot < objects_.size() ? &objects_[slot] : nullptr; }

  private:
    static inline const Object kEmpty;
    std::vector<Object> objects_;
    std::size_t firstFree_ = 0;  ///< every slot before it is taken
};

}  // namespace tessara::metafile
