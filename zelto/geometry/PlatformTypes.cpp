#include "zelto/geometry/PlatformTypes.h"

#include <algorithm>

namespace {

bool IsEmpty(const CRect& rect) {
    return rect.right <= rect.left || rect.bottom <= rect.top;
}

} // namespace

bool SetRect(CRect* rect, int left, int top, int right, int bottom) {
    if (rect == nullptr)
        return false;
    *rect = {left, top, right, bottom};
    return true;
}

bool IntersectRect(CRect* result, const CRect* a, const CRect* b) {
    if (result == nullptr || a == nullptr || b == nullptr)
        return false;
    const CRect overlap = {std::max(a->left, b->left), std::max(a->top, b->top),
                           std::min(a->right, b->right), std::min(a->bottom, b->bottom)};
    const bool empty = IsEmpty(*a) || IsEmpty(*b) || IsEmpty(overlap);
    *result = empty ? CRect{} : overlap;
    return !empty;
}

bool UnionRect(CRect* result, const CRect* a, const CRect* b) {
    if (result == nullptr || a == nullptr || b == nullptr)
        return false;
    if (IsEmpty(*a))
        *result = IsEmpty(*b) ? CRect{} : *b;
    else if (IsEmpty(*b))
        *result = *a;
    else
        *result = {std::min(a->left, b->left), std::min(a->top, b->top),
                   std::max(a->right, b->right), std::max(a->bottom, b->bottom)};
    return !IsEmpty(*result);
}
