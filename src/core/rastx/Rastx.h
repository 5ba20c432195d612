#pragma once

#include <algorithm>
#include <array>
#include <functional>
#include <string>

#include "core/Parallel.h"
#include "core/rastx/Codec.h"
#include "core/rastx/LazyPicture.h"
#include "core/rastx/Picture.h"

namespace tessara {

namespace effects {
struct Effect;
struct EffectRun;
}  // namespace effects

/// Carries a picture from one pane to another, and to other programs: the clipboard, or what stands in for
/// it.
class PictureCarrier {
  public:
    virtual ~PictureCarrier() = default;
    virtual void Put(const Picture& picture) = 0;
    virtual Result<Picture> Take() = 0;
};

/// A carrier within the process.
class MemoryCarrier final : public PictureCarrier {
  public:
    void Put(const Picture& picture) override { picture_ = picture; }
    Result<Picture> Take() override {
        if (picture_.Empty()) return CannotRead("nothing has been copied");
        return picture_;
    }

  private:
    Picture picture_;
};

/// The imaging pane without its widget: one picture, the rubber-band rectangle, the last mouse position, and
/// all operations on them. A failing operation leaves the picture as it was.
class Rastx {
  public:
    /// What the pane needs from outside; without a carrier or a screen the operations that use them fail.
    struct Surroundings {
        PictureCarrier* carrier = nullptr;
        std::function<Result<Picture>()> captureScreen = {};
        /// Called after every change of the picture or of the rectangle.
        std::function<void()> changed = {};
        /// Starts the random effects; without it they come out the same each time.
        std::function<std::uint32_t()> randomSeed = {};
        /// Of the effects.
        int threads = HardwareThreads();
    };

    Rastx() = default;
    explicit Rastx(Surroundings surroundings) : surroundings_(std::move(surroundings)) {}

    /// The whole picture; empty after ClearImage.
    const Picture& Image() const { return picture_.Whole(); }
    /// A part of it from (x, y), which must lie inside. After a fast Resample only the part is computed.
    Result<Picture> ImagePart(int x, int y, int width, int height) const {
        return picture_.Part(x, y, width, height);
    }
    /// Whether Image is still to be computed.
    bool ImagePutOff() const { return picture_.PutOff(); }
    /// Differs after every change of the picture; changes of the rectangle do not count.
    unsigned Revision() const { return revision_; }
    void SetImage(Picture picture);
    int ImageWidth() const { return picture_.Width(); }
    int ImageHeight() const { return picture_.Height(); }
    void ClearImage();

    /// Reads a file of any import format, whatever its name says.
    Result<void> LoadImage(const std::string& path);
    Result<void> PasteClip();
    Result<void> CopyClip() const;
    /// Copies the part inside the rectangle.
    Result<void> CopySelection() const;
    /// The whole screen becomes the picture.
    Result<void> CaptureScreen();

    Result<void> SaveBmp(const std::string& path) const;
    Result<void> SaveGif(const std::string& path, bool transparent, ColorNumber color = 0) const;
    Result<void> SaveJpg(const std::string& path, int quality, bool grey, bool progressive) const;
    Result<void> SavePng(const std::string& path) const;
    Result<void> SaveWbmp(const std::string& path) const;
    Result<void> SaveEmf(const std::string& path) const;
    Result<void> SaveTga(const std::string& path) const;
    Result<void> SaveTif(const std::string& path) const;
    Result<void> SaveWmf(const std::string& path) const;
    Result<void> SaveIco(const std::string& path, bool transparent, ColorNumber color) const;
    /// What the save operations above do: writes the picture in a format of the export table.
    Result<void> SaveAs(const ExportFormat& format, const std::string& path,
                        const EncodeOptions& options) const;

    /// Recalculates the picture to the new size; `fast` is for viewers, which ask at every step of the zoom:
    /// the work is put off until it is known what is looked at.
    Result<void> Resample(int width, int height, bool fast);

    /// Runs an effect of the table by its row; the operations below are the same effects by name.
    Result<void> Run(const effects::Effect& effect, const std::array<double, 3>& arguments);

