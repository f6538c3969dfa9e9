#include "host/report/Json.h"

#include "host/base/Interrupts.h"
#include "host/base/Text.h"

#include <cmath>
#include <iostream>

namespace zelto::host {

Json JsonNumber(double value) {
    if (std::isfinite(value))
        return value;
    return FormatNumber(value);
}

Json JsonBox(const CBoundingBox& box) {
    return {{"left", JsonNumber(box.GetLeft())},
            {"top", JsonNumber(box.GetTop())},
            {"right", JsonNumber(box.GetRight())},
            {"bottom", JsonNumber(box.GetBottom())}};
}

void PrintJson(const Json& value) {
    EndIfInterrupted();
    // Bytes that are not UTF-8 (attribute texts, paths) are replaced rather than refused.
    std::cout << value.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

} // namespace zelto::host
