// AcCmColor: an entity's or a layer's colour, by index (ACI) or by layer/block.
#ifndef VORA_ARX_DBCOLOR_H
#define VORA_ARX_DBCOLOR_H

#include "vora/arx/acadstrc.h"
#include "vora/arx/adesk.h"

struct AcCmEntityColor {
  enum ColorMethod { kByLayer = 0xC0, kByBlock = 0xC1, kByColor = 0xC2, kByACI = 0xC3, kByPen = 0xC4,
                     kForeground = 0xC5, kLayerOff = 0xC6, kLayerFrozen = 0xC7, kNone = 0xC8 };
  enum ACIcolorMethod { kACIbyBlock = 0, kACIforeground = 7, kACIbyLayer = 256 };
};

// Colour index 0 is by block, 256 by layer, 1-255 an index colour.
class AcCmColor {
public:
  AcCmColor() = default;
  AcCmEntityColor::ColorMethod colorMethod() const {
    if (mIndex == AcCmEntityColor::kACIbyLayer) return AcCmEntityColor::kByLayer;
    if (mIndex == AcCmEntityColor::kACIbyBlock) return AcCmEntityColor::kByBlock;
    return AcCmEntityColor::kByACI;
  }
  Acad::ErrorStatus setColorIndex(Adesk::UInt16 color) {
    if (color > 256) return Acad::eInvalidInput;
    mIndex = color;
    return Acad::eOk;
  }
  Adesk::UInt16 colorIndex() const { return mIndex; }
  bool isByLayer() const { return mIndex == AcCmEntityColor::kACIbyLayer; }
  bool isByBlock() const { return mIndex == AcCmEntityColor::kACIbyBlock; }
  bool isByACI() const { return !isByLayer() && !isByBlock(); }
  Acad::ErrorStatus setByLayer() { mIndex = AcCmEntityColor::kACIbyLayer; return Acad::eOk; }
  Acad::ErrorStatus setByBlock() { mIndex = AcCmEntityColor::kACIbyBlock; return Acad::eOk; }
  bool operator==(const AcCmColor& c) const { return mIndex == c.mIndex; }
  bool operator!=(const AcCmColor& c) const { return mIndex != c.mIndex; }

private:
  Adesk::UInt16 mIndex = AcCmEntityColor::kACIbyLayer;
};

#endif
