#pragma once

#include "zelto/aoi/AOISource.h"

#include "python/src/Call.h"

#include <memory>
#include <optional>
#include <pybind11/pybind11.h>
#include <string>

namespace zelto::python {

/// An area of interest as Python holds it.
class Area {
  public:
    /// An empty one.
    Area() : m_source(std::make_unique<CAOISource>()) {}
    /// Throws when the file cannot be opened.
    explicit Area(const std::string& path);

    /// The right to use the shapes.
    Turn Use() { return {m_taken, "area of interest"}; }
    void Use(std::optional<Turn>& turn) { turn.emplace(m_taken, "area of interest"); }
    CAOISource& Source() { return *m_source; }
    /// The shapes in a raster's reference system: transformed where both have one and these
    /// differ. Needs the turn; may be called without the interpreter's lock. Throws when there is
    /// no transformation.
    CAOISource& In(const std::string& wkt);
    /// What In() has made is of no use any more.
    void Changed() { m_transformed.reset(); }

  private:
    std::unique_ptr<CAOISource> m_source;
    std::unique_ptr<CAOISource> m_transformed;
    std::string m_transformedTo;
    bool m_taken = false;
};

/// The area in a Python argument, null for None.
std::shared_ptr<Area> AreaOrNone(const pybind11::object& argument);

/// A copy that the caller owns; null without memory.
std::unique_ptr<CAOISource> CopyOf(const CAOISource& area);

/// A complete shape of a kind: "point" (x, y), "line" and "multiline" and "polygon" (x, y of each
/// vertex), "rectangle" and "ellipse" (left, top, right, bottom). Throws ValueError.
std::unique_ptr<CDrawShape> MakeShape(const std::string& kind, const std::vector<double>& numbers);

/// The kind and the numbers of a shape, as MakeShape() takes them.
pybind11::tuple ShapeAsTuple(const CDrawShape& shape);

} // namespace zelto::python
