#pragma once

#include <QFont>
#include <QHash>
#include <QPainterPath>
#include <QString>
#include <memory>
#include <vector>

#include "metafile/Objects.h"
#include "metafile/WorkBudget.h"

namespace tessara::metafile {

/// A font of the system as outlines: all lengths are parts of its character height (em), y goes down and the
/// base line is at 0. Outlines fit every size, angle and stretch that a metafile asks for.
class Typeface {
  public:
    struct Glyphs {
        QPainterPath outline;
        double advance = 0;
    };

    explicit Typeface(const Font& font);

    double Ascent() const { return ascent_; }
    double Descent() const { return descent_; }
    double AverageWidth() const { return averageWidth_; }
    double UnderlinePosition() const { return underlinePosition_; }
    double StrikeOutPosition() const { return strikeOutPosition_; }
    double LineWidth() const { return lineWidth_; }

    bool Knows(const QString& character) const { return characters_.contains(character); }
    /// One character; kept, for text is made of few of them.
    const Glyphs& Character(const QString& character) const;
    /// A text whose characters depend on their neighbours.
    Glyphs Shaped(const QString& text) const;

  private:
    QFont font_;
    double ascent_ = 0, descent_ = 0, averageWidth_ = 0;
    double underlinePosition_ = 0, strikeOutPosition_ = 0, lineWidth_ = 0;
    mutable QHash<QString, Glyphs> characters_;
};

/// Typefaces by what a metafile says of a font, each found once.
class TypefaceCache {
  public:
    /// Null where the budget is used up: to find a font is work.
    const Typeface* Find(const Font& font, WorkBudget& budget);

  private:
    QHash<QString, std::shared_ptr<const Typeface>> typefaces_;
};

/// Makes the application object that fonts need, where there is none. It needs no display.
void EnsureFontsAvailable();

}  // namespace tessara::metafile
