#include "zelto/coordinate/CoordinateAlgorithm.h"
#include "zelto/coordinate/CoordinateTransformation.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"
#include "host/files/Reference.h"
#include "host/report/SrsFacts.h"
#include "python/src/Arrays.h"
#include "python/src/Bind.h"
#include "python/src/Call.h"
#include "python/src/Errors.h"

#include <cpl_error.h>

#include <array>
#include <climits>
#include <memory>
#include <optional>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace zelto::python {

namespace {

using Parameters = std::array<double, 7>;

struct Destroyer {
    void operator()(CCoordinateTransformation* transformation) const {
        CCoordinateTransformation::DestroyCoordinateTransformation(transformation);
    }
};

class Transformation {
  public:
    /// @param source,target in any form GDAL reads
    /// @param sourceShift,targetShift seven parameters to WGS 84; with both None the projection
    ///        library's own way is taken
    Transformation(const std::string& source, const std::string& target,
                   std::optional<Parameters> sourceShift, std::optional<Parameters> targetShift) {
        host::RequireReference(source);
        host::RequireReference(target);
        host::ForgetReasons();
        const bool shifted = sourceShift || targetShift;
        m_transformation.reset(shifted ? CCoordinateTransformation::CreateCoordinateTransformation(
                                             source.c_str(), target.c_str(),
                                             sourceShift ? sourceShift->data() : nullptr,
                                             targetShift ? targetShift->data() : nullptr)
                                       : CCoordinateTransformation::CreateCoordinateTransformation(
                                             source.c_str(), target.c_str(), nullptr));
        if (m_transformation == nullptr)
            throw host::Failure(host::LastReason("there is no way from one system to the other"));
    }

    /// Transforms in place. Points without an answer become infinite.
    /// @param z may be None
    void Transform(py::array_t<double> x, py::array_t<double> y, const py::object& z) {
        const Turn turn(m_taken, "transformation");
        const py::ssize_t count = x.size();
        if (count > INT_MAX)
            throw py::value_error("too many points for one call");
        RequireShape(x, {count});
        RequireShape(y, {count});
        double* heights = nullptr;
        py::array_t<double> zs;
        if (!z.is_none()) {
            zs = z.cast<py::array_t<double>>();
            RequireShape(zs, {count});
            heights = static_cast<double*>(Memory(zs));
        }
        auto* const xs = static_cast<double*>(Memory(x));
        auto* const ys = static_cast<double*>(Memory(y));
        CallProgress progress{py::none()};
        Run(progress, [&] {
            const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
            constexpr int STEP = 1 << 14;
            for (int first = 0; first < count; first += STEP) {
                const int some = static_cast<int>(std::min<py::ssize_t>(STEP, count - first));
                m_transformation->Transform(some, xs + first, ys + first,
                                            heights != nullptr ? heights + first : nullptr,
                                            nullptr);
                if (!progress.StepProgress(0, L""))
                    return false;
            }
            return true;
        });
    }

  private:
    std::unique_ptr<CCoordinateTransformation, Destroyer> m_transformation;
    bool m_taken = false;
};

/// Kind, authority, and label, text and number of every fact.
py::tuple DescribeSystem(const std::string& srs) {
    WideText(srs);
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    const host::SrsFacts system = host::DescribeSrs(srs);
    py::list facts;
    for (const host::SrsFact& fact : system.facts)
        facts.append(py::make_tuple(Text(fact.label), Text(fact.text),
                                    fact.number ? py::object(py::float_(*fact.number))
                                                : py::object(py::none())));
    return py::make_tuple(host::KindName(system.kind), Text(system.authority), facts);
}

py::str Wkt(const std::string& srs) {
    WideText(srs);
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    host::RequireReference(srs);
    return Text(host::ReferenceAsWkt(srs));
}

bool IsSame(const std::string& a, const std::string& b) {
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    host::RequireReference(a);
    host::RequireReference(b);
    return CCoordinateAlgorithm::IsSameCoordinate(a.c_str(), b.c_str());
}

py::str GaussKruger(const std::string& srs, int zone, int width) {
    WideText(srs);
    if (width != 3 && width != 6)
        throw py::value_error("zones are 3 or 6 degrees wide");
    if (zone < 1 || zone > 360 / width)
        throw py::value_error("zones of " + std::to_string(width) +
                              " degrees are numbered from 1 to " + std::to_string(360 / width));
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    host::RequireReference(srs);
    host::ForgetReasons();
    const std::string wkt = CCoordinateAlgorithm::NewChinaProjCS(srs.c_str(), zone, width);
    if (wkt.empty())
        Fail(srs, "has no geographic system to build on");
    return Text(wkt);
}

} // namespace

void BindCoordinates(py::module_& module) {
    py::class_<Transformation>(module, "Transformation")
        .def(py::init<const std::string&, const std::string&, std::optional<Parameters>,
                      std::optional<Parameters>>(),
             py::arg("source"), py::arg("target"), py::arg("source_shift"), py::arg("target_shift"))
        .def("transform", &Transformation::Transform, py::arg("x").noconvert(),
             py::arg("y").noconvert(), py::arg("z"));
    module.def("describe_crs", &DescribeSystem, py::arg("srs"));
    module.def("crs_as_wkt", &Wkt, py::arg("srs"));
    module.def("is_same_crs", &IsSame, py::arg("a"), py::arg("b"));
    module.def("gauss_kruger", &GaussKruger, py::arg("srs"), py::arg("zone"), py::arg("width"));
}

} // namespace zelto::python
