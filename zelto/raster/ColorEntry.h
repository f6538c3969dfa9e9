#pragma once

/// One record of a display colour list that a host hands over. Records follow one another 48
/// bytes apart; the engine reads the four colour bytes and nothing else.
struct tagColorEntry {
    unsigned char red = 0;
    unsigned char green = 0;
    unsigned char blue = 0;
    unsigned char alpha = 255;
    unsigned char host[44] = {}; ///< belongs to the host
};
static_assert(sizeof(tagColorEntry) == 48, "the interface fixes the distance of records");
