#pragma once

/// A stored colour: four bytes in this order. Colours passed as one number are laid out
/// 0x00BBGGRR instead.
struct CRgbaColor {
    unsigned char red = 0;
    unsigned char green = 0;
    unsigned char blue = 0;
    unsigned char alpha = 0; ///< 0 transparent … 255 opaque
};