    // The effects; effects/EffectTable.h tells the ranges and defaults, the headers beside it what each does.
    Result<void> FxAddNoise(int percent, bool monochromatic);
    Result<void> FxAntiAlias();
    Result<void> FxBlur();
    Result<void> FxBrightness(int percent);
    Result<void> FxButtonEllipse1(int depth, int weight);
    Result<void> FxButtonEllipse2(int depth, int weight);
    Result<void> FxButtonEllipse3(int depth, int weight);
    Result<void> FxButtonSimple(int depth, int weight);
    Result<void> FxButtonSmooth(int depth);
    Result<void> FxColorBalance(int red, int green, int blue);
    Result<void> FxColorize(int hue, int saturation, int luminance);
    Result<void> FxContrast(int percent);
    Result<void> FxDiffuse(int depth);
    Result<void> FxEmboss();
    Result<void> FxEmbossColor();
    Result<void> FxEnhanceEdge();
    Result<void> FxFindEdges();
    Result<void> FxFishEye(float strength);
    Result<void> FxFlipHorizontal();
    Result<void> FxFlipVertical();
    Result<void> FxGamma(float gamma);
    Result<void> FxGrayScale();
    Result<void> FxHighPass();
    Result<void> FxMaskEllipse(ColorNumber color);
    Result<void> FxMosaic(int cellWidth, int cellHeight);
    Result<void> FxNegative();
    Result<void> FxNeonTrace();
    Result<void> FxPosterize(int bits);
    Result<void> FxReflectLeftRight();
    Result<void> FxReflectUpDown();
    Result<void> FxRippleRandom(int depth);
    Result<void> FxRippleSine(int depth);
    Result<void> FxRippleTooth(int depth);
    Result<void> FxRippleTriangle(int depth);
    Result<void> FxRotate(int degrees, ColorNumber background);
    Result<void> FxShakeLeftRight(float amount);
    Result<void> FxShakeUpDown(float amount);
    Result<void> FxSharpen();
    Result<void> FxSoften();
    Result<void> FxSolarize(int threshold);
    Result<void> FxStretchDownLeft();
    Result<void> FxStretchDownRight();
    Result<void> FxStretchUpLeft();
    Result<void> FxStretchUpRight();
    Result<void> FxSwapGreenBlue();
    Result<void> FxSwapRedBlue();
    Result<void> FxSwapRedGreen();
    Result<void> FxSwirl(int degrees);
    Result<void> FxTexturedGlass(float scale, int chaos);
    Result<void> FxTile1(int depth);
    Result<void> FxTile2(int depth);
    Result<void> FxWind(int depth);

    /// Where the mouse is, in picture pixels; extends the rectangle while a rubber band is being drawn.
    void MoveMouse(int x, int y);
    int MouseX() const { return mouseX_; }
    int MouseY() const { return mouseY_; }
    /// Starts a rubber band at the last mouse position; EndSelect keeps the rectangle as it is.
    void BeginSelect();
    void EndSelect() { selecting_ = false; }
    void ClearSelect();
    bool HasSelection() const { return hasSelection_; }
    /// The rectangle's columns and rows, inclusive; all 0 where there is none.
    int SelLeft() const { return std::min(anchorX_, cornerX_); }
    int SelRight() const { return std::max(anchorX_, cornerX_); }
    int SelTop() const { return std::min(anchorY_, cornerY_); }
    int SelBottom() const { return std::max(anchorY_, cornerY_); }

  private:
    void Changed() const {
        if (surroundings_.changed) surroundings_.changed();
    }

    effects::EffectRun StartRun() const;
    void PictureChanged() {
        ++revision_;
        Changed();
    }

    /// Runs an effect of effects/ on the picture; what it returns is the new picture.
    template <typename Effect, typename... Arguments>
    Result<void> Change(Effect effect, Arguments... arguments);

    Surroundings surroundings_;
    LazyPicture picture_;
    unsigned revision_ = 0;
    int mouseX_ = 0, mouseY_ = 0;
    bool selecting_ = false;
    bool hasSelection_ = false;
    int anchorX_ = 0, anchorY_ = 0, cornerX_ = 0, cornerY_ = 0;
};

}  // namespace tessara
