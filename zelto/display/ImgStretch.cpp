#include "zelto/display/ImgStretch.h"

CImgStretch::~CImgStretch() = default;
