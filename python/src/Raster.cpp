#include "python/src/Raster.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/raster/RasterBand.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"
#include "host/files/RasterFiles.h"
#include "host/picture/DisplaySource.h"
#include "python/src/Errors.h"

#include <array>
#include <filesystem>
#include <utility>

namespace py = pybind11;

namespace zelto::python {

namespace {

/// The engine shows such a raster north-up; here it is to lie as its file says.
void KeepOwnGrid(CRasterSource& source) {
    std::array<double, 6> own{};
    const bool none = source.GetGeoTransform(own.data(), true);
    if (!none)
        source.SetGeoTransform(own.data(), false);
}

} // namespace

std::unique_ptr<CRasterSource> OpenSource(const RasterOrigin& origin) {
    auto source = std::make_unique<CRasterSource>();
    source->SetForDisplay(true);
    host::ForgetReasons();
    const std::wstring path = WideText(origin.path);
    const GISDataAccess access = origin.update ? GIS_UPDATE : GIS_READONLY;
    const GISError error = origin.srs.empty()
                               ? source->Open(path.c_str(), access, origin.warp)
                               : source->OpenAndWarped(path.c_str(), access, origin.srs.c_str());
    if (error != GIS_SUCCESS)
        throw host::Failure(origin.path, host::ReasonForFailure(origin.path, error));
    if (origin.update && source->GetAccess() != GIS_UPDATE)
        throw host::Failure(origin.path, "it cannot be opened for writing");
    if (!origin.warp && origin.srs.empty())
        KeepOwnGrid(*source);
    return source;
}

Raster::Raster(RasterOrigin origin) : m_origin(std::move(origin)) {
    m_source = Run([&] { return OpenSource(m_origin); });
}

Raster::Raster(RasterOrigin origin, std::unique_ptr<CNewFileSet> files,
               std::unique_ptr<CRasterSource> source)
    : m_origin(std::move(origin)), m_files(std::move(files)), m_source(std::move(source)) {}

Raster::~Raster() = default;

Turn Raster::Use() {
    if (IsClosed())
        throw py::value_error("the raster is closed");
    return {m_taken, "raster"};
}

CRasterBand& Raster::Band(int number) {
    CRasterBand* const band = m_source->GetRasterBand(number - 1);
    if (band == nullptr)
        throw py::index_error("bands are numbered from 1 to " +
                              std::to_string(m_source->GetBandCount()));
    return *band;
}

std::unique_ptr<CRasterSource> Raster::OpenAgain(const std::string& srs, const host::View* view) {
    if (IsNew())
        throw host::Failure(m_origin.path, "is being made; close it before it is drawn");
    // What was written is drawn too.
    for (int b = 0; m_origin.update && b < m_source->GetBandCount(); ++b)
        m_source->GetRasterBand(b)->FlushCache();
    return OpenLikewise(m_origin.path, srs, view);
}

std::unique_ptr<CRasterSource> Raster::OpenLikewise(const std::string& path, const std::string& srs,
                                                    const host::View* view) const {
    if (!srs.empty() && view != nullptr)
        return host::OpenForPicture(path, srs, *view);
    return OpenSource({path, false, m_origin.warp, srs.empty() ? m_origin.srs : srs});
}

void Raster::Reopen() {
    const Turn turn = Use();
    m_source.reset();
    m_source = Run([&] { return OpenSource(m_origin); });
}

void Raster::Close() {
    if (IsClosed())
        return;
    const Turn turn = Use();
    const auto files = std::move(m_files);
    auto source = std::move(m_source);
    Run([&] {
        host::ForgetReasons();
        // Where the data set really is: a header's name stands for the data file beside it.
        const std::filesystem::path made = CommonFun::U2M(source->GetFilePath());
        source->Close();
        const std::string reason = CGISDataSource::GetLastErrorText();
        source.reset();
        if (!reason.empty())
            throw host::Failure(m_origin.path, reason);
        const auto old = std::filesystem::path(m_origin.path).parent_path() / made.filename();
        if (files != nullptr && !files->Commit(host::SideFilesOf(old)))
            throw host::Failure(CGISDataSource::GetLastErrorText());
    });
}

void Raster::Discard() {
    if (IsClosed())
        return;
    const Turn turn = Use();
    m_source.reset();
    m_files.reset();
}

} // namespace zelto::python
