#include "cli/render/Sheet.h"

#include "host/base/Failure.h"

#include <cairo.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace zelto::cli {

namespace {

constexpr int COLUMNS = 4;
constexpr int MARGIN = 12;
constexpr int LABEL_HEIGHT = 26;
constexpr double FONT_SIZE = 15.0;

struct SurfaceDeleter {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct ContextDeleter {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};
using Surface = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;
using Context = std::unique_ptr<cairo_t, ContextDeleter>;

/// Copies the picture's pixels; Cairo wants the colours multiplied by their alpha.
Surface ToSurface(const host::Picture& picture) {
    Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, picture.width, picture.height));
    unsigned char* target = cairo_image_surface_get_data(surface.get());
    const int stride = cairo_image_surface_get_stride(surface.get());
    for (int row = 0; target != nullptr && row < picture.height; ++row) {
        const unsigned char* from =
            picture.pixels.data() + static_cast<std::size_t>(row) * picture.width * 4;
        unsigned char* to = target + static_cast<std::ptrdiff_t>(row) * stride;
        for (int i = 0; i < picture.width * 4; ++i)
            to[i] = i % 4 == 3 ? from[i]
                               : static_cast<unsigned char>(from[i] * from[i - i % 4 + 3] / 255);
    }
    cairo_surface_mark_dirty(surface.get());
    return surface;
}

void DrawCell(cairo_t* context, const SheetCell& cell, int x, int y) {
    const Surface surface = ToSurface(cell.picture);
    cairo_set_source_surface(context, surface.get(), x, y);
    cairo_paint(context);
    cairo_set_source_rgb(context, 0.1, 0.1, 0.1);
    cairo_text_extents_t extents;
    cairo_text_extents(context, cell.label.c_str(), &extents);
    cairo_move_to(context, x + (cell.picture.width - extents.x_advance) / 2,
                  y + cell.picture.height + LABEL_HEIGHT - 8);
    cairo_show_text(context, cell.label.c_str());
}

host::Picture ToPicture(cairo_surface_t* surface, int width, int height) {
    cairo_surface_flush(surface);
    host::Picture picture(width, height);
    const unsigned char* data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    for (int row = 0; data != nullptr && row < height; ++row)
        std::memcpy(picture.pixels.data() + static_cast<std::size_t>(row) * width * 4,
                    data + static_cast<std::ptrdiff_t>(row) * stride,
                    static_cast<std::size_t>(width) * 4);
    return picture;
}

} // namespace

host::Picture MakeSheet(const std::vector<SheetCell>& cells) {
    int cellWidth = 0;
    int cellHeight = 0;
    for (const SheetCell& cell : cells) {
        cellWidth = std::max(cellWidth, cell.picture.width);
        cellHeight = std::max(cellHeight, cell.picture.height);
    }
    const int columns = std::min(COLUMNS, static_cast<int>(cells.size()));
    const int rows = (static_cast<int>(cells.size()) + COLUMNS - 1) / COLUMNS;
    const int stepX = cellWidth + MARGIN;
    const int stepY = cellHeight + LABEL_HEIGHT + MARGIN;
    const int width = columns * stepX + MARGIN;
    const int height = rows * stepY + MARGIN;

    const Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        throw host::UsageError("--size: a contact sheet of " + std::to_string(width) + " x " +
                               std::to_string(height) + " pixels cannot be drawn");
    const Context context(cairo_create(surface.get()));
    cairo_set_source_rgb(context.get(), 1.0, 1.0, 1.0);
    cairo_paint(context.get());
    cairo_select_font_face(context.get(), "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                           CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(context.get(), FONT_SIZE);
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const int column = static_cast<int>(i) % COLUMNS;
        const int row = static_cast<int>(i) / COLUMNS;
        DrawCell(context.get(), cells[i], MARGIN + column * stepX, MARGIN + row * stepY);
    }
    return ToPicture(surface.get(), width, height);
}

} // namespace zelto::cli
