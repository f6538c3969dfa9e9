#pragma once

#include "zelto/Export.h"
#include "zelto/datasource/StretchType.h"

/// A stretch function: turns one value of 0 … 255 (a sample already stretched between the
/// band's display bounds) into a display byte.
class ZELTO_API CImgStretch {
  public:
    explicit CImgStretch(StretchType type) : m_type(type) {}
    CImgStretch(const CImgStretch&) = default;
    CImgStretch& operator=(const CImgStretch&) = default;
    virtual ~CImgStretch();

    /// The display byte of a value. NaN and what a byte cannot hold are cut to 8 bits after
    /// truncation, where the function's own bounds do not catch them.
    virtual unsigned char GetStretchValue8UB(double value) const = 0;

    /// The stretch type that the object was made for.
    StretchType GetStretchType() const { return m_type; }

  protected:
    StretchType m_type;
};
